// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Models/Draggable/FilePromiseTransport.h"
#include "TestSupport.h"

namespace Vantrope::Test {

// A drag source that writes its one promised file, "promised.txt", where it is asked, or reports that
// it could not.
class OneFilePromiseTransport final : public FilePromiseTransport {
public:
    explicit OneFilePromiseTransport(bool delivers)
        : m_delivers(delivers)
    {}
    QStringList fileNames() const override { return {QStringLiteral("promised.txt")}; }
    QStringList fileTypes() const override { return {}; }
    void receive(const QString& destination, FileHandler onFile, FinishedHandler onFinished) override
    {
        const QString path = destination + QStringLiteral("/promised.txt");
        if (m_delivers && writeFile(path, "promised bytes")) {
            onFile(QUrl::fromLocalFile(path));
        } else {
            onFile(std::unexpected(DraggableError{DraggableError::Kind::underlying, QStringLiteral("gone")}));
        }
        onFinished();
    }

private:
    bool m_delivers;
};

} // namespace Vantrope::Test
