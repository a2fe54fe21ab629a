// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNtoolOutputNamingFormatParser.h"

#include "settings/SettingsStore.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using Parser = SHNtoolOutputNamingFormatParser;

TEST(SHNtoolOutputNamingFormatParser, ReadsThePatternOfTheSettings)
{
    SettingsStore::instance().setValue(u"shntoolNamesFormat"_s, u"%name: %time"_s);
    const Parser parser;
    SettingsStore::instance().remove(u"shntoolNamesFormat"_s);
    EXPECT_EQ(parser.getFormattedLineWithName(u"Intro"_s, u"01:02.03"_s, u"01"_s), u"Intro: 01:02.03\n");
}

TEST(SHNtoolOutputNamingFormatParser, ReplacesEveryPlaceholderByItsText)
{
    EXPECT_EQ(Parser(u"%number. %name %time"_s).getFormattedLineWithName(u"Intro      "_s, u"01:02.03"_s, u"01"_s),
              u"01. Intro       01:02.03\n");
    EXPECT_EQ(Parser(u"%time %time %number%name"_s).getFormattedLineWithName(u"a"_s, u"b"_s, u"c"_s), u"b b ca\n");
    EXPECT_EQ(Parser(QString()).getFormattedLineWithName(u"a"_s, u"b"_s, u"c"_s), u"\n");
    // The number first, then the name, then the time.
    EXPECT_EQ(Parser(u"%number %name"_s).getFormattedLineWithName(u"%time"_s, u"3:00"_s, u"%name"_s), u"%time %time\n"_s.replace(u"%time"_s, u"3:00"_s));
}

TEST(SHNtoolOutputNamingFormatParser, DropsSlashesAtTheEnds)
{
    EXPECT_EQ(Parser(u"/%name/"_s).getFormattedLineWithName(u"a"_s, {}, {}), u"%nam\n") << "two characters at the end";
    EXPECT_EQ(Parser(u"/%name"_s).getFormattedLineWithName(u"a"_s, {}, {}), u"a\n");
    EXPECT_EQ(Parser(u"%name /"_s).getFormattedLineWithName(u"a"_s, {}, {}), u"a\n");
    EXPECT_EQ(Parser(u"/"_s).getFormattedLineWithName(u"a"_s, {}, {}), u"\n");
}

TEST(SHNtoolOutputNamingFormatParser, WritesTheTotalAsTheTimeIsWritten)
{
    const struct {
        QString pattern;
        QString line;
    } cases[] = {
        {u"%number. %name %time"_s, u"70:12.34\n"_s},
        {u"%name (%time)"_s, u"(70:12.34)\n"_s},
        {u"%number %name [%time] min"_s, u"[70:12.34]\n"_s},
        {u"(%time) %name"_s, u"(70:12.34)\n"_s},
        {u"%time, %name"_s, u"70:12.34,\n"_s},
        {u"%number %name - %time"_s, u"- 70:12.34\n"_s},
        {u"%number - [%time] %name"_s, u"- [70:12.34]\n"_s},
        {u"%name%time"_s, u"70:12.34\n"_s},
        {u"%name"_s, u"70:12.34\n"_s},
        {u"length"_s, u"70:12.34\n"_s},
        {QString(), u"70:12.34\n"_s},
    };
    for (const auto &[pattern, line] : cases)
        EXPECT_EQ(Parser(pattern).getFormattedTotalLine(u"70:12.34"_s), line) << qPrintable(pattern);
}

} // namespace
} // namespace nurv
