#include "DragError.h"

#include "Libraries/Core/Localized.h"

namespace Vantrope {

QString DragError::message() const
{
    if (kind == Kind::rejected && rejection == RejectionType::empty) {
        return Localized("shelf.drag-error.empty-append", "Empty files can't be added to the shelf.");
    }
    if (kind == Kind::rejected && rejection == RejectionType::combined) {
        return Localized("shelf.drag-error.empty-and-existing-append",
                         "Empty files and items already on the shelf can't be added.");
    }
    return Localized("shelf.drag-error.general", "These items can't be added to the shelf.");
}

} // namespace Vantrope
