// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

namespace nurv::tagsSandbox {

/// Loads the decoders of all kinds of pictures that are read, then gives up for good what reading tags
/// does not need: memory beyond 1 GiB, dumps, more than a few open files, new privileges and, where
/// the kernel has Landlock, every right to a file by its name. To be called on the only thread. Throws
/// NurvFailure when anything of that fails: the process must not go on then.
void enter();
/// Whether the kernel has Landlock.
[[nodiscard]] bool canGiveUpFiles();

/// From now on so much time of the processor may be used, then the process is killed. Throws NurvFailure.
void allowProcessorTime(std::chrono::seconds time);

} // namespace nurv::tagsSandbox
