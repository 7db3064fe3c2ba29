#include "DirectoryWatcher.h"

#include "Linux/InotifyDirectoryWatcher.h"

namespace Vantrope {

QString DirectoryWatcher::Error::description() const
{
    return QStringLiteral("Cannot watch %1: %2").arg(path, reason);
}

DirectoryWatcher& DirectoryWatcher::system()
{
    // Never destroyed: watches may still be released while static objects go away at exit.
    static auto* watcher = new InotifyDirectoryWatcher;
    return *watcher;
}

} // namespace Vantrope
