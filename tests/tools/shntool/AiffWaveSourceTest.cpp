// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/AiffWaveSource.h"
#include "support/TestFolder.h"
#include "support/ToolError.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

QByteArray number(quint32 value, int bytes)
{
    QByteArray text;
    for (int byte = bytes - 1; byte >= 0; --byte)
        text.append(static_cast<char>(value >> (8 * byte)));
    return text;
}

/// Of 44.1 kHz, with a chunk behind the sound.
struct Aiff {
    quint32 channels = 2;
    quint32 bits = 16;
    quint32 frames = 2;
    QByteArray filling{}; ///< before the sound, in its chunk
    QByteArray sound = "ABCDEFGH";

    [[nodiscard]] QByteArray bytes() const
    {
        const QByteArray common =
            number(channels, 2) + number(frames, 4) + number(bits, 2) + QByteArray::fromHex("400eac44000000000000");
        const QByteArray body = number(static_cast<quint32>(filling.size()), 4) + number(0, 4) + filling + sound;
        const QByteArray chunks = "AIFFCOMM" + number(18, 4) + common + "SSND"
                                  + number(static_cast<quint32>(body.size()), 4) + body + "NAME" + number(8, 4)
                                  + "a name  ";
        return "FORM" + number(static_cast<quint32>(chunks.size()), 4) + chunks;
    }
};

class AiffWaveSourceTest : public ::testing::Test {
protected:
    std::string write(const Aiff &aiff)
    {
        return QFile::encodeName(m_folder.write(u"a.aiff"_s, aiff.bytes())).toStdString();
    }

    /// What stands behind the header of 44 bytes.
    static std::string soundOf(WaveSource &source)
    {
        source.skip(44);
        std::vector<uint8_t> bytes(1000);
        bytes.resize(source.read(bytes));
        return {bytes.begin(), bytes.end()};
    }

    TestFolder m_folder;
};

TEST_F(AiffWaveSourceTest, GivesSamplesWithTheirLowByteFirst)
{
    AiffWaveSource source(write({}), 0);
    EXPECT_EQ(soundOf(source), "BADCFEHG");
    EXPECT_TRUE(source.finish());
}

TEST_F(AiffWaveSourceTest, PassesOverWhatFillsUpABlock)
{
    AiffWaveSource source(write({.filling = "xxxxyyyy"}), 0);
    EXPECT_EQ(soundOf(source), "BADCFEHG");
    EXPECT_TRUE(source.finish());
}

TEST_F(AiffWaveSourceTest, TakesNoOtherChunkForSound)
{
    AiffWaveSource source(write({.frames = 4, .filling = "xxxxyyyy"}), 0);
    EXPECT_EQ(soundOf(source), "BADCFEHG");
    EXPECT_FALSE(source.finish());
}

TEST_F(AiffWaveSourceTest, RefusesMoreChannelsThanItsFramesCanTell)
{
    for (const quint32 channels : {1U, 8U, 9U, 16383U})
        EXPECT_NO_THROW(AiffWaveSource(write({.channels = channels, .bits = 32}), 0)) << channels;
    for (const quint32 channels : {0U, 16384U, 65535U})
        EXPECT_THROW(AiffWaveSource(write({.channels = channels, .bits = 32}), 0), ToolError) << channels;
}

} // namespace

} // namespace nurv::test
