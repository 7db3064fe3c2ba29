// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/FileOperations/FileInformation.h"

#include <QWidget>

namespace Vantrope {

// The info window of one item: its icon and name over a table of its details and metadata.
class FileInformationWindow final : public QWidget {
    Q_OBJECT
public:
    explicit FileInformationWindow(const FileInformation& information, QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace Vantrope
