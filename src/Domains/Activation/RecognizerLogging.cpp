#include "RecognizerLogging.h"

Q_LOGGING_CATEGORY(lcRecognizer, "vantrope.recognizer")
