// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "OutboundMimeData.h"

#include "Domains/DragSession/DragSessionLogging.h"
#include "Models/Pasteboard/PasteboardTypes.h"
#include "Platform/DBus/FileTransferPortal.h"

#ifdef WITH_X11
#include "Platform/X11/X11DirectSaveSource.h"
#endif

#include <QDir>
#include <QFileInfo>

namespace Vantrope {

const QString OutboundMimeData::directSaveType = QStringLiteral("XdndDirectSave0");

void OutboundMimeData::setDirectSave(const QString& fileName, const QByteArray& content)
{
    m_directSaveName = fileName;
    m_directSaveContent = content;
    // What is offered; the answer is worked out when the target asks.
    setData(directSaveType, QByteArray("E"));
}

QVariant OutboundMimeData::retrieveData(const QString& format, QMetaType type) const
{
    if (format == directSaveType && !m_directSaveName.isEmpty()) {
        return saveDirectly();
    }
    if ((format == PasteboardTypes::uriList || format == FileTransferPortal::mimeType) && hasFormat(format)) {
        noteFilesTaken();
    }
    return QMimeData::retrieveData(format, type);
}

void OutboundMimeData::noteFilesTaken() const
{
    if (!m_filesTaken) {
        m_filesTaken = true;
        // Asked for from a const getter; the signal changes nothing here.
        Q_EMIT const_cast<OutboundMimeData*>(this)->filesWereTaken();
    }
}

QByteArray OutboundMimeData::saveDirectly() const
{
#ifdef WITH_X11
    const std::optional<QString> destination = X11DirectSaveSource::destination();
    if (!destination) {
        // Asked before the target named a place (some programs fetch every type up front).
        return "E";
    }
    const QString path = *destination;
    if (path == m_savedTo) {
        noteFilesTaken();
        return "S";
    }
    const QFileInfo info(path);
    // The target names the folder and the file; a name that climbs out of it or needs cleaning is no
    // name a file manager writes.
    if (QDir::cleanPath(path) != path || !info.isAbsolute() || path.contains(QChar(0)) ||
        !info.dir().exists() || info.fileName().isEmpty()) {
        qCWarning(lcDragSession) << "A drop target asked to save a text to" << path
                                 << ", which is no place for it";
        return "E";
    }
    // Created only if nothing is there, not even a dangling link: a file of the user's is never replaced.
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        qCWarning(lcDragSession).noquote()
            << "Not saving a text to" << path << ":"
            << (info.exists() || info.isSymLink() ? QStringLiteral("it exists") : file.errorString());
        return "E";
    }
    if (file.write(m_directSaveContent) != m_directSaveContent.size() || !file.flush()) {
        qCWarning(lcDragSession).noquote() << "Could not save a text to" << path << ":" << file.errorString();
        file.remove();
        return "E";
    }
    file.close();
    m_savedTo = path;
    noteFilesTaken();
    return "S";
#else
    return "E";
#endif
}

} // namespace Vantrope
