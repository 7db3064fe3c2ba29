#include "OutboundMimeData.h"

#include "Domains/DragSession/DragSessionLogging.h"
#include "Libraries/Core/AtomicFileWriter.h"
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
    const QString path = QDir::cleanPath(*destination);
    if (path == m_savedTo) {
        noteFilesTaken();
        return "S";
    }
    const QFileInfo info(path);
    if (!info.dir().exists() || info.fileName().isEmpty() ||
        info.fileName().startsWith(QLatin1String(".."))) {
        qCWarning(lcDragSession) << "A drop target asked to save a text to" << path
                                 << ", which is no place for it";
        return "E";
    }
    if (info.exists() || info.isSymLink()) {
        qCWarning(lcDragSession) << "Not saving a text over" << path << ", which exists";
        return "E";
    }
    if (const auto written = AtomicFileWriter::write(path, m_directSaveContent); !written) {
        qCWarning(lcDragSession).noquote()
            << "Could not save a text to" << path << ":" << written.error().description();
        return "E";
    }
    // Files a drop puts in the user's folders are the user's to share as any other they make.
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    m_savedTo = path;
    noteFilesTaken();
    return "S";
#else
    return "E";
#endif
}

} // namespace Vantrope
