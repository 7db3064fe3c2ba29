// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/DragSessionView.h"
#include "Libraries/Core/SearchMatcher.h"

#include <QWidget>

class QLineEdit;
class QListWidget;

namespace Vantrope {

// Type-to-search over a shelf: a field and the list of matching actions under it. Before anything is
// typed the list shows the recent actions, or the suggested ones. Up and Down move, Enter runs the
// selected row, Escape (or leaving the field) dismisses.
class DragSessionSearchView final : public QWidget {
    Q_OBJECT
public:
    DragSessionSearchView(DragSessionView::SearchRequest request, QWidget* parent);

    QLineEdit& field() const { return *m_field; }
    QListWidget& list() const { return *m_list; }
    // The identifiers of the rows that can be chosen, top to bottom.
    QStringList shownIdentifiers() const;
    // Closes without answering (the shelf closed it).
    void close();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refill();
    void moveSelection(int step);
    void choose();
    void dismiss();

    DragSessionView::SearchRequest m_request;
    SearchMatcher m_matcher;
    QLineEdit* m_field = nullptr;
    QListWidget* m_list = nullptr;
    bool m_finished = false;
};

} // namespace Vantrope
