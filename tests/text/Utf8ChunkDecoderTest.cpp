// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/Utf8ChunkDecoder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using nurv::Utf8ChunkDecoder;

namespace {

// One, two, three and four bytes a character.
const QString kSample = u"a\u00E9\u20AC\U0001D11Ez\uFEFF\u65E5"_s;

} // namespace

TEST(Utf8ChunkDecoder, JoinsATextThatIsCutAtAnyByte)
{
    const QByteArray bytes = kSample.toUtf8();
    for (qsizetype cut = 0; cut <= bytes.size(); ++cut) {
        Utf8ChunkDecoder decoder;
        QString text = decoder.decode(bytes.first(cut));
        text += decoder.decode(bytes.sliced(cut));
        EXPECT_EQ(text, kSample) << cut;
    }
}

TEST(Utf8ChunkDecoder, JoinsATextThatComesByteByByte)
{
    Utf8ChunkDecoder decoder;
    QString text;
    for (const char byte : kSample.toUtf8())
        text += decoder.decode(QByteArray(1, byte));
    EXPECT_EQ(text, kSample);
}

TEST(Utf8ChunkDecoder, GivesAtOnceWhatIsCompleteInAChunk)
{
    Utf8ChunkDecoder decoder;
    EXPECT_EQ(decoder.decode("10% \xE2\x82"), u"10% "_s);
    EXPECT_EQ(decoder.decode("\xAC 20%"), u"\u20AC 20%"_s);
}

TEST(Utf8ChunkDecoder, GivesNoTextForAChunkWithBytesThatAreNoUtf8)
{
    for (const QByteArray &bad : {QByteArray("ab\xFF" "cd"), QByteArray("\xC0\xAF"), QByteArray("\xED\xA0\x80"),
                                  QByteArray("\xF4\x90\x80\x80"), QByteArray("\xE0\x80"), QByteArray("caf\xE9 "),
                                  QByteArray("x\xF5")}) {
        Utf8ChunkDecoder decoder;
        EXPECT_EQ(decoder.decode(bad), QString()) << bad.toHex().toStdString();
        EXPECT_EQ(decoder.decode("next"), u"next"_s) << bad.toHex().toStdString();
    }
}

TEST(Utf8ChunkDecoder, DropsAHeldTailThatTheNextChunkDoesNotContinue)
{
    Utf8ChunkDecoder decoder;
    EXPECT_EQ(decoder.decode("one\xC3"), u"one"_s);
    EXPECT_EQ(decoder.decode("two\xE2"), u"two"_s);
    EXPECT_EQ(decoder.decode("\xFF\xFF"), QString());
    EXPECT_EQ(decoder.decode("\x82\xAC"), QString());
    EXPECT_EQ(decoder.decode("three"), u"three"_s);
}

TEST(Utf8ChunkDecoder, TakesAnEmptyChunkAndZeroBytes)
{
    Utf8ChunkDecoder decoder;
    EXPECT_EQ(decoder.decode(QByteArray()), QString());
    EXPECT_EQ(decoder.decode(QByteArray("a\0b", 3)), QString::fromLatin1("a\0b", 3));
}
