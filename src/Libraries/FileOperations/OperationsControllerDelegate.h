// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QString>
#include <QStringList>

namespace Vantrope {

class OperationsController;

// How a run reports back to its shelf, on the main thread. Every run that starts ends with exactly one
// of finished, failed or cancelled; content reports come before it.
class OperationsControllerDelegate {
public:
    virtual ~OperationsControllerDelegate() = default;

    virtual void operationDidStart(OperationsController& controller, const QString& title) = 0;
    virtual void operationDidProgress(OperationsController& controller, double fraction,
                                      const QString& title) = 0;
    // The shelf's items become these files.
    virtual void operationReplaceContent(OperationsController& controller, const QStringList& paths) = 0;
    // These items left the shelf (they went to the Trash).
    virtual void operationRemoveContent(OperationsController& controller, const QStringList& paths) = 0;
    // Text for the clipboard; with `asItem` it also lands on the shelf as a text item.
    virtual void operationProduceText(OperationsController& controller, const QString& text, bool asItem) = 0;
    // The end of a run; `message` names the files that failed, or is empty. A run where nothing at all
    // worked ends with `operationDidFail`.
    virtual void operationDidFinish(OperationsController& controller, const QString& message) = 0;
    virtual void operationDidFail(OperationsController& controller, const QString& message) = 0;
    virtual void operationDidCancel(OperationsController& controller) = 0;
};

} // namespace Vantrope
