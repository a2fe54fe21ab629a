// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/ReadAheadSound.h"

#include "base/NurvFailure.h"

#include <algorithm>
#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::size_t kSamplesPerBlock = 64 * 1024;

} // namespace

ReadAheadSound::ReadAheadSound(const QStringList &paths, JoinedSound::Side side, IsUnwanted isUnwanted)
    : m_sound(paths, side), m_format(m_sound.format()), m_isUnwanted(std::move(isUnwanted)),
      m_leastBits(m_sound.leastBits()), m_mostBits(m_sound.mostBits())
{
    const std::size_t frames = std::max<std::size_t>(kSamplesPerBlock / channels(), 1);
    for (Block &block : m_blocks)
        block.samples.resize(frames * channels());
    m_thread = std::thread([this] { fill(); });
}

ReadAheadSound::~ReadAheadSound()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isStopped = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void ReadAheadSound::fill()
{
    for (bool goesOn = true; goesOn;) {
        Block *block = nullptr;
        {
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [this] { return m_isStopped || m_filled - m_taken < kBlocks; });
            if (m_isStopped)
                return;
            block = &m_blocks[m_filled % kBlocks];
        }
        goesOn = fillBlock(*block);
        {
            const std::lock_guard lock(m_mutex);
            ++m_filled;
        }
        m_changed.notify_all();
    }
}

/// Whether more may follow.
bool ReadAheadSound::fillBlock(Block &block)
{
    try {
        block.frames = m_sound.read(block.samples.data(), block.samples.size() / channels());
    } catch (const NurvFailure &failure) {
        block.frames = 0;
        block.failure = failure.reason();
    } catch (const std::exception &failure) {
        block.frames = 0;
        block.failure = u"it cannot be decoded: %1"_s.arg(QString::fromUtf8(failure.what()));
    }
    block.progress = m_sound.progress();
    block.leastBits = m_sound.leastBits();
    block.mostBits = m_sound.mostBits();
    return block.frames > 0;
}

ReadAheadSound::Block *ReadAheadSound::waitForBlock()
{
    // A block never takes long, and giving up has to wait for it in any case.
    if (m_isUnwanted && m_isUnwanted())
        throw GivenUp();
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_filled > m_taken; });
    return &m_blocks[m_taken % kBlocks];
}

std::span<const std::int32_t> ReadAheadSound::run()
{
    const Block *block = waitForBlock();
    if (!block->failure.isEmpty())
        throw NurvFailure(block->failure);
    m_progress = block->progress;
    m_leastBits = block->leastBits;
    m_mostBits = block->mostBits;
    return std::span(block->samples).first(block->frames * channels()).subspan(m_offset * channels());
}

void ReadAheadSound::advance(std::size_t frames)
{
    m_offset += frames;
    m_position += static_cast<std::int64_t>(frames);
    {
        const std::lock_guard lock(m_mutex);
        if (m_offset < m_blocks[m_taken % kBlocks].frames)
            return;
        m_offset = 0;
        ++m_taken;
    }
    m_changed.notify_all();
}

void ReadAheadSound::drain()
{
    for (auto rest = run(); !rest.empty(); rest = run())
        advance(rest.size() / channels());
}

} // namespace nurv
