// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/PrintableText.h"

#include "text/PrintableLog.h"
#include "text/VisibleText.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

QStringList g_logged;

void keepMessage(QtMsgType, const QMessageLogContext &, const QString &message)
{
    g_logged.append(message);
}

} // namespace

TEST(PrintableLog, ShowsWhatATerminalObeys)
{
    const QtMessageHandler former = qInstallMessageHandler(keepMessage);
    makeLogPrintable();
    qWarning("%s", "a\x1b[2J\xC2\x9B" "b");
    qInstallMessageHandler(former);
    EXPECT_EQ(g_logged, QStringList{u"a\\x1B[2J\\u{009B}b"_s});
}

TEST(VisibleText, ShowsWhatATerminalObeys)
{
    EXPECT_EQ(visibleText("plain name.wav"), "plain name.wav");
    EXPECT_EQ(visibleText("a\x1b[2Jb\x07"), "a\\x1B[2Jb\\x07");
    EXPECT_EQ(visibleText(std::string_view("\0\x7f\r", 3)), "\\x00\\x7F\\x0D");
    EXPECT_EQ(visibleText("two\nlines\tand a tab"), "two\nlines\tand a tab");
    EXPECT_EQ(visibleText("\xC2\x80\xC2\x9B" "31m\xC2\x9F\xC2\xA0"), "\\u{0080}\\u{009B}31m\\u{009F}\xC2\xA0");
}

TEST(VisibleText, ShowsWhatTurnsTheOrderOfOthersAround)
{
    // The property Bidi_Control of the Unicode Character Database, and U+2028, U+2029.
    for (const char32_t character : {0x061C, 0x200E, 0x200F, 0x2028, 0x2029, 0x202A, 0x202B, 0x202C, 0x202D, 0x202E,
                                     0x2066, 0x2067, 0x2068, 0x2069}) {
        const QString text = u'a' + QString::fromUcs4(&character, 1) + u'b';
        const QString code = QString::number(static_cast<uint>(character), 16).toUpper().rightJustified(4, u'0');
        EXPECT_EQ(visibleText(text.toStdString()), "a\\u{" + code.toStdString() + "}b");
    }
    for (const char32_t character : {0x061B, 0x200D, 0x2010, 0x2027, 0x202F, 0x2065, 0x206A, 0x10FFFF, 0x1F3B5}) {
        const std::string text = QString::fromUcs4(&character, 1).toStdString();
        EXPECT_EQ(visibleText(text), text);
    }
}

TEST(VisibleText, ShowsBytesThatAreNoUtf8)
{
    EXPECT_EQ(visibleText("caf\xE9.wav"), "caf\\xE9.wav");
    EXPECT_EQ(visibleText("\x9B" "31m\xFF"), "\\x9B31m\\xFF");
    // Too long forms, a surrogate, beyond the last character, cut short.
    EXPECT_EQ(visibleText("\xC0\x9B"), "\\xC0\\x9B");
    EXPECT_EQ(visibleText("\xE0\x82\x9B"), "\\xE0\\x82\\x9B");
    EXPECT_EQ(visibleText("\xF0\x80\x82\x9B"), "\\xF0\\x80\\x82\\x9B");
    EXPECT_EQ(visibleText("\xED\xA0\x80"), "\\xED\\xA0\\x80");
    EXPECT_EQ(visibleText("\xF4\x90\x80\x80"), "\\xF4\\x90\\x80\\x80");
    EXPECT_EQ(visibleText("\xE2\x80"), "\\xE2\\x80");
    EXPECT_EQ(visibleText("\xE2\x1b\x80"), "\\xE2\\x1B\\x80");
    EXPECT_EQ(visibleText("\xE2\x80\xA6 \xF0\x9F\x8E\xB5"), "\xE2\x80\xA6 \xF0\x9F\x8E\xB5");
}

TEST(PrintableText, IsTheSameTextForQt)
{
    EXPECT_EQ(printableLine(u"a\x1b[2Jb"_s), u"a\\x1B[2Jb"_s);
    EXPECT_EQ(printableLine(u"two\nlines\tand\rmore"_s), u"two lines and more"_s);
    EXPECT_EQ(printableLine(u"gnp\u202Ewav"_s), u"gnp\\u{202E}wav"_s);
    EXPECT_EQ(printableText(u"a\bb\x1b[0m\n\tc"_s), u"a\\x08b\\x1B[0m\n\tc"_s);
    EXPECT_EQ(printableText(u"é\u009b 曲"_s), u"é\\u{009B} 曲"_s);
}

TEST(PrintableText, JsonHoldsTheSameValueWithoutWhatATerminalObeys)
{
    const QJsonObject object{{u"na\u009bme\u202E"_s, u"\x1b[2J\x7f\u0085\u009b31m \\u009b \"q\" \u200F\u2066é曲\n"_s}};
    const QString json = printableJson(QJsonDocument(object).toJson(QJsonDocument::Compact));
    for (const QChar character : json)
        EXPECT_FALSE(isObeyedCharacter(character.unicode())) << qPrintable(json);
    EXPECT_TRUE(json.contains(u"\\u009b31m"_s)) << qPrintable(json);
    EXPECT_TRUE(json.contains(u"\\u200f\\u2066é曲"_s)) << qPrintable(json);
    EXPECT_EQ(QJsonDocument::fromJson(json.toUtf8()).object(), object);
}

} // namespace nurv
