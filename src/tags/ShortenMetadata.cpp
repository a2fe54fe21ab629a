// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/ShortenMetadata.h"

#include "base/NurvFailure.h"
#include "tags/SoundChunks.h"

#include <algorithm>
#include <bit>
#include <optional>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::int64_t kStreamStart = 5; // behind the mark and the version
constexpr quint32 kMostBlockSize = 65535;
constexpr quint32 kMostCoefficients = 1024;
constexpr qsizetype kMostStoredBytes = qsizetype{64} << 20;

enum Function { Diff0, Diff1, Diff2, Diff3, Quit, BlockSize, BitShift, Qlpc, Zero, Verbatim };

[[noreturn]] void failAsDamaged()
{
    throw NurvFailure(u"its Shorten stream is damaged"_s);
}

/// A stream of bits, the high ones first.
class Bits {
public:
    Bits(const MetadataBytes &bytes, std::int64_t position) : m_bytes(bytes), m_position(position) {}

    /// An unsigned Rice code with `lowBits` bits behind the run of zeros.
    quint32 rice(int lowBits)
    {
        const quint64 run = zeros();
        if (lowBits > 31 || run > (quint64{0xffffffff} >> lowBits))
            failAsDamaged();
        return static_cast<quint32>(run << lowBits) | take(lowBits);
    }

    /// A number that tells how many bits it has.
    quint32 number() { return rice(static_cast<int>(std::min<quint32>(rice(2), 32))); }

private:
    /// Takes zeros and the one that ends them.
    quint64 zeros()
    {
        quint64 run = 0;
        for (;;) {
            if (m_available == 0)
                fill();
            const int leading = std::countl_zero(m_window);
            if (leading < m_available) {
                drop(leading + 1);
                return run + static_cast<quint64>(leading);
            }
            run += static_cast<quint64>(m_available);
            drop(m_available);
        }
    }

    quint32 take(int count)
    {
        quint64 value = 0;
        while (count > 0) {
            if (m_available == 0)
                fill();
            const int some = std::min(count, m_available);
            value = value << some | m_window >> (64 - some);
            drop(some);
            count -= some;
        }
        return static_cast<quint32>(value);
    }

    /// `count` is at least 1.
    void drop(int count)
    {
        m_window = count == 64 ? 0 : m_window << count;
        m_available -= count;
    }

    void fill()
    {
        if (m_next == m_buffer.size()) {
            m_buffer = m_bytes.peek(m_position, MetadataBytes::kMostPeeked);
            m_position += m_buffer.size();
            m_next = 0;
            if (m_buffer.isEmpty())
                throw NurvFailure(u"its Shorten stream breaks off"_s);
        }
        const qsizetype count = std::min<qsizetype>(8, m_buffer.size() - m_next);
        m_window = 0;
        for (qsizetype i = 0; i < count; ++i)
            m_window |= quint64{static_cast<unsigned char>(m_buffer.at(m_next + i))} << (56 - 8 * i);
        m_next += count;
        m_available = static_cast<int>(8 * count);
    }

    const MetadataBytes &m_bytes;
    std::int64_t m_position;
    QByteArray m_buffer;
    qsizetype m_next = 0;
    quint64 m_window = 0; ///< the bits that come next, from the highest one on
    int m_available = 0;  ///< how many of them
};

class Stream {
public:
    Stream(const MetadataBytes &bytes, std::int64_t begin) : m_bits(bytes, begin + kStreamStart)
    {
        const QByteArray head = bytes.read(begin, kStreamStart);
        m_version = static_cast<unsigned char>(head.at(4));
        if (m_version > 3)
            throw NurvFailure(u"its Shorten stream has an unknown version"_s);
        readHeader();
    }

    /// The bytes that stand before the sound.
    QByteArray storedBefore()
    {
        QByteArray stored = m_skipped;
        for (m_function = function(); m_function == Verbatim; m_function = function())
            appendVerbatim(stored);
        return stored;
    }

