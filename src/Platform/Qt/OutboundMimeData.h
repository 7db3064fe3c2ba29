// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QMimeData>
#include <QString>

namespace Vantrope {

// The data a drag of shelf items offers. A drag of texts alone offers their file through X Direct Save
// instead of a URI list, so that text targets get the text and file managers the file.
class OutboundMimeData final : public QMimeData {
    Q_OBJECT

public:
    static const QString directSaveType;

    // The file a direct save writes: its suggested name and its content.
    void setDirectSave(const QString& fileName, const QByteArray& content);
    const QString& directSaveFileName() const { return m_directSaveName; }
    // Whether the target took files: their URIs, the portal's key or a saved direct save. Only then may
    // a "move" answer take the items off the shelf: a text field that inserts a text and answers "move"
    // has moved nothing.
    bool filesTaken() const { return m_filesTaken; }

Q_SIGNALS:
    void filesWereTaken();

protected:
    QVariant retrieveData(const QString& format, QMetaType type) const override;

private:
    void noteFilesTaken() const;
    // "S" once the file is written where the target asked, "E" otherwise.
    QByteArray saveDirectly() const;

    QString m_directSaveName;
    QByteArray m_directSaveContent;
    mutable QString m_savedTo;
    mutable bool m_filesTaken = false;
};

} // namespace Vantrope
