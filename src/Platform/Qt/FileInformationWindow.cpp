// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FileInformationWindow.h"

#include "Libraries/Core/Localized.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

namespace Vantrope {

namespace {

QLabel* valueLabel(const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    return label;
}

} // namespace

FileInformationWindow::FileInformationWindow(const FileInformation& information, QWidget* parent)
    : QWidget(parent, Qt::Window)
{
    setObjectName(QStringLiteral("fileInformationWindow"));
    setWindowTitle(Localized("info.window-title", "%1 Info").arg(information.name));
    auto* layout = new QVBoxLayout(this);
    auto* header = new QHBoxLayout;
    auto* icon = new QLabel(this);
    icon->setPixmap(QIcon::fromTheme(information.iconName, QIcon::fromTheme(QStringLiteral("text-x-generic")))
                        .pixmap(48, 48));
    header->addWidget(icon);
    auto* name = valueLabel(information.name, this);
    QFont bold = name->font();
    bold.setBold(true);
    name->setFont(bold);
    header->addWidget(name, 1);
    layout->addLayout(header);
    auto* form = new QFormLayout;
    for (const auto& [label, value] : information.rows) {
        form->addRow(label, valueLabel(value, this));
    }
    layout->addLayout(form);
    if (!information.metadata.isEmpty()) {
        auto* area = new QScrollArea(this);
        auto* content = new QWidget(area);
        auto* metadata = new QFormLayout(content);
        for (const auto& [label, value] : information.metadata) {
            metadata->addRow(label, valueLabel(value, content));
        }
        area->setWidget(content);
        area->setWidgetResizable(true);
        area->setMinimumHeight(160);
        layout->addWidget(new QLabel(Localized("info.metadata", "Metadata"), this));
        layout->addWidget(area, 1);
    }
    setMinimumWidth(360);
}

void FileInformationWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace Vantrope
