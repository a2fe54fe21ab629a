// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/PictureMemory.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace nurv {

namespace {

struct PictureGate {
    std::mutex lock;
    std::condition_variable givenBack;
    std::int64_t givenOut = 0;
    std::function<void(std::int64_t)> askElsewhere;
};

PictureGate &gate()
{
    // Never destroyed: workers may decode until the process ends.
    static PictureGate *const instance = new PictureGate;
    return *instance;
}

} // namespace

PictureMemory::Share::Share(Share &&other) noexcept : m_bytes(std::exchange(other.m_bytes, 0)) {}

PictureMemory::Share::~Share()
{
    if (m_bytes == 0)
        return;
    const std::lock_guard lock(gate().lock);
    gate().givenOut -= m_bytes;
    gate().givenBack.notify_all();
}

PictureMemory::Share PictureMemory::take(std::int64_t bytes)
{
    const std::int64_t wanted = std::clamp<std::int64_t>(bytes, 0, kCapacity);
    if (gate().askElsewhere) {
        gate().askElsewhere(wanted);
        return Share(0);
    }
    std::unique_lock lock(gate().lock);
    gate().givenBack.wait(lock, [&] { return gate().givenOut + wanted <= kCapacity; });
    gate().givenOut += wanted;
    return Share(wanted);
}

std::int64_t PictureMemory::givenOut()
{
    const std::lock_guard lock(gate().lock);
    return gate().givenOut;
}

void PictureMemory::askElsewhere(std::function<void(std::int64_t bytes)> ask)
{
    gate().askElsewhere = std::move(ask);
}

} // namespace nurv
