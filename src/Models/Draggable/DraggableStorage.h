#pragma once

#include "Libraries/Core/ReservedTemporaryDirectory.h"

#include <expected>
#include <optional>
#include <QByteArray>
#include <QString>

namespace Vantrope::DraggableStorage {

// Where an item that is not a file by itself puts the file that stands for it.
std::optional<QString> filePath(ReservedTemporaryDirectory directory, const QString& fileName);

// Writes the file. A new one appears whole; an existing one has its contents replaced in place, since
// another shelf may follow it by its inode, which a write through a renamed temporary file would take
// away from under it.
std::expected<void, QString> overwrite(const QString& path, const QByteArray& data);

} // namespace Vantrope::DraggableStorage
