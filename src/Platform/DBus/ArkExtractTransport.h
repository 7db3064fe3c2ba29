// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Models/Draggable/FilePromiseTransport.h"

#include <chrono>
#include <memory>

namespace Vantrope {

// Files dragged out of KDE's archive manager. The drag carries the D-Bus service and object of the
// archive's window; `org.kde.ark.DndExtract.extractSelectedFilesTo(folder)` extracts the dragged entries
// there. The call says nothing of which files came, so the folder is watched until its content has held
// still for a moment.
class ArkExtractTransport final : public FilePromiseTransport {
public:
    // How long the folder must stay unchanged before the extraction counts as done.
    static constexpr std::chrono::milliseconds settleTime{500};
    // The longest an extraction may take before whatever has arrived is taken.
    static constexpr std::chrono::milliseconds timeout{600'000};

    ArkExtractTransport(QString service, QString objectPath);
    ~ArkExtractTransport() override;

    QStringList fileNames() const override { return {}; }
    QStringList fileTypes() const override { return {}; }
    // Call on the main thread.
    void receive(const QString& destination, FileHandler onFile, FinishedHandler onFinished) override;

private:
    class Extraction;

    const QString m_service;
    const QString m_objectPath;
    std::shared_ptr<Extraction> m_extraction;
};

} // namespace Vantrope
