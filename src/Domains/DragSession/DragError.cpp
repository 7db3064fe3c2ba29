#include "DragError.h"
