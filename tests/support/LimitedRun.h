// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

namespace nurv::test {

/// Runs `work` in a child of this process, which may take `memoryMiB` of memory more than this one
/// has now (not under sanitizers, which need much of their own) and so many seconds of the processor. Returns
/// what `work` returned, or "ended by signal N" or "ended with status N". Blocks; for tests that run no threads.
[[nodiscard]] QString runLimited(int memoryMiB, int processorSeconds, const std::function<QString()> &work);

} // namespace nurv::test
