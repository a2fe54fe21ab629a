// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/PcmSampleStream.h"

#include "base/NurvFailure.h"
#include "samples/SampleCount.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::int64_t kBytesPerRead = 128 * 1024;

} // namespace

PcmSampleStream::PcmSampleStream(std::unique_ptr<RegularFile> file, std::int64_t start)
    : m_file(std::move(file)), m_header(PcmHeader::read(*m_file, start))
{
}

std::size_t PcmSampleStream::read(std::int32_t *samples, std::size_t frames)
{
    const std::int64_t frameBytes = m_header.frameBytes();
    const std::int64_t framesPerRead = std::max<std::int64_t>(kBytesPerRead / frameBytes, 1);
    const auto channels = static_cast<std::size_t>(m_header.format.channels);
    std::size_t done = 0;
    while (done < frames && m_framesRead < m_header.heldFrames()) {
        const std::int64_t part =
            std::min({static_cast<std::int64_t>(frames - done), framesPerRead, m_header.heldFrames() - m_framesRead});
        m_bytes.resize(static_cast<std::size_t>(part * frameBytes));
        if (!m_file->readAll(m_header.soundStart + m_framesRead * frameBytes, m_bytes.data(), m_bytes.size()))
            throw NurvFailure(u"it became shorter while it was read"_s);
        pcmSamples::widen(m_bytes.data(), static_cast<std::size_t>(part) * channels, m_header.coding,
                          samples + done * channels);
        done += static_cast<std::size_t>(part);
        m_framesRead += part;
    }
    if (done == 0 && frames > 0)
        checkEnd();
    return done;
}

void PcmSampleStream::checkEnd() const
{
    checkPromise(m_header.declaredFrames, m_framesRead);
    if (m_header.heldBytes % m_header.frameBytes() != 0)
        throw NurvFailure(u"it ends inside a frame of samples"_s);
    if (m_header.holdsFurtherSound)
        throw NurvFailure(u"it holds further samples behind its sound"_s);
}

double PcmSampleStream::progress() const
{
    const std::int64_t held = m_header.heldFrames();
    return held > 0 ? static_cast<double>(m_framesRead) / static_cast<double>(held) : 1.0;
}

} // namespace nurv
