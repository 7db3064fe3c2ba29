// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QString>

namespace Vantrope {

// User-visible text is looked up by a dotted key (Qt's id-based translation); when no translation is
// loaded for the key the English text given beside it is shown.
QString Localized(const char* key, const char* english);
// As above, with "%n" replaced by `count` and "%1", "%2"... left for QString::arg.
QString Localized(const char* key, const char* english, int count);

// Loads "vantrope_<locale>.qm" from the installed translations folder, when there is one.
void installTranslations();

} // namespace Vantrope
