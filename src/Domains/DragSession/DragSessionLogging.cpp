#include "DragSessionLogging.h"

Q_LOGGING_CATEGORY(lcDragSession, "vantrope.dragsession")
