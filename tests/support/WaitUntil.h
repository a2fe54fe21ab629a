// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>

namespace nurv::test {

/// Runs the event loop until the predicate holds or the limit has passed, and
/// returns whether it holds. The predicate is asked again after each round of
/// events, and every few milliseconds for states that no event announces.
[[nodiscard]] bool waitUntil(const std::function<bool()> &predicate,
                             std::chrono::milliseconds limit = std::chrono::seconds(20));

/// Handles the events that are waiting now, deferred deletions included.
void handleWaitingEvents();

} // namespace nurv::test
