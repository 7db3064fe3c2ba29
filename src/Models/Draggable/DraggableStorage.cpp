#include "DraggableStorage.h"

#include "DraggableLogging.h"

#include <QFile>

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
