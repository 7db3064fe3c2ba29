// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QWidget>

namespace Vantrope {

// Shown once, at the first start: what a shelf is and how to get one.
class IntroductionWindow final : public QWidget {
    Q_OBJECT
public:
    explicit IntroductionWindow(QWidget* parent = nullptr);
};

} // namespace Vantrope
