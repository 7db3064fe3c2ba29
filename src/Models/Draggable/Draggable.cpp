// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Draggable.h"

#include "Libraries/Core/DispatchQueue.h"

namespace Vantrope {

void Draggable::resolveOnMain(ResolveCompletion completion, ResolveResult result)
{
    if (!completion) {
        return;
    }
    DispatchQueue::main().async(
        [weak = weak_from_this(), completion = std::move(completion), result = std::move(result)] {
            if (weak.lock()) {
                completion(result);
            }
        });
}

} // namespace Vantrope
