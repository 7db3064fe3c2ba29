#include "FileWatcher.h"

namespace Vantrope {

QString FileWatcher::Error::description() const
{
    return QStringLiteral("Cannot watch %1: %2").arg(path, reason);
}

} // namespace Vantrope
