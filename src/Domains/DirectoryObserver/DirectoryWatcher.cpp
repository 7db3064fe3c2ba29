#include "DirectoryWatcher.h"

namespace Vantrope {

QString DirectoryWatcher::Error::description() const
{
    return QStringLiteral("Cannot watch %1: %2").arg(path, reason);
}

} // namespace Vantrope
