#include "DirectoryObserverLogging.h"

Q_LOGGING_CATEGORY(lcDirectoryObserver, "vantrope.directoryobserver")
