// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TrackNames.h"

#include "text/RegularExpressionFinder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <optional>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

namespace nurv::test {

namespace {

/// A line of a set list, and the name that it gives; nothing for a line that is left out.
struct GoldenLine {
    const char16_t *line;
    std::optional<const char16_t *> name;
};

constexpr std::nullopt_t kLeftOut = std::nullopt;

/// What follows the track 1 of a list.
constexpr std::array kLaterLines = {
    // Numbers in all their forms.
    GoldenLine{u"1. Again", u"Again"},
    GoldenLine{u"4 Songs", u"Songs"},
    GoldenLine{u"04 Paper Boats", u"Paper Boats"},
    GoldenLine{u"65.Northern Line", u"Northern Line"},
    GoldenLine{u"2) Northern Line", u"Northern Line"},
    GoldenLine{u"13.) Northern Line", u"Northern Line"},
    GoldenLine{u"(9) Northern Line", u"Northern Line"},
    GoldenLine{u"[10] U.S. Tour", u"U.S. Tour"},
    GoldenLine{u"67]Northern Line", u"Northern Line"},
    GoldenLine{u"([11]) Bracketed Twice", u") Bracketed Twice"},
    GoldenLine{u"[(12)] The Other Way Round", kLeftOut},
    GoldenLine{u"14). Point Behind", u". Point Behind"},
    GoldenLine{u"66..Two Points", u".Two Points"},
    GoldenLine{u"15: Colon", u": Colon"},
    GoldenLine{u"16 - Hyphen", u"- Hyphen"},
    GoldenLine{u"17- Hyphen", u"- Hyphen"},
    GoldenLine{u"18_Underscore", u"_Underscore"},
    GoldenLine{u"1-01 Disc and Track 3:33", u"-01 Disc and Track "},
    GoldenLine{u"1.01 Disc and Track", u"01 Disc and Track"},
    GoldenLine{u"101 Disc 1 Track 1", u"Disc 1 Track 1"},
    GoldenLine{u"0. Soundcheck", u"Soundcheck"},
    GoldenLine{u"99999999999999999999. Far Out", u"Far Out"},
    GoldenLine{u"3.", u"(blank)"},
    GoldenLine{u"3", u"(blank)"},
    GoldenLine{u"(3)  \t", u"(blank)"},
    GoldenLine{u"61. 867-5309", u"867-5309"},
    GoldenLine{u"62. 1999", u"1999"},
    GoldenLine{u"63. 25 Miles to 4", u"25 Miles to 4"},
    GoldenLine{u"71. River -> 72. Boats", u"River -> 72. Boats"},
    GoldenLine{u"６４. Digits of Another Width", kLeftOut},
    GoldenLine{u"٥٥. Digits of Another Script", kLeftOut},
    // Blanks.
    GoldenLine{u"  20. Indented", kLeftOut},
    GoldenLine{u"\t21. Indented", kLeftOut},
    GoldenLine{u"19\tTrain Song\t7:30", u"Train Song\t"},
    GoldenLine{u"57. Unbroken\u00a0", u"Unbroken"},
    GoldenLine{u"58\u00a0Unbroken", u"Unbroken"},
    GoldenLine{u"59.\u3000間\u3000", u"間"},
    GoldenLine{u"50. Blank at the End 3:45 ", u"Blank at the End "},
    GoldenLine{u"", kLeftOut},
    GoldenLine{u"   ", kLeftOut},
    // Segues, marks, guests.
    GoldenLine{u"05. Glass River ->", u"Glass River ->"},
    GoldenLine{u"68. Glass River>", u"Glass River>"},
    GoldenLine{u"06. Glass River 12:07 >", u"Glass River 12:07 >"},
    GoldenLine{u"07 Drums -> 8:12", u"Drums -> "},
    GoldenLine{u"69. Drums >Space 10:01", u"Drums >Space "},
    GoldenLine{u"70. Cut // 5:00", u"Cut // "},
    GoldenLine{u"34. Tuning @", u"Tuning @"},
    GoldenLine{u"35. Jam % 4:00", u"Jam % "},
    GoldenLine{u"36. Jam 4:00%", u"Jam 4:00%"},
    GoldenLine{u"37. Jam 3:45*", u"Jam 3:45*"},
    GoldenLine{u"59. Jam (with guests) (5:55)", u"Jam (with guests) "},
    GoldenLine{u"60. (Encore Break)", u"(Encore Break)"},
    // Times.
    GoldenLine{u"1. Intro 2:05", u"Intro "},
    GoldenLine{u"2) Song (4:31)", u"Song "},
    GoldenLine{u"08. Space [9:45]", u"Space "},
    GoldenLine{u"26. Star (4:05.33)", u"Star "},
    GoldenLine{u"27. Star 12.07", u"Star "},
    GoldenLine{u"28. Long Jam 1:02:03", u"Long Jam "},
    GoldenLine{u"29. Long Jam 1:02:03.04", u"Long Jam 1:"},
    GoldenLine{u"46. Address 1.2.3.4", u"Address 1."},
    GoldenLine{u"30. Opus No. 5.", u"Opus No. "},
    GoldenLine{u"32. Version 2.0", u"Version "},
    GoldenLine{u"31. Room 22", u"Room 22"},
    GoldenLine{u"33. Live at 3:15 AM", u"Live at 3:15 AM"},
    GoldenLine{u"38. Song (3:45", u"Song "},
    GoldenLine{u"39. Song 3:45)", u"Song "},
    GoldenLine{u"40. Song [3:45)]", u"Song "},
    GoldenLine{u"41. Song [(3:45)]", u"Song ["},
    GoldenLine{u"42. Song ([3:45])", u"Song ([3:45])"},
    GoldenLine{u"43. Song 3'45\"", u"Song 3'45\""},
    GoldenLine{u"44. Song - 3:45", u"Song - "},
    GoldenLine{u"45. Song.3:45", u"Song."},
    GoldenLine{u"47. Song :45", u"Song :45"},
    GoldenLine{u"48. Song 3:", u"Song "},
    GoldenLine{u"49. Song 3::45", u"Song "},
    GoldenLine{u"49. Song 3:::45", u"Song 3:::45"},
    GoldenLine{u"22. 3:45", u""},
    GoldenLine{u"23. 3:45 Blues 3:45", u""},
    GoldenLine{u"24. Take 5:00 (5:00)", u"Take 5:00 "},
    GoldenLine{u"25. Flight 13:00 to 3:00", u"Flight 1"},
    // Other scripts.
    GoldenLine{u"51. Ré mineur (2:10)", u"Ré mineur "},
    GoldenLine{u"52. 東京 3:10", u"東京 "},
    GoldenLine{u"53. «Ночь» [1:59]", u"«Ночь» "},
    GoldenLine{u"56. Strings \U0001F3B8 4:20", u"Strings \U0001F3B8 "},
    GoldenLine{u"56. Other Digits ٣:٤٥", u"Other Digits ٣:٤٥"},
    // Dates, and what is none.
    GoldenLine{u"05/08/1977", kLeftOut},
    GoldenLine{u"05-08-1977 Barton Hall", kLeftOut},
    GoldenLine{u"5.8.1977", kLeftOut},
    GoldenLine{u"12 31 1999", kLeftOut},
    GoldenLine{u"10/11-2031x", kLeftOut},
    GoldenLine{u"05/08/19٧٧ Other Digits", kLeftOut},
    GoldenLine{u"6 7 1999 Reasons", kLeftOut},
    GoldenLine{u"6 7/8 Waltz", u"7/8 Waltz"},
    GoldenLine{u"5/8/77", u"/8/77"},
    GoldenLine{u"13/05/1977", u"/05/1977"},
    GoldenLine{u"05/32/1977", u"/32/1977"},
    GoldenLine{u"10/11/1877", u"/11/1877"},
    GoldenLine{u"1977-05-08 Barton Hall", u"-05-08 Barton Hall"},
    // Headers and notes.
    GoldenLine{u"Set 1:", kLeftOut},
    GoldenLine{u"1st set", u"st set"},
    GoldenLine{u"2nd Set:", u"nd Set:"},
    GoldenLine{u"Encore:", kLeftOut},
    GoldenLine{u"[Encore]", kLeftOut},
    GoldenLine{u"(Set II)", kLeftOut},
    GoldenLine{u"e1. Goodnight, City", kLeftOut},
    GoldenLine{u"d1t01 - Intro", kLeftOut},
    GoldenLine{u"Disc 2", kLeftOut},
    GoldenLine{u"Taper: Anna Lind", kLeftOut},
    GoldenLine{u"SBD > DAT > CDR > EAC > SHN", kLeftOut},
    GoldenLine{u"2 x Cardioid > 24/48", u"x Cardioid > 24/48"},
    GoldenLine{u"24-bit/48kHz", u"-bit/48kHz"},
    GoldenLine{u"78:12 total", u":12 total"},
    GoldenLine{u"Total time 78:12", kLeftOut},
    GoldenLine{u"# 3", kLeftOut},
    GoldenLine{u"-----", kLeftOut},
};

/// What stands before the track 1, or is it: then the next number counts, whatever it is.
constexpr std::array kFirstLines = {
    GoldenLine{u"1. Intro", u"Intro"},
    GoldenLine{u"1", u"(blank)"},
    GoldenLine{u"01 Intro 2:05", u"Intro "},
    GoldenLine{u"0001) Intro", u"Intro"},
    GoldenLine{u"1. 2:05", u""},
    GoldenLine{u"1st set", u"st set"},
    GoldenLine{u"1-2-99 Aula Magna", u"-2-99 Aula Magna"},
    GoldenLine{u"1/2/1999", kLeftOut},
    GoldenLine{u"(1) Intro", kLeftOut},
    GoldenLine{u"[1] Intro", kLeftOut},
    GoldenLine{u"3.", kLeftOut},
    GoldenLine{u"10. Ten", kLeftOut},
    GoldenLine{u"0. Zero", kLeftOut},
    GoldenLine{u"5/8/77", kLeftOut},
    GoldenLine{u"1977 Tour", kLeftOut},
    GoldenLine{u"+1 Guest", kLeftOut},
    GoldenLine{u" 1. Indented", kLeftOut},
    GoldenLine{u"4294967297. One in 32 Bits", kLeftOut},
    GoldenLine{u"18446744073709551617. One in 64 Bits", kLeftOut},
    GoldenLine{u"Aula Magna", kLeftOut},
};

QString text(const char16_t *literal)
{
    return QString::fromUtf16(literal);
}

} // namespace

TEST(TrackNamesOfSetList, GivesTheWrittenNameOfEveryLineBehindTheFirstTrack)
{
    for (const GoldenLine &golden : kLaterLines) {
        const QString expected = golden.name ? text(*golden.name) + u'\n' : QString();
        EXPECT_EQ(trackNamesOfSetList(u"1. First\n"_s + text(golden.line)), u"First\n"_s + expected)
            << qPrintable(text(golden.line));
    }
}

TEST(TrackNamesOfSetList, BeginsWithTheLineThatBeginsWithTheNumberOne)
{
    for (const GoldenLine &golden : kFirstLines) {
        const QString expected = golden.name ? text(*golden.name) + u"\nTwo\n"_s : QString();
        EXPECT_EQ(trackNamesOfSetList(text(golden.line) + u"\n2. Two\n"_s), expected) << qPrintable(text(golden.line));
    }
}

TEST(TrackNamesOfSetList, TakesAWholeSetList)
{
    EXPECT_EQ(trackNamesOfSetList(uR"(The Lamplighters
08/16/1997
Aula Magna
3 microphones > DAT

Set 1:
1. Tuning 0:45
2. River of Glass -> (6:12)
3.
Set 2:
08/17/1997
1. The Long Way Down [10:01]
E: 2. Goodnight, City
)"_s),
              u"Tuning \nRiver of Glass -> \n(blank)\nThe Long Way Down \n"_s);
}

TEST(TrackNamesOfSetList, TakesEveryKindOfLineEnd)
{
    EXPECT_EQ(trackNamesOfSetList(u"1. A 1:00\r\n2. B\r3. C\u20284. D\u20295. E"_s), u"A \nB\nC\nD\nE\n"_s);
}

TEST(TrackNamesOfSetList, GivesNothingForNothing)
{
    EXPECT_EQ(trackNamesOfSetList({}), QString());
    EXPECT_EQ(trackNamesOfSetList(u"\n\n"_s), QString());
}

TEST(TrackNamesOfSetList, EndsBehindAsManyNamesAsAreWanted)
{
    EXPECT_EQ(trackNamesOfSetList(u"1 A\nx\n2 B\n3 C"_s, 2), u"A\nB\n"_s);
    EXPECT_EQ(trackNamesOfSetList(u"1 A"_s, 0), QString());
}

// Whoever tries a time at each of its digits does not come to an end.
TEST(TrackNamesOfSetList, ComesToAnEndWithRowsOfDigits)
{
    const QString digits(4'000'000, u'5');
    for (const QString &row : {digits, digits + u':', u"1:"_s + digits, u".:"_s + digits, u"(["_s + digits + u"])"_s,
                               digits + u")"_s + digits, QString(digits).replace(u'5', u'(')}) {
        const QString names = trackNamesOfSetList(u"1. Song "_s + row);
        EXPECT_TRUE(names.startsWith(u"Song "_s));
        const bool isTime = row.front().isDigit() && row.contains(u':');
        EXPECT_EQ(names.size(), isTime ? 6 : row.size() + 6);
    }
    // The pattern goes on trying where both of its kinds of digits are the same.
    EXPECT_EQ(trackNamesOfSetList(u"1. Song "_s + digits + u":"_s + digits), u"Song \n"_s);
}

/// What the pattern of a time says of a whole name; only a part of it is searched.
TEST(TrackNamesOfSetList, CutsWhatThePatternMatchesInEveryTextOfSixCharacters)
{
    constexpr int kLongest = 6;
    const QString alphabet = u"1:.()[]x"_s;
    RegularExpressionFinder time(u"\\(?\\[?[0-9]+[\\:\\.][0-9]*([\\:\\.]?[0-9]*)?\\)?\\]?$"_s);
    QString setList;
    QString expected;
    for (int length = 1; length <= kLongest; ++length) {
        const auto count = static_cast<int>(std::pow(alphabet.size(), length));
        for (int number = 0; number < count; ++number) {
            QString name = u"n"_s;
            for (int place = 0, rest = number; place < length; ++place, rest /= static_cast<int>(alphabet.size()))
                name += alphabet.at(rest % alphabet.size());
            setList += u"1 "_s + name + u'\n';
            expected += (time.findFirst(name) ? name.first(name.indexOf(name.sliced(time.start()))) : name) + u'\n';
        }
    }
    EXPECT_TRUE(trackNamesOfSetList(setList) == expected);
}

TEST(TrackNamesIn, AreTheLinesThatAreNotEmpty)
{
    EXPECT_THAT(trackNamesIn(u"A\n\n \r\nB "_s), ElementsAre(u"A"_s, u" "_s, u"B "_s));
    EXPECT_THAT(trackNamesIn({}), ElementsAre());
}

} // namespace nurv::test
