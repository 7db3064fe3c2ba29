// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "QtOperationsDisplayController.h"

#include "FileInformationWindow.h"
#include "Libraries/Core/Localized.h"
#include "OperationSettingsDialog.h"

#include <QCursor>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>

namespace Vantrope {

namespace {

// In front of the shelves, centred on the pointer and kept on its screen.
void present(QWidget* window)
{
    window->setWindowFlag(Qt::WindowStaysOnTopHint, true);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->adjustSize();
    const QPoint pointer = QCursor::pos();
    QRect frame(QPoint(), window->sizeHint());
    frame.moveCenter(pointer);
    if (QScreen* screen = QGuiApplication::screenAt(pointer)) {
        const QRect available = screen->availableGeometry();
        frame.moveLeft(std::clamp(frame.left(), available.left(),
                                  std::max(available.left(), available.right() - frame.width())));
        frame.moveTop(std::clamp(frame.top(), available.top(),
                                 std::max(available.top(), available.bottom() - frame.height())));
    }
    window->move(frame.topLeft());
    window->show();
    window->raise();
    window->activateWindow();
}

} // namespace

QtOperationsDisplayController::QtOperationsDisplayController(QObject* parent)
    : QObject(parent)
{}

void QtOperationsDisplayController::askForSettings(const SettingsRequest& request,
                                                   SettingsCompletion completion)
{
    auto* dialog = new OperationSettingsDialog(request);
    // Exactly one answer, whichever way the dialog goes.
    auto answered = std::make_shared<bool>(false);
    connect(dialog, &QDialog::finished, dialog, [dialog, completion, answered](int result) {
        if (std::exchange(*answered, true)) {
            return;
        }
        completion(result == QDialog::Accepted ? std::optional<QVariantMap>(dialog->values()) : std::nullopt);
    });
    present(dialog);
}

void QtOperationsDisplayController::askForClashResolution(const QStringList& names,
                                                          const QString& destination,
                                                          ClashCompletion completion)
{
    auto* box = new QMessageBox(
        QMessageBox::Question, Localized("clash.title", "Items Already There"),
        names.size() == 1
            ? Localized("clash.one", "\"%1\" is already in \"%2\".").arg(names.first(), destination)
            : Localized("clash.many", "%1 items are already in \"%2\":\n%3")
                  .arg(names.size())
                  .arg(destination, names.mid(0, 5).join(QLatin1Char('\n'))),
        QMessageBox::NoButton);
    box->setObjectName(QStringLiteral("clashDialog"));
    QPushButton* replace =
        box->addButton(Localized("clash.replace", "Replace"), QMessageBox::DestructiveRole);
    QPushButton* keepBoth =
        box->addButton(Localized("clash.keep-both", "Keep Both"), QMessageBox::AcceptRole);
    QPushButton* skip = box->addButton(Localized("clash.skip", "Skip"), QMessageBox::NoRole);
    box->addButton(QMessageBox::Cancel);
    box->setDefaultButton(keepBoth);
    replace->setObjectName(QStringLiteral("replace"));
    keepBoth->setObjectName(QStringLiteral("keepBoth"));
    skip->setObjectName(QStringLiteral("skip"));
    box->setInformativeText(Localized("clash.informative", "Replaced items go to the Trash."));
    connect(box, &QMessageBox::finished, box, [box, replace, keepBoth, skip, completion] {
        QAbstractButton* clicked = box->clickedButton();
        if (clicked == replace) {
            completion(FileTransfer::ClashResolution::replace);
        } else if (clicked == keepBoth) {
            completion(FileTransfer::ClashResolution::keepBoth);
        } else if (clicked == skip) {
            completion(FileTransfer::ClashResolution::skip);
        } else {
            completion(std::nullopt);
        }
    });
    present(box);
}

void QtOperationsDisplayController::showInformation(const FileInformation& information)
{
    present(new FileInformationWindow(information));
}

} // namespace Vantrope
