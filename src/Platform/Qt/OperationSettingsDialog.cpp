// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "OperationSettingsDialog.h"

#include "Libraries/Core/Localized.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace Vantrope {

namespace {

QWidget* makeFolderField(const QString& value, QWidget* parent, QLineEdit** edit)
{
    auto* row = new QWidget(parent);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    *edit = new QLineEdit(value, row);
    (*edit)->setObjectName(QStringLiteral("folderPath"));
    auto* choose = new QPushButton(Localized("operation-dialog.choose-folder", "Choose…"), row);
    choose->setAutoDefault(false);
    layout->addWidget(*edit, 1);
    layout->addWidget(choose);
    QLineEdit* target = *edit;
    QObject::connect(choose, &QPushButton::clicked, row, [target, row] {
        const QString folder = QFileDialog::getExistingDirectory(
            row, Localized("operation-dialog.choose-folder.title", "Choose a Folder"), target->text());
        if (!folder.isEmpty()) {
            target->setText(folder);
        }
    });
    return row;
}

} // namespace

OperationSettingsDialog::OperationSettingsDialog(const OperationsDisplayController::SettingsRequest& request,
                                                 QWidget* parent)
    : QDialog(parent)
    , m_request(request)
{
    setWindowTitle(request.title);
    setObjectName(QStringLiteral("operationSettingsDialog"));
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    layout->addLayout(form);
    for (const OperationSetting& setting : request.settings) {
        const QVariant value = request.values.value(setting.key, setting.defaultValue);
        QWidget* field = nullptr;
        switch (setting.type) {
        case OperationSetting::Type::integer: {
            auto* spin = new QSpinBox(this);
            spin->setRange(setting.minimum, setting.maximum);
            spin->setValue(value.toInt());
            connect(spin, &QSpinBox::valueChanged, this, &OperationSettingsDialog::updatePreview);
            field = spin;
            break;
        }
        case OperationSetting::Type::choice: {
            auto* combo = new QComboBox(this);
            for (const OperationSetting::Choice& choice : setting.choices) {
                combo->addItem(choice.title, choice.value);
            }
            combo->setCurrentIndex(std::max(0, combo->findData(value.toString())));
            connect(combo, &QComboBox::currentIndexChanged, this, &OperationSettingsDialog::updatePreview);
            field = combo;
            break;
        }
        case OperationSetting::Type::boolean: {
            auto* check = new QCheckBox(this);
            check->setChecked(value.toBool());
            connect(check, &QCheckBox::toggled, this, &OperationSettingsDialog::updatePreview);
            field = check;
            break;
        }
        case OperationSetting::Type::text: {
            auto* edit = new QLineEdit(value.toString(), this);
            connect(edit, &QLineEdit::textChanged, this, &OperationSettingsDialog::updatePreview);
            field = edit;
            break;
        }
        case OperationSetting::Type::folder: {
            QLineEdit* edit = nullptr;
            field = makeFolderField(value.toString(), this, &edit);
            connect(edit, &QLineEdit::textChanged, this, &OperationSettingsDialog::updatePreview);
            break;
        }
        }
        field->setObjectName(setting.key);
        m_fields.insert(setting.key, field);
        form->addRow(setting.title, field);
    }
    if (request.preview) {
        m_preview = new QLabel(this);
        m_preview->setObjectName(QStringLiteral("preview"));
        m_preview->setTextFormat(Qt::PlainText);
        m_preview->setWordWrap(true);
        layout->addWidget(m_preview);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(Localized("operation-dialog.run", "Run"));
    buttons->button(QDialogButtonBox::Ok)->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    // A text field selects its name without the extension, ready to type over.
    if (auto* name = qobject_cast<QLineEdit*>(m_fields.value(QStringLiteral("name")))) {
        const qsizetype dot = name->text().lastIndexOf(QLatin1Char('.'));
        name->setFocus();
        name->setSelection(0, int(dot > 0 ? dot : name->text().size()));
    }
    updatePreview();
}

QVariantMap OperationSettingsDialog::values() const
{
    QVariantMap values;
    for (const OperationSetting& setting : m_request.settings) {
        QWidget* field = m_fields.value(setting.key);
        if (auto* spin = qobject_cast<QSpinBox*>(field)) {
            values.insert(setting.key, spin->value());
        } else if (auto* combo = qobject_cast<QComboBox*>(field)) {
            values.insert(setting.key, combo->currentData().toString());
        } else if (auto* check = qobject_cast<QCheckBox*>(field)) {
            values.insert(setting.key, check->isChecked());
        } else if (auto* edit = qobject_cast<QLineEdit*>(field)) {
            values.insert(setting.key, edit->text());
        } else if (field) {
            if (auto* folder = field->findChild<QLineEdit*>(QStringLiteral("folderPath"))) {
                values.insert(setting.key, folder->text());
            }
        }
    }
    return values;
}

void OperationSettingsDialog::updatePreview()
{
    if (!m_preview || !m_request.preview) {
        return;
    }
    constexpr int shown = 5;
    const QStringList names = m_request.preview(values());
    QStringList lines = names.mid(0, shown);
    if (names.size() > shown) {
        lines.append(Localized("operation-dialog.preview-more", "and %1 more").arg(names.size() - shown));
    }
    m_preview->setText(lines.join(QLatin1Char('\n')));
}

} // namespace Vantrope
