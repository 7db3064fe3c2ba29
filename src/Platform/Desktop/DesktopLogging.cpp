#include "DesktopLogging.h"

Q_LOGGING_CATEGORY(lcDesktop, "vantrope.desktop")
