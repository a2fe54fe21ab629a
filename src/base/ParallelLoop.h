// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <functional>

namespace nurv {

/// As many threads as the machine runs at once.
[[nodiscard]] unsigned parallelThreads();

/// Runs `work(0)` to `work(count - 1)`, each once and begun in that order, on this thread and on `threads - 1` others, and waits for
/// all. Where the system gives no thread there are fewer. None is begun once `isStopped()` holds or one of them has thrown;
/// the first of what they throw is thrown here. `work` and `isStopped` run on any of the threads.
void runInParallel(qsizetype count, unsigned threads, const std::function<bool()> &isStopped,
                   const std::function<void(qsizetype)> &work);

} // namespace nurv
