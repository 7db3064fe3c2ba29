// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/FileOperations/OperationsDisplayController.h"

#include <QDialog>
#include <QHash>

class QLabel;
class QWidget;

namespace Vantrope {

// The small window that asks an operation's values, made from its settings: a spin box for a number, a
// list for a choice, a check box, a text field, a folder with a button to pick another. Enter runs,
// Escape cancels; a preview under the fields follows the values where the operation gives one.
class OperationSettingsDialog final : public QDialog {
    Q_OBJECT
public:
    explicit OperationSettingsDialog(const OperationsDisplayController::SettingsRequest& request,
                                     QWidget* parent = nullptr);

    // What the fields hold now, keyed by the settings' keys, as the stored form (choice values, not titles).
    QVariantMap values() const;
    QWidget* field(const QString& key) const { return m_fields.value(key); }
    QLabel* preview() const { return m_preview; }

private:
    void updatePreview();

    OperationsDisplayController::SettingsRequest m_request;
    QHash<QString, QWidget*> m_fields;
    QLabel* m_preview = nullptr;
};

} // namespace Vantrope
