#include "DraggableLogging.h"

Q_LOGGING_CATEGORY(lcDraggable, "vantrope.draggable")
