#include "FileOperationsLogging.h"

Q_LOGGING_CATEGORY(lcFileOperations, "vantrope.fileoperations")
