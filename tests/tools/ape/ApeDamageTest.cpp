// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeError.h"
#include "ApeSounds.h"

#include <gtest/gtest.h>

namespace nurv::test {

namespace {

constexpr qsizetype kPaddingField = 6; // of the descriptor: two bytes that mean nothing
constexpr qsizetype kFrames = 52 + 24 + 4 + 44;

/// The number that decoding the file fails with, 0 when it does not.
int errorOf(const QByteArray &ape)
{
    try {
        (void)decoded(ape);
        return 0;
    } catch (const ToolError &error) {
        return static_cast<int>(apeErrorNumber(error));
    }
}

class ApeDamage : public ::testing::Test {
protected:
    ApeDamage() : m_ape(encoded(wavOf(Sound::Music, {.rate = 8000}, 300) + "and more", ApeLevel::Normal)) {}

    [[nodiscard]] QByteArray changed(qsizetype at, int value) const
    {
        QByteArray ape = m_ape;
        ape[at] = static_cast<char>(value);
        return ape;
    }

    QByteArray m_ape;
};

TEST_F(ApeDamage, OfOneBitIsAlwaysFound)
{
    ASSERT_EQ(errorOf(m_ape), 0);
    for (qsizetype at = 0; at < m_ape.size(); ++at) {
        if (at == kPaddingField || at == kPaddingField + 1)
            continue;
        for (int bit = 0; bit < 8; ++bit)
            EXPECT_NE(errorOf(changed(at, m_ape[at] ^ 1 << bit)), 0) << at << ", bit " << bit;
    }
}

TEST_F(ApeDamage, OfTheLengthIsAlwaysFound)
{
    for (qsizetype size = 0; size < m_ape.size(); ++size)
        EXPECT_EQ(errorOf(m_ape.first(size)), size < 6 ? 1002 : 1000) << size;
}

TEST_F(ApeDamage, HasTheNumberThatTellsItsKind)
{
    EXPECT_EQ(errorOf(QByteArray(1000, 'x')), 1002);
    EXPECT_EQ(errorOf(changed(4, 0x97)), 1014);                     // version 3991
    EXPECT_EQ(errorOf(changed(4, 0x8C)), 1014);                     // version 3980
    EXPECT_EQ(errorOf(changed(52, 1)), 1002);                       // level
    EXPECT_EQ(errorOf(changed(54, 64)), 1013);                      // flags: not from a WAV file
    EXPECT_EQ(errorOf(changed(54, 32)), 1002);                      // flags: no header, but there is one
    EXPECT_EQ(errorOf(changed(64, 0)), 1008);                       // no frame
    EXPECT_EQ(errorOf(changed(68, 12)), 1005);                      // bits
    EXPECT_EQ(errorOf(changed(70, 3)), 1007);                       // channels
    EXPECT_EQ(errorOf(changed(kFrames, m_ape[kFrames] ^ 1)), 1009); // checksum of the frame
    EXPECT_EQ(errorOf(changed(80, m_ape[80] ^ 1)), 1009);           // stored header
    EXPECT_EQ(errorOf(changed(m_ape.size() - 1, 'x')), 1009);       // stored trailing bytes
    EXPECT_EQ(errorOf(changed(36, m_ape[36] ^ 1)), 1009);           // the MD5 itself
}

TEST_F(ApeDamage, IsNoDamageBehindTheLastPartOrInFront)
{
    const QByteArray wav = decoded(m_ape);
    const QByteArray id3v2 = QByteArray("ID3\4\0\0\0\0\1\0", 10) + QByteArray(128, 'i');
    EXPECT_TRUE(isSame(decoded(id3v2 + m_ape + "APETAGEX" + QByteArray(120, 't')), wav));
}

TEST_F(ApeDamage, IsNotSeenInAFileWithoutChecksumWhereNoFrameHasIt)
{
    QByteArray ape = m_ape;
    for (int i = 0; i < 16; ++i)
        ape[36 + i] = '\0';
    EXPECT_TRUE(isSame(decoded(ape), decoded(m_ape)));
    ape[kFrames + 40] = static_cast<char>(ape[kFrames + 40] ^ 1);
    EXPECT_EQ(errorOf(ape), 1009);
}

TEST_F(ApeDamage, IsFoundInTheOtherPartsWhereEncodersLeftRoom)
{
    // A longer descriptor, a longer header and unused entries are legal. Without an MD5.
    QByteArray ape = m_ape.first(36) + QByteArray(16, '\0') + "surplus!" + m_ape.mid(52, 24) + "more" + m_ape.mid(76);
    ape.insert(52 + 8 + 24 + 4 + 4, QByteArray(8, '\0'));
    ape[8] = 60;
    ape[12] = 28;
    ape[16] = 12;
    ape[88] = static_cast<char>(kFrames + 20);
    EXPECT_TRUE(isSame(decoded(ape), decoded(m_ape)));
    ape[88] = static_cast<char>(kFrames);
    EXPECT_EQ(errorOf(ape), 1002);
}

TEST_F(ApeDamage, NeverReachesAFrameThatClaimsToBeHuge)
{
    QByteArray ape = m_ape;
    ape[59] = 0x7F; // blocks per frame: 2^30 and more
    EXPECT_EQ(errorOf(ape), 1002);
}

} // namespace

} // namespace nurv::test
