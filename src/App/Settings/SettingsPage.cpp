// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "SettingsPage.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace Vantrope {

SettingsPage::SettingsPage(QWidget* parent)
    : QWidget(parent)
    , m_layout(new QVBoxLayout(this))
{
    m_layout->setContentsMargins(0, 4, 12, 0);
    m_layout->setSpacing(6);
}

QFormLayout* SettingsPage::addSection(const QString& heading)
{
    if (m_layout->count() > 0) {
        m_layout->addSpacing(12);
    }
    auto* label = new QLabel(heading, this);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    m_layout->addWidget(label);
    auto* form = new QFormLayout;
    form->setContentsMargins(12, 0, 0, 0);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    form->setRowWrapPolicy(QFormLayout::DontWrapRows);
    form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_layout->addLayout(form);
    return form;
}

QCheckBox* SettingsPage::addCheckBox(QFormLayout* section, const QString& objectName, const QString& text)
{
    auto* box = new QCheckBox(text, this);
    box->setObjectName(objectName);
    section->addRow(box);
    return box;
}

QLabel* SettingsPage::addNote(QFormLayout* section, const QString& text)
{
    auto* note = new QLabel(text, this);
    note->setWordWrap(true);
    note->setTextFormat(Qt::PlainText);
    note->setForegroundRole(QPalette::PlaceholderText);
    QFont font = note->font();
    font.setPointSizeF(font.pointSizeF() * 0.9);
    note->setFont(font);
    section->addRow(note);
    return note;
}

void SettingsPage::finish()
{
    m_layout->addStretch(1);
}

} // namespace Vantrope
