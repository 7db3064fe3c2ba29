// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "IntroductionWindow.h"

#include "Libraries/Core/Localized.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace Vantrope {

IntroductionWindow::IntroductionWindow(QWidget* parent)
    : QWidget(parent, Qt::Window)
{
    setObjectName(QStringLiteral("Vantrope.IntroductionWindow"));
    setWindowTitle(Localized("introduction.window.title", "Welcome to Vantrope"));
    auto* text =
        new QLabel(Localized("introduction.body",
                             "Vantrope keeps a shelf at hand for the things you drag. Shake the pointer "
                             "while you drag a file, an image, a link or some text, and a shelf appears "
                             "under it. Set things down there, go where you need them, and drag them out "
                             "again together.\n\nYou can also open a shelf from the Vantrope item in the "
                             "system tray, where your recent shelves wait as well."),
                   this);
    text->setWordWrap(true);
    auto* done = new QPushButton(Localized("introduction.done-button", "Get Started"), this);
    done->setDefault(true);
    connect(done, &QPushButton::clicked, this, &QWidget::close);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(done, 0, Qt::AlignRight);
    resize(440, 220);
}

} // namespace Vantrope
