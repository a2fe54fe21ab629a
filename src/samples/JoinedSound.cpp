// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/JoinedSound.h"

#include "base/NurvFailure.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

JoinedSound::JoinedSound(const QStringList &paths, Side side) : m_paths(paths), m_side(side)
{
    if (paths.isEmpty())
        throw NurvFailure(u"there is no %1"_s.arg(side == Side::Source ? u"source"_s : u"output"_s));
    for (const QString &path : paths) {
        m_sizes.push_back(QFileInfo(path).size());
        m_allBytes += m_sizes.back();
    }
    open();
}

QString JoinedSound::nameOf(Side side)
{
    return side == Side::Source ? u"the source"_s : u"the output"_s;
}

void JoinedSound::fail(const QString &what, const QString &reason) const
{
    QString name = nameOf(m_side);
    if (m_paths.size() > 1)
        name += u" \"%1\""_s.arg(QFileInfo(m_paths.at(m_index)).fileName());
    throw NurvFailure(u"%1 %2: %3"_s.arg(name, what, reason));
}

void JoinedSound::open()
{
    try {
        m_stream = SampleStream::open(m_paths.at(m_index));
    } catch (const NurvFailure &failure) {
        fail(u"cannot be decoded"_s, failure.reason());
    }
    m_framesOfFile = 0;
    const SampleFormat format = m_stream->format();
    if (!m_stream->isLossless())
        fail(u"is lossy"_s, u"what it was made of is not in it"_s);
    if (m_index == 0) {
        m_format = format;
        m_leastBits = m_mostBits = format.bitsPerSample;
    }
    m_leastBits = std::min(m_leastBits, format.bitsPerSample);
    m_mostBits = std::max(m_mostBits, format.bitsPerSample);
    if (format.sampleRateHz != m_format.sampleRateHz || format.channels != m_format.channels
        || format.isFloat != m_format.isFloat)
        fail(u"cannot be joined"_s, u"its rate, channels or kind of samples are not those of the first file"_s);
}

/// What a stream itself does not complain of: an output's header that says nothing, or 0,
/// where there is sound, is one that other programs believe.
void JoinedSound::checkLength() const
{
    const auto declared = m_stream->declaredFrames();
    if (m_side == Side::Output && declared && *declared != m_framesOfFile)
        fail(u"is damaged"_s, u"its header promises %1 samples, it holds %2"_s.arg(*declared).arg(m_framesOfFile));
}

std::size_t JoinedSound::read(std::int32_t *samples, std::size_t frames)
{
    const auto channels = static_cast<std::size_t>(m_format.channels);
    std::size_t done = 0;
    while (done < frames && m_stream) {
        std::size_t part = 0;
        try {
            part = m_stream->read(samples + done * channels, frames - done);
        } catch (const NurvFailure &failure) {
            fail(u"is damaged"_s, failure.reason());
        }
        done += part;
        m_framesRead += static_cast<std::int64_t>(part);
        m_framesOfFile += static_cast<std::int64_t>(part);
        if (part > 0)
            continue;
        checkLength();
        m_bytesDone += m_sizes[static_cast<std::size_t>(m_index)];
        m_stream.reset();
        if (++m_index < m_paths.size())
            open();
    }
    return done;
}

double JoinedSound::progress() const
{
    if (!m_stream || m_allBytes <= 0)
        return 1.0;
    const auto size = static_cast<double>(m_sizes[static_cast<std::size_t>(m_index)]);
    const double done = static_cast<double>(m_bytesDone) + size * std::clamp(m_stream->progress(), 0.0, 1.0);
    return done / static_cast<double>(m_allBytes);
}

} // namespace nurv
