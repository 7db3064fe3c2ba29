// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "PreferenceStorage.h"

#include <memory>
#include <QString>

class QSettings;

namespace Vantrope {

// Keeps preferences in a JSON file through QSettings, by default
// "$XDG_CONFIG_HOME/vantrope/preferences.json". Every write is saved at once; several storages, in
// this process or another, may share the file and see each other's writes after `sync()`.
class SettingsPreferenceStorage final : public PreferenceStorage {
public:
    SettingsPreferenceStorage();
    explicit SettingsPreferenceStorage(const QString& filePath);
    ~SettingsPreferenceStorage() override;

    static QString defaultFilePath();
    QString filePath() const { return m_filePath; }

    std::optional<QVariant> value(PreferenceKey key) const override;
    void setValue(PreferenceKey key, const QVariant& value) override;
    void sync() override;
    void beginBatch() override;
    void endBatch() override;

private:
    void open();
    void setAsideIfUnreadable();
    // Saves, and says so when the file refused it.
    void save(const QString& what);

    QString m_filePath;
    std::unique_ptr<QSettings> m_settings;
    int m_batchDepth = 0;
    bool m_batchRead = false;
    bool m_batchWritten = false;
};

} // namespace Vantrope
