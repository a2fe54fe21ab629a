// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace nurv {

class RunMessages;

/// By the bytes of the names: t1, t10, t2.
void sortAscii(std::vector<std::string> &names);

/// With numbers by their value: t1, t2, t10. Zeros in front make a number a fraction, as strverscmp(3) has it.
void sortNaturally(std::vector<std::string> &names);

/// Lets somebody on the terminal bring the names into an order. Ends the run where there is no terminal, and when
/// told to quit.
void editFileOrder(std::vector<std::string> &names, const RunMessages &messages);

} // namespace nurv
