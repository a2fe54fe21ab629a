// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/ReadAheadSource.h"

#include "support/ToolError.h"

#include <algorithm>
#include <utility>

namespace nurv {

namespace {

constexpr size_t kBlockBytes = size_t{256} * 1024;
constexpr size_t kMostBlocks = 8;

} // namespace

ReadAheadSource::ReadAheadSource(std::unique_ptr<WaveSource> source)
    : m_source(std::move(source)), m_soundMd5(m_source->soundMd5()), m_thread([this] { run(); })
{
}

ReadAheadSource::~ReadAheadSource()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_isGivenUp = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

bool ReadAheadSource::waitForRoom()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_isGivenUp || m_blocks.size() < kMostBlocks; });
    return !m_isGivenUp;
}

void ReadAheadSource::add(std::vector<uint8_t> block, bool isLast)
{
    {
        const std::scoped_lock lock(m_mutex);
        if (!block.empty())
            m_blocks.push_back(std::move(block));
        m_isComplete = isLast;
        if (isLast)
            m_fault = m_source->failure();
    }
    m_changed.notify_all();
}

void ReadAheadSource::run()
{
    while (waitForRoom()) {
        std::vector<uint8_t> block(kBlockBytes);
        const size_t got = m_source->read(block);
        const bool isLast = got < block.size();
        block.resize(got);
        add(std::move(block), isLast);
        if (isLast)
            return;
    }
}

size_t ReadAheadSource::readSome(std::span<uint8_t> bytes)
{
    if (m_taken == m_block.size()) {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_isComplete || !m_blocks.empty(); });
        if (m_blocks.empty()) {
            if (m_fault)
                throw ToolError(ToolError::Kind::Damaged, *m_fault);
            return 0;
        }
        m_block = std::move(m_blocks.front());
        m_blocks.pop_front();
        m_taken = 0;
        lock.unlock();
        m_changed.notify_all();
    }
    const size_t count = std::min(bytes.size(), m_block.size() - m_taken);
    std::copy_n(m_block.begin() + static_cast<std::ptrdiff_t>(m_taken), count, bytes.begin());
    m_taken += count;
    return count;
}

} // namespace nurv
