// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeSource.h"

#include <functional>
#include <memory>

namespace nurv {

class InputFile;

/// The whole program: arguments, progress, numbered failures, exit status. `open` reads
/// the header of a Monkey's Audio file, at its start.
[[nodiscard]] int runMacProgram(int argc, char **argv,
                                const std::function<std::unique_ptr<ApeSource>(InputFile &)> &open);

} // namespace nurv
