// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace nurv {

class InputFile;

/// Passes over the ID3v2 tags that some taggers put in front of any file, where the input
/// stands. Returns their bytes, which may be more than are there. Throws ToolError(Read).
uint64_t skipId3v2Tags(InputFile &input);

} // namespace nurv
