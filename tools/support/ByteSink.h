// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <span>

namespace nurv {

/// Takes the next bytes of an output, which are good until it returns. Whatever it throws
/// passes through the caller.
using ByteSink = std::function<void(std::span<const uint8_t>)>;

} // namespace nurv
