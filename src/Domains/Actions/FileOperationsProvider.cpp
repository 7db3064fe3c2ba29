// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FileOperationsProvider.h"

#include "Libraries/Core/Localized.h"
#include "Preferences/Preferences.h"

#include <QDir>
#include <QFileInfo>

namespace Vantrope {

namespace {

QString mainMenuIdentifier(FileOperationType type)
{
    return type == FileOperationType::copyTo ? QStringLiteral("file_op_copy")
                                             : QStringLiteral("file_op_move");
}

QString folderTitle(const QString& folder)
{
    if (QDir(folder) == QDir::home()) {
        return Localized("file-operation.destination.home", "Home");
    }
    const QString name = QFileInfo(folder).fileName();
    return name.isEmpty() ? folder : name;
}

} // namespace

FileOperationsProvider::FileOperationsProvider(std::unique_ptr<OperationsController> controller,
                                               const Preferences& preferences)
    : m_controller(std::move(controller))
    , m_preferences(preferences)
{}

void FileOperationsProvider::setItems(const QList<QUrl>& urls)
{
    m_controller->setItems(urls);
}

std::optional<FileOperationType> FileOperationsProvider::typeFor(const QString& identifier) const
{
    auto type = FileOperationType::fromIdentifier(identifier);
    // One name for both renames, as instant actions use it: the number of items decides.
    if (type == FileOperationType::rename && m_controller->files().size() > 1) {
        type = FileOperationType::batchRename;
    }
    return type;
}

QList<OperationsProvider::MenuItem> FileOperationsProvider::menuItems() const
{
    QList<MenuItem> items;
    const QStringList mainMenu = m_preferences.value(PreferenceKeys::fileOperationMainMenuIdentifiers);
    for (const FileOperationType type : m_controller->performableOperationTypes()) {
        // Rows that ask something first end in an ellipsis, as menus do.
        const bool asks =
            !OperationsController::settings(type).isEmpty() || type == FileOperationType::getInfo;
        items.append(
            {type.identifier(), type.title() + (asks ? QStringLiteral("…") : QString()), type.iconName()});
        const bool transfer = type == FileOperationType::copyTo || type == FileOperationType::moveTo;
        if (transfer && mainMenu.contains(mainMenuIdentifier(type))) {
            for (const QString& folder : m_controller->recentDestinations(type)) {
                const QString title = type == FileOperationType::copyTo
                                          ? Localized("file-operation.copy-to-folder", "Copy to %1")
                                          : Localized("file-operation.move-to-folder", "Move to %1");
                items.append({type.identifier() + destinationSeparator + folder,
                              title.arg(folderTitle(folder)), QStringLiteral("folder")});
            }
        }
    }
    for (const UserOperation& operation : m_controller->performableUserOperations()) {
        items.append({operation.searchIdentifier(), operation.name, operation.effectiveIconName()});
    }
    for (const ApplicationScript& script : m_controller->performableApplicationScripts()) {
        items.append({script.searchIdentifier(), script.name, QStringLiteral("text-x-script")});
    }
    return items;
}

QList<OperationsProvider::SearchElement> FileOperationsProvider::searchElements() const
{
    QList<SearchElement> elements;
    for (const FileOperationType type : m_controller->performableOperationTypes()) {
        elements.append({SearchElement::Kind::operationType, type.identifier(), type.title(), type.iconName(),
                         type.keywords()});
    }
    for (const UserOperation& operation : m_controller->performableUserOperations()) {
        elements.append({SearchElement::Kind::userOperation,
                         operation.searchIdentifier(),
                         operation.name,
                         operation.effectiveIconName(),
                         {}});
    }
    for (const ApplicationScript& script : m_controller->performableApplicationScripts()) {
        elements.append({SearchElement::Kind::applicationScript,
                         script.searchIdentifier(),
                         script.name,
                         QStringLiteral("text-x-script"),
                         {}});
    }
    return elements;
}

bool FileOperationsProvider::performMenuItem(const QString& identifier)
{
    if (const qsizetype separator = identifier.indexOf(destinationSeparator); separator > 0) {
        const auto type = FileOperationType::fromIdentifier(identifier.left(separator));
        return type && m_controller->performTransfer(*type, identifier.mid(separator + 1));
    }
    for (const UserOperation& operation : m_controller->performableUserOperations()) {
        if (operation.searchIdentifier() == identifier) {
            return m_controller->performUserOperation(operation);
        }
    }
    for (const ApplicationScript& script : m_controller->performableApplicationScripts()) {
        if (script.searchIdentifier() == identifier) {
            return m_controller->performApplicationScript(script);
        }
    }
    const auto type = typeFor(identifier);
    return type && m_controller->performOperationType(*type);
}

bool FileOperationsProvider::performSearchElement(const SearchElement& element)
{
    return performMenuItem(element.identifier);
}

void FileOperationsProvider::cancel()
{
    m_controller->cancel();
}

OperationSettings FileOperationsProvider::settings(const QString& identifier) const
{
    const auto type = typeFor(identifier);
    return type ? OperationsController::settings(*type) : OperationSettings();
}

std::expected<void, QString> FileOperationsProvider::performWithValues(const QString& identifier,
                                                                       const QVariantMap& values)
{
    if (const auto type = typeFor(identifier)) {
        return m_controller->performOperationType(*type, values);
    }
    if (!values.isEmpty()) {
        return std::unexpected(
            Localized("file-operation.error.no-settings", "\"%1\" takes no settings.").arg(identifier));
    }
    if (performMenuItem(identifier)) {
        return {};
    }
    return std::unexpected(
        Localized("file-operation.error.not-started", "\"%1\" did not start.").arg(identifier));
}

} // namespace Vantrope
