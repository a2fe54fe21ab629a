// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <cstdint>

/// The entry of the fuzzer whose source the test program is built with.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace nurv::test {

/// What a file of a corpus may cost, whatever it says of itself.
struct ReplayLimits {
    std::chrono::seconds time{10}; ///< of the processor
    std::size_t bytes = std::size_t{64} << 20;
};

/// Gives each file of the folder to the fuzzer's entry. Fails for an empty folder, and
/// for a file that asks for more memory or takes more time than the limits say; one that
/// takes ten times as long ends the program with a text that names it. The entry itself
/// aborts at a wrong result.
[[nodiscard]] ::testing::AssertionResult replayCorpus(const QString &folder, const ReplayLimits &limits = {});

} // namespace nurv::test
