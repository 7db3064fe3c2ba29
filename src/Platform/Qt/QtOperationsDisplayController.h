// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/FileOperations/OperationsDisplayController.h"

#include <QObject>

namespace Vantrope {

// Shows what the file operations ask for as small windows in front of the shelves, near the pointer.
class QtOperationsDisplayController final : public QObject, public OperationsDisplayController {
    Q_OBJECT
public:
    explicit QtOperationsDisplayController(QObject* parent = nullptr);

    void askForSettings(const SettingsRequest& request, SettingsCompletion completion) override;
    void askForClashResolution(const QStringList& names, const QString& destination,
                               ClashCompletion completion) override;
    void showInformation(const FileInformation& information) override;
};

} // namespace Vantrope
