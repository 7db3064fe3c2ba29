// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QWidget>

class QCheckBox;
class QFormLayout;
class QLabel;
class QVBoxLayout;

namespace Vantrope {

// A page of the settings window: sections with a heading, each a form of labelled rows, laid out like
// the desktop's own settings.
class SettingsPage : public QWidget {
    Q_OBJECT
public:
    explicit SettingsPage(QWidget* parent = nullptr);

protected:
    QFormLayout* addSection(const QString& heading);
    // A check box as a row of its own, named for tests and accessibility.
    QCheckBox* addCheckBox(QFormLayout* section, const QString& objectName, const QString& text);
    // Smaller explanatory text under the rows before it.
    QLabel* addNote(QFormLayout* section, const QString& text);
    QVBoxLayout* pageLayout() const { return m_layout; }
    // Ends the page: what follows stays at the top.
    void finish();

private:
    QVBoxLayout* m_layout;
};

} // namespace Vantrope
