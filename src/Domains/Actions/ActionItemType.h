#pragma once

namespace Vantrope {

enum class ActionItemType { image, other };

} // namespace Vantrope
