// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TwentyBitSound.h"

#include "support/TestProgram.h"

#include <QFile>
#include <QtEndian>

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

constexpr int kFramesPerPacket = 4096;
constexpr int kRate = 48000;
constexpr int kBits = 20;

template<typename Number>
QByteArray big(Number value)
{
    QByteArray bytes(sizeof value, Qt::Uninitialized);
    qToBigEndian(value, bytes.data());
    return bytes;
}

class BitWriter {
public:
    void put(quint32 value, int bits)
    {
        for (int bit = bits - 1; bit >= 0; --bit, ++m_count) {
            if (m_count % 8 == 0)
                m_bytes.append('\0');
            if ((value >> bit & 1U) != 0)
                m_bytes.back() = static_cast<char>(m_bytes.back() | 0x80 >> m_count % 8);
        }
    }
    [[nodiscard]] const QByteArray &bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
    int m_count = 0;
};

/// One or two channels as one element, not compressed.
QByteArray packetOf(const char *samples, int frames, int channels)
{
    BitWriter packet;
    packet.put(channels == 2 ? 1 : 0, 3);
    packet.put(0, 4 + 12); // instance, unused
    packet.put(1, 1);      // tells its length
    packet.put(0, 2);      // no bytes apart
    packet.put(1, 1);      // not compressed
    packet.put(static_cast<quint32>(frames), 32);
    for (int index = 0; index < frames * channels; ++index) {
        const auto *sample = reinterpret_cast<const uchar *>(samples + qsizetype{3} * index);
        packet.put((sample[0] | sample[1] << 8 | sample[2] << 16) >> 4, kBits);
    }
    packet.put(7, 3); // end
    return packet.bytes();
}

/// Seven bits a byte, the last one without the uppermost.
QByteArray variableLength(quint32 value)
{
    QByteArray bytes(1, static_cast<char>(value & 0x7F));
    while ((value >>= 7) != 0)
        bytes.prepend(static_cast<char>(0x80 | (value & 0x7F)));
    return bytes;
}

QByteArray chunk(const char *name, const QByteArray &contents)
{
    return name + big(qint64{contents.size()}) + contents;
}

} // namespace

QByteArray twentyBitSamples(int frames, int channels)
{
    QByteArray samples = makeSamples({.rate = kRate, .bits = 24, .channels = channels, .frames = frames});
    for (qsizetype start = 0; start < samples.size(); start += 3)
        samples[start] = static_cast<char>(samples[start] & 0xF0);
    return samples;
}

QString writeTwentyBitAppleLossless(const QString &path, int frames, int channels)
{
    const QByteArray samples = twentyBitSamples(frames, channels);
    QByteArray sizes;
    QByteArray packets;
    qint64 count = 0;
    for (int first = 0; first < frames; first += kFramesPerPacket, ++count) {
        const QByteArray packet = packetOf(samples.constData() + qsizetype{3} * channels * first,
                                           std::min(kFramesPerPacket, frames - first), channels);
        sizes += variableLength(static_cast<quint32>(packet.size()));
        packets += packet;
    }
    const auto remainder = static_cast<qint32>(count * kFramesPerPacket - frames);
    const QByteArray description = big(std::bit_cast<quint64>(double{kRate})) + "alac" + big(quint32{2}) + big(quint32{0})
                                   + big(quint32{kFramesPerPacket}) + big(static_cast<quint32>(channels))
                                   + big(quint32{kBits});
    const QByteArray cookie = big(quint32{kFramesPerPacket}) + QByteArray::fromHex("0014280a0e")
                              + QByteArray(1, static_cast<char>(channels)) + big(quint16{255}) + big(quint32{0})
                              + big(quint32{0}) + big(quint32{kRate});
    const QByteArray caf = "caff" + big(quint16{1}) + big(quint16{0}) + chunk("desc", description) + chunk("kuki", cookie)
                           + chunk("pakt", big(count) + big(qint64{frames}) + big(qint32{0}) + big(remainder) + sizes)
                           + chunk("data", big(quint32{0}) + packets);
    QFile file(path + u".caf"_s);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(caf) == caf.size());
    file.close();
    const ProgramResult muxer = runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-y"_s, u"-i"_s, file.fileName(),
                                                         u"-c"_s, u"copy"_s, u"-f"_s, u"ipod"_s, path});
    EXPECT_EQ(muxer.exitStatus, 0) << muxer.errors.constData();
    file.remove();
    return path;
}

} // namespace nurv::test
