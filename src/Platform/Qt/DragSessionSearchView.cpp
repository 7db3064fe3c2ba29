// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionSearchView.h"

#include <QEvent>
#include <QIcon>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

namespace Vantrope {

namespace {

constexpr int identifierRole = Qt::UserRole + 1;

} // namespace

DragSessionSearchView::DragSessionSearchView(DragSessionView::SearchRequest request, QWidget* parent)
    : QWidget(parent)
    , m_request(std::move(request))
    , m_matcher(m_request.items)
{
    setAutoFillBackground(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(2);
    m_field = new QLineEdit(this);
    m_field->setPlaceholderText(m_request.placeholder);
    m_field->setClearButtonEnabled(true);
    m_field->installEventFilter(this);
    m_list = new QListWidget(this);
    m_list->setFocusPolicy(Qt::NoFocus);
    m_list->setIconSize(QSize(16, 16));
    m_list->setUniformItemSizes(true);
    layout->addWidget(m_field);
    layout->addWidget(m_list, 1);

    connect(m_field, &QLineEdit::textChanged, this, &DragSessionSearchView::refill);
    connect(m_list, &QListWidget::itemActivated, this, [this](QListWidgetItem* item) {
        m_list->setCurrentItem(item);
        choose();
    });
    connect(m_list, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        m_list->setCurrentItem(item);
        choose();
    });
    m_field->setText(m_request.initialText);
    refill();
}

QStringList DragSessionSearchView::shownIdentifiers() const
{
    QStringList identifiers;
    for (int row = 0; row < m_list->count(); ++row) {
        const QVariant identifier = m_list->item(row)->data(identifierRole);
        if (identifier.isValid()) {
            identifiers.append(identifier.toString());
        }
    }
    return identifiers;
}

void DragSessionSearchView::refill()
{
    m_list->clear();
    const auto addItem = [this](const SearchItem& item) {
        auto* row = new QListWidgetItem(item.imageName.isEmpty() ? QIcon() : QIcon::fromTheme(item.imageName),
                                        item.title, m_list);
        row->setData(identifierRole, item.identifier);
    };
    const QString query = m_field->text();
    if (SearchMatcher::foldedWords(query).isEmpty()) {
        for (const SearchSection& section :
             m_matcher.suggestion(m_request.recentIdentifiers, m_request.suggestedIdentifiers)) {
            auto* header = new QListWidgetItem(section.title, m_list);
            header->setFlags(Qt::NoItemFlags);
            QFont font = header->font();
            font.setBold(true);
            header->setFont(font);
            for (const SearchItem& item : section.items) {
                addItem(item);
            }
        }
    } else {
        for (const SearchItem& item : m_matcher.filter(query)) {
            addItem(item);
        }
    }
    moveSelection(0);
}

void DragSessionSearchView::moveSelection(int step)
{
    QList<int> selectable;
    for (int row = 0; row < m_list->count(); ++row) {
        if (m_list->item(row)->data(identifierRole).isValid()) {
            selectable.append(row);
        }
    }
    if (selectable.isEmpty()) {
        m_list->setCurrentRow(-1);
        return;
    }
    const int current = int(selectable.indexOf(m_list->currentRow()));
    int next = current < 0 ? 0 : current + step;
    next = std::clamp(next, 0, int(selectable.size()) - 1);
    m_list->setCurrentRow(selectable[next]);
}

bool DragSessionSearchView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_field && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        switch (key->key()) {
        case Qt::Key_Down:
            moveSelection(1);
            return true;
        case Qt::Key_Up:
            moveSelection(-1);
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            choose();
            return true;
        case Qt::Key_Escape:
            dismiss();
            return true;
        default:
            break;
        }
    }
    if (watched == m_field && event->type() == QEvent::FocusOut) {
        const auto* focus = static_cast<QFocusEvent*>(event);
        if (focus->reason() != Qt::PopupFocusReason && focus->reason() != Qt::OtherFocusReason) {
            dismiss();
        }
    }
    return QWidget::eventFilter(watched, event);
}

void DragSessionSearchView::choose()
{
    QListWidgetItem* item = m_list->currentItem();
    if (m_finished || !item || !item->data(identifierRole).isValid()) {
        return;
    }
    m_finished = true;
    const QString identifier = item->data(identifierRole).toString();
    hide();
    deleteLater();
    if (m_request.select) {
        m_request.select(identifier);
    }
}

void DragSessionSearchView::dismiss()
{
    if (m_finished) {
        return;
    }
    m_finished = true;
    hide();
    deleteLater();
    if (m_request.dismiss) {
        m_request.dismiss();
    }
}

void DragSessionSearchView::close()
{
    m_finished = true;
    hide();
    deleteLater();
}

} // namespace Vantrope
