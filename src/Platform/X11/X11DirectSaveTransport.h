// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Models/Draggable/FilePromiseTransport.h"

#include <memory>

class QMimeData;

namespace Vantrope {

// A file promised through the X Direct Save protocol. The source names the file in the `XdndDirectSave0`
// property of its window; the target answers with a file URI there and converts the selection of the same
// name, to which the source replies "S" (saved it), "F" (fetch the bytes as application/octet-stream and
// save them yourself) or "E" (failed).
//
// A source answers only while its drag runs, so the whole exchange happens in the drop event; `receive`
// later hands over what came of it.
class X11DirectSaveTransport final : public FilePromiseTransport {
public:
    // Asks `sourceWindow` to save its file into `folder`, reading the drop's data through `dropData`, which
    // must be the data of the drop being delivered.
    static std::unique_ptr<X11DirectSaveTransport> fetch(const QMimeData& dropData, quint32 sourceWindow,
                                                         const QByteArray& proposedName,
                                                         const QString& folder);

    // The name the source of the current drag proposes, read from its window; absent without one.
    static std::optional<QByteArray> proposedName(quint32 sourceWindow);

    // A plain file name: one path component, neither "." nor "..", no NUL. Anything else could place the
    // file outside the folder it is meant for.
    static bool isAcceptableName(const QString& name);

    QStringList fileNames() const override;
    QStringList fileTypes() const override { return {}; }
    void receive(const QString& destination, FileHandler onFile, FinishedHandler onFinished) override;

private:
    X11DirectSaveTransport(QString name, FileResult result);

    const QString m_name;
    const FileResult m_result;
    bool m_received = false;
};

} // namespace Vantrope
