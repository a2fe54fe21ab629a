// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/JournalLine.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

QByteArray allBytes()
{
    QByteArray bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    return bytes;
}

} // namespace

TEST(JournalLine, GivesBackWordsOfAnyBytes)
{
    const QList<QByteArray> words{"plan", allBytes(), "", "%", "%%41", "two words", "a\nline\n", "\xff\xfe", "caf\xE9"};
    const QByteArray line =
        journalLine({words[0], words[1], words[2], words[3], words[4], words[5], words[6], words[7], words[8]});
    ASSERT_TRUE(line.endsWith('\n'));
    EXPECT_EQ(line.count('\n'), 1);
    EXPECT_EQ(journalWords(QByteArrayView(line).chopped(1)), words);
}

TEST(JournalLine, EveryDamagedByteIsSeen)
{
    const QByteArray line = journalLine({"begun", "17", "/music/a b.flac"}).chopped(1);
    for (qsizetype at = 0; at < line.size(); ++at) {
        for (const char flip : {'\x01', '\x20', '\x7f'}) {
            QByteArray damaged = line;
            damaged[at] = static_cast<char>(damaged[at] ^ flip);
            EXPECT_FALSE(journalWords(damaged)) << damaged.constData();
        }
    }
}

TEST(JournalLine, ATornLineIsSeen)
{
    const QByteArray line = journalLine({"ended", "17"}).chopped(1);
    for (qsizetype length = 0; length < line.size(); ++length)
        EXPECT_FALSE(journalWords(QByteArrayView(line).first(length))) << length;
    EXPECT_FALSE(journalWords(line + ' '));
    EXPECT_FALSE(journalWords(line + line));
}

TEST(JournalLine, KnowsItsChecksumFromOutside)
{
    // The check value of CRC-32, of the nine digits.
    EXPECT_EQ(journalLine({"123456789"}), "123456789 cbf43926\n");
}

} // namespace nurv
