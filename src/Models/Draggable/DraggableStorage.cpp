#include "DraggableStorage.h"

#include "DraggableLogging.h"
#include "Libraries/Core/AtomicFileWriter.h"

#include <QFile>
#include <QFileInfo>

namespace Vantrope::DraggableStorage {

std::optional<QString> filePath(ReservedTemporaryDirectory directory, const QString& fileName)
{
    const std::optional<QString> folder = TemporaryDirectories::path(directory);
    if (!folder) {
        qCWarning(lcDraggable) << "No temporary folder" << TemporaryDirectories::folderName(directory);
        return std::nullopt;
    }
    return *folder + QLatin1Char('/') + fileName;
}

std::expected<void, QString> overwrite(const QString& path, const QByteArray& data)
{
    if (!QFileInfo::exists(path)) {
        // Nobody follows a file that is not there yet: it appears whole, never empty or half written.
        if (const auto written = AtomicFileWriter::write(path, data); !written) {
            return std::unexpected(written.error().reason);
        }
        return {};
    }
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        return std::unexpected(file.errorString());
    }
    if (file.write(data) != data.size() || !file.flush()) {
        return std::unexpected(file.errorString());
    }
    file.close();
    if (file.error() != QFileDevice::NoError) {
        return std::unexpected(file.errorString());
    }
    return {};
}

} // namespace Vantrope::DraggableStorage
