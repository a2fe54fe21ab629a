// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <span>

namespace nurv::shorten {

/// Takes the next bytes of an output. Whatever it throws passes through the codec.
using ByteSink = std::function<void(std::span<const uint8_t>)>;

} // namespace nurv::shorten