    /// The bytes that stand behind it; call it second.
    QByteArray storedBehind()
    {
        QByteArray stored;
        for (; m_function != Quit; m_function = function()) {
            if (m_function == Verbatim)
                appendVerbatim(stored);
            else
                passOver();
        }
        return stored;
    }

private:
    /// In the first version of the format numbers are plain Rice codes.
    quint32 number(int bitsOfOldVersion) { return m_version == 0 ? m_bits.rice(bitsOfOldVersion) : m_bits.number(); }
    int function() { return static_cast<int>(std::min<quint32>(m_bits.rice(2), Verbatim + 1)); }

    void readHeader()
    {
        static_cast<void>(number(4)); // type of the samples
        static_cast<void>(number(0)); // channels
        if (m_version == 0)
            return;
        setBlockSize(number(8));
        static_cast<void>(number(2)); // prediction order
        static_cast<void>(number(0)); // block means
        const quint32 skipped = number(1);
        if (skipped > kMostStoredBytes)
            failAsDamaged();
        for (quint32 i = 0; i < skipped; ++i)
            m_skipped.append(static_cast<char>(number(7)));
    }

    void setBlockSize(quint32 size)
    {
        if (size == 0 || size > kMostBlockSize)
            failAsDamaged();
        m_blockSize = size;
    }

    void appendVerbatim(QByteArray &stored)
    {
        const quint32 count = m_bits.rice(5);
        if (count > kMostStoredBytes - stored.size())
            throw NurvFailure(u"its Shorten stream holds too much besides its sound"_s);
        for (quint32 i = 0; i < count; ++i)
            stored.append(static_cast<char>(m_bits.rice(8)));
    }

    void passOver()
    {
        switch (m_function) {
        case Diff0:
        case Diff1:
        case Diff2:
        case Diff3: passOverResidual(residualBits()); break;
        case Qlpc: {
            const int bits = residualBits();
            const quint32 coefficients = m_bits.rice(2);
            if (coefficients > kMostCoefficients)
                failAsDamaged();
            for (quint32 i = 0; i < coefficients; ++i)
                static_cast<void>(m_bits.rice(5 + 1));
            passOverResidual(bits);
            break;
        }
        case BlockSize: setBlockSize(number(static_cast<int>(std::bit_width(m_blockSize)) - 1)); break;
        case BitShift: static_cast<void>(m_bits.rice(2)); break;
        case Zero: break;
        default: failAsDamaged();
        }
    }

    /// The low bits of each residual, its sign among them.
    int residualBits()
    {
        const quint32 energy = m_bits.rice(3);
        if (energy > 30)
            failAsDamaged();
        return static_cast<int>(energy) + (m_version == 0 ? 0 : 1);
    }

    void passOverResidual(int bits)
    {
        for (quint32 i = 0; i < m_blockSize; ++i)
            static_cast<void>(m_bits.rice(bits));
    }

    Bits m_bits;
    int m_version = 0;
    quint32 m_blockSize = 256;
    int m_function = Quit;
    QByteArray m_skipped;
};

/// Whether the size of the whole file tells that nothing stood behind the sound.
bool endsWithSound(const QByteArray &before)
{
    constexpr qsizetype kHeadSize = 8;
    if (before.size() < soundChunks::kFormSize + kHeadSize)
        return false;
    const auto sizeAt = [&](qsizetype offset) -> std::optional<qint64> {
        if (before.startsWith("RIFF") && before.mid(before.size() - kHeadSize, 4) == "data")
            return littleEndianAt<quint32>(before, offset);
        return std::nullopt;
    };
    const std::optional<qint64> fileSize = sizeAt(4);
    const std::optional<qint64> soundSize = sizeAt(before.size() - 4);
    if (!fileSize || !soundSize)
        return false;
    const qint64 soundEnd = before.size() + *soundSize;
    return *fileSize + kHeadSize == soundEnd || *fileSize + kHeadSize == soundEnd + (*soundSize & 1);
}

} // namespace

void readShortenMetadata(const MetadataBytes &bytes, std::int64_t begin, MetadataCollector &found)
{
    Stream stream(bytes, begin);
    const QByteArray before = stream.storedBefore();
    const QByteArray behind = endsWithSound(before) ? QByteArray() : stream.storedBehind();
    soundChunks::readStored(before, behind, found);
}

} // namespace nurv
