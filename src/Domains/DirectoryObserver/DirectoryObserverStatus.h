#pragma once

namespace Vantrope {

// The health of a watched folder as the settings show it.
enum class DirectoryObserverStatus { unknown, unauthorized, inaccessiblePath, active, stopped };

} // namespace Vantrope
