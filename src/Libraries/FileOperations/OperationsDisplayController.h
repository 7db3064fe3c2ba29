// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "FileInformation.h"
#include "FileTransfer.h"
#include "OperationSetting.h"

#include <functional>
#include <optional>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace Vantrope {

// What the operations ask of the person at the shelf: the values before a run, what to do on a name
// clash, and the info window. The program shows these over the shelf; a controller without one runs
// with the remembered or default values and never asks.
class OperationsDisplayController {
public:
    struct SettingsRequest {
        QString title;
        OperationSettings settings;
        QVariantMap values; // what the fields start with
        // The names the values would give, shown under the fields as they change (batch rename).
        std::function<QStringList(const QVariantMap& values)> preview;
    };
    // None when the person cancelled.
    using SettingsCompletion = std::function<void(const std::optional<QVariantMap>& values)>;
    using ClashCompletion =
        std::function<void(const std::optional<FileTransfer::ClashResolution>& resolution)>;

    virtual ~OperationsDisplayController() = default;

    virtual void askForSettings(const SettingsRequest& request, SettingsCompletion completion) = 0;
    virtual void askForClashResolution(const QStringList& names, const QString& destination,
                                       ClashCompletion completion) = 0;
    virtual void showInformation(const FileInformation& information) = 0;
};

} // namespace Vantrope
