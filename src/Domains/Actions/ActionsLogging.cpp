#include "ActionsLogging.h"

Q_LOGGING_CATEGORY(lcActions, "vantrope.actions")
