// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "SettingsPreferenceStorage.h"

#include "JsonSettingsFormat.h"
#include "Libraries/Core/AtomicFileWriter.h"
#include "PreferenceDefinition.h"
#include "Preferences.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <utility>

namespace Vantrope {

SettingsPreferenceStorage::SettingsPreferenceStorage()
    : SettingsPreferenceStorage(defaultFilePath())
{}

SettingsPreferenceStorage::SettingsPreferenceStorage(const QString& filePath)
    : m_filePath(QFileInfo(filePath).absoluteFilePath())
{
    const QDir folder = QFileInfo(m_filePath).absoluteDir();
    if (!folder.exists() && folder.mkpath(QStringLiteral("."))) {
        QFile::setPermissions(folder.path(),
                              QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    }
    open();
    setAsideIfUnreadable();
}

SettingsPreferenceStorage::~SettingsPreferenceStorage() = default;

QString SettingsPreferenceStorage::defaultFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/vantrope/preferences.json");
}

std::optional<QVariant> SettingsPreferenceStorage::value(PreferenceKey key) const
{
    QVariant stored = m_settings->value(PreferenceDefinition::of(key).storedName.toString());
    if (stored.isNull()) {
        return std::nullopt;
    }
    return stored;
}

void SettingsPreferenceStorage::setValue(PreferenceKey key, const QVariant& value)
{
    const QString name = PreferenceDefinition::of(key).storedName.toString();
    // Read what other processes wrote first, so that a file they broke is set aside, not written over.
    if (m_batchDepth == 0 || !m_batchRead) {
        sync();
        m_batchRead = m_batchDepth > 0;
    }
    if (value.isNull()) {
        m_settings->remove(name);
    } else if (JsonSettingsFormat::canStore(value)) {
        m_settings->setValue(name, value);
    } else {
        qCWarning(lcPreferences).noquote()
            << "Not saving" << name << "- a value of type" << value.metaType().name()
            << "cannot be stored in the preferences file";
        return;
    }
    if (m_batchDepth > 0) {
        m_batchWritten = true;
        return;
    }
    save(name);
}

void SettingsPreferenceStorage::save(const QString& what)
{
    sync();
    if (m_settings->status() == QSettings::AccessError) {
        qCWarning(lcPreferences).noquote() << QStringLiteral("Could not save %1 to %2").arg(what, m_filePath);
        // The value stays in memory and QSettings tries again at the next sync; a fresh object clears the
        // sticky error so that the next failure is reported too.
        open();
    }
}

void SettingsPreferenceStorage::beginBatch()
{
    ++m_batchDepth;
}

void SettingsPreferenceStorage::endBatch()
{
    if (m_batchDepth == 0 || --m_batchDepth > 0) {
        return;
    }
    m_batchRead = false;
    if (std::exchange(m_batchWritten, false)) {
        save(QStringLiteral("the first-run values"));
    }
}

void SettingsPreferenceStorage::sync()
{
    m_settings->sync();
    setAsideIfUnreadable();
}

void SettingsPreferenceStorage::open()
{
    m_settings = std::make_unique<QSettings>(m_filePath, JsonSettingsFormat::format());
}

void SettingsPreferenceStorage::setAsideIfUnreadable()
{
    if (m_settings->status() != QSettings::FormatError) {
        return;
    }
    QFile file(m_filePath);
    const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    file.close();
    const auto parsed = JsonSettingsFormat::parse(content);
    if (parsed) {
        // The error was met in content that a write has replaced since.
        open();
        return;
    }
    // QSettings would write over the file with only the values set from now on, so move it out of the
    // way first: the user may still recover their settings from it.
    const QString keptAs = AtomicFileWriter::setAside(m_filePath);
    qCWarning(lcPreferences).noquote()
        << QStringLiteral("The preferences file %1 is not valid JSON (%2); reading it as empty%3")
               .arg(m_filePath, parsed.error().reason,
                    keptAs.isEmpty() ? QString() : QStringLiteral(", the file is kept as ") + keptAs);
    // A fresh QSettings also clears the sticky error, so a later corruption is noticed too.
    open();
}

} // namespace Vantrope
