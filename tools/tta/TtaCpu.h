// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

/// The processor that a loop of the codec is compiled for. All give the same bytes.
enum class TtaCpu { Baseline, Avx2 };

/// The best that this processor has.
[[nodiscard]] inline TtaCpu bestTtaCpu()
{
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2"))
        return TtaCpu::Avx2;
#endif
    return TtaCpu::Baseline;
}

} // namespace nurv

/// Marks a function that is compiled for TtaCpu::Avx2.
#if defined(__x86_64__)
#define NURV_TTA_AVX2 [[gnu::target("avx2,bmi,bmi2")]]
#else
#define NURV_TTA_AVX2
#endif
