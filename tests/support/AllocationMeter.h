// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace nurv::test {

/// Measures what `new` asks for while it lives, on all threads, above what lived at its
/// start. A program that links it has its `operator new` and `operator delete` replaced;
/// a request beyond 1 GiB is counted and then fails with std::bad_alloc. One at a time.
class AllocationMeter {
public:
    AllocationMeter();
    ~AllocationMeter();
    AllocationMeter(const AllocationMeter &) = delete;
    AllocationMeter &operator=(const AllocationMeter &) = delete;

    /// The largest number of bytes that lived at the same time.
    [[nodiscard]] std::size_t peakBytes() const;

    /// The largest number of bytes asked for at once, also where that failed.
    [[nodiscard]] std::size_t largestRequest() const;
};

} // namespace nurv::test
