// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "X11DirectSaveTransport.h"

#include "Libraries/Core/Localized.h"
#include "Models/Draggable/DraggableLogging.h"
#include "Models/Pasteboard/PasteboardTypes.h"
#include "X11Properties.h"

#include <QDir>
#include <QFileInfo>
#include <QMimeData>
#include <QSaveFile>
#include <QStringDecoder>

namespace Vantrope {

namespace {

const QString octetStream = QStringLiteral("application/octet-stream");

DraggableError failure(const QString& reason)
{
    return {DraggableError::Kind::underlying,
            Localized("receive-error.direct-save", "The program the file came from could not save it.") +
                QLatin1Char(' ') + reason};
}

QString decodedName(const QByteArray& bytes)
{
    // The protocol leaves the encoding to the property type; every source in use writes UTF-8, and
    // anything that does not decode is taken byte for byte.
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString utf8 = decoder(bytes);
    return decoder.hasError() ? QString::fromLatin1(bytes) : utf8;
}

bool saveBytes(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    file.setDirectWriteFallback(false);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

} // namespace

std::optional<QByteArray> X11DirectSaveTransport::proposedName(quint32 sourceWindow)
{
    return X11Properties::read(sourceWindow, X11Properties::atom("XdndDirectSave0"));
}

bool X11DirectSaveTransport::isAcceptableName(const QString& name)
{
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           !name.contains(QLatin1Char('/')) && !name.contains(QChar(0)) && name.toUtf8().size() <= 255;
}

std::unique_ptr<X11DirectSaveTransport> X11DirectSaveTransport::fetch(const QMimeData& dropData,
                                                                      quint32 sourceWindow,
                                                                      const QByteArray& proposedName,
                                                                      const QString& folder)
{
    const QString name = decodedName(proposedName);
    const auto make = [&name](FileResult result) {
        return std::unique_ptr<X11DirectSaveTransport>(new X11DirectSaveTransport(name, std::move(result)));
    };
    if (!isAcceptableName(name)) {
        qCWarning(lcDraggable).noquote() << "Refused a promised file whose name leaves its folder:" << name;
        return make(std::unexpected(
            failure(Localized("receive-error.direct-save.name", "It proposed a name that is not allowed."))));
    }
    if (!sourceWindow) {
        qCWarning(lcDraggable) << "Direct save promise without a source window";
        return make(std::unexpected(failure(QString())));
    }
    const QString path = QDir(folder).filePath(name);
    if (QFileInfo::exists(path)) {
        qCWarning(lcDraggable).noquote() << "Direct save destination already exists:" << path;
        return make(std::unexpected(failure(QString())));
    }

    X11Properties::write(sourceWindow, X11Properties::atom("XdndDirectSave0"),
                         X11Properties::atom("text/plain"), QUrl::fromLocalFile(path).toEncoded());
    X11Properties::flush();
    // Converting the selection to the protocol's own target is what asks the source to save.
    const QByteArray answer = dropData.data(PasteboardTypes::directSave);
    qCInfo(lcDraggable).noquote() << "Direct save source answered" << QString::fromLatin1(answer.left(1))
                                  << "for" << name;
    if (answer.startsWith('S')) {
        if (!QFileInfo(path).isFile()) {
            qCWarning(lcDraggable).noquote()
                << "Direct save source reported success but wrote no file at" << path;
            return make(std::unexpected(failure(QString())));
        }
        return make(QUrl::fromLocalFile(path));
    }
    if (answer.startsWith('F')) {
        const QByteArray bytes = dropData.data(octetStream);
        if (bytes.isEmpty() || !saveBytes(path, bytes)) {
            qCWarning(lcDraggable).noquote()
                << "Could not save the fetched bytes of a direct save promise to" << path;
            return make(std::unexpected(failure(QString())));
        }
        return make(QUrl::fromLocalFile(path));
    }
    return make(std::unexpected(failure(QString())));
}

X11DirectSaveTransport::X11DirectSaveTransport(QString name, FileResult result)
    : m_name(std::move(name))
    , m_result(std::move(result))
{}

QStringList X11DirectSaveTransport::fileNames() const
{
    return {m_name};
}

void X11DirectSaveTransport::receive(const QString& destination, FileHandler onFile,
                                     FinishedHandler onFinished)
{
    if (m_received) {
        return;
    }
    m_received = true;
    FileResult result = m_result;
    if (result) {
        // The file was saved during the drop, before the shelf chose where promises of this drop go.
        const QString saved = result->toLocalFile();
        const QString wanted = QDir(destination).filePath(QFileInfo(saved).fileName());
        if (QDir::cleanPath(saved) != QDir::cleanPath(wanted)) {
            if (QFile::rename(saved, wanted)) {
                result = QUrl::fromLocalFile(wanted);
            } else {
                qCWarning(lcDraggable).noquote() << "Could not move a direct save file into" << destination;
                result = std::unexpected(failure(QString()));
            }
        }
    }
    if (onFile) {
        onFile(result);
    }
    if (onFinished) {
        onFinished();
    }
}

} // namespace Vantrope
