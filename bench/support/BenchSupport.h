// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <initializer_list>
#include <optional>
#include <QtGlobal>
#include <vector>

namespace Vantrope::Bench {

double median(std::vector<double> values);

// The resident memory of a process (this one by default) in megabytes, or -1 when it cannot be read.
double residentMegabytes(qint64 pid = 0);

// Benchmarks that drive a display run on one of their own, never the user's: xdotool would move the
// real pointer. The first call re-executes the program under the tests' display script and does not
// return unless that fails; it answers the exit code then, or 0 when a needed tool is missing. Inside
// the display it answers nothing and the benchmark goes on.
std::optional<int> runOnOwnDisplay(char* argv[], std::initializer_list<const char*> tools);

} // namespace Vantrope::Bench
