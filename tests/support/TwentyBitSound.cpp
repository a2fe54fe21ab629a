// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TwentyBitSound.h"

#include <QFile>
#include <QtEndian>

#include <gtest/gtest.h>

#include <algorithm>

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
    writeByFfmpeg(path, {.rate = kRate, .bits = 24, .channels = channels, .frames = frames},
                  {u"-c:a"_s, u"alac"_s, u"-frame_size"_s, QString::number(kFramesPerPacket)});
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadWrite));
    QByteArray bytes = file.readAll();

    QByteArray packets;
    // Boxes: four bytes of size, four letters; of "stsz" version, common size, count and the sizes follow.
    qsizetype sizeAt = bytes.indexOf("stsz") + 12;
    const auto count = qFromBigEndian<quint32>(bytes.constData() + sizeAt);
    EXPECT_EQ(count, static_cast<quint32>((frames + kFramesPerPacket - 1) / kFramesPerPacket));
    EXPECT_EQ(qFromBigEndian<quint32>(bytes.constData() + bytes.indexOf("stco") + 8), 1U) << "one run of packets";
    for (int first = 0; first < frames; first += kFramesPerPacket) {
        const QByteArray packet = packetOf(samples.constData() + qsizetype{3} * channels * first,
                                           std::min(kFramesPerPacket, frames - first), channels);
        sizeAt += 4;
        bytes.replace(sizeAt, 4, big(static_cast<quint32>(packet.size())));
        packets += packet;
    }
    // The sample entry comes first, the codec's own box of the same name in it.
    const qsizetype codec = bytes.indexOf("alac", bytes.indexOf("alac", bytes.indexOf("stsd")) + 4);
    EXPECT_EQ(bytes[codec + 13], 24);
    bytes[codec + 13] = kBits;
    const qsizetype sound = bytes.indexOf("mdat");
    EXPECT_LT(sound, bytes.indexOf("moov")) << "what follows the sound may move";
    bytes.replace(sound + 4, qFromBigEndian<quint32>(bytes.constData() + sound - 4) - 8, packets);
    bytes.replace(sound - 4, 4, big(static_cast<quint32>(packets.size() + 8)));
    EXPECT_TRUE(file.seek(0) && file.resize(0) && file.write(bytes) == bytes.size());
    return path;
}

} // namespace nurv::test
