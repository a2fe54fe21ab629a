// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/FormatSettings.h"

#include "shntool/RunMessages.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace nurv::test {

namespace {

using ::testing::ElementsAre;

class FormatSettingsOf : public ::testing::Test {
protected:
    FormatSettingsOf() { ::testing::internal::CaptureStderr(); }
    ~FormatSettingsOf() override { static_cast<void>(::testing::internal::GetCapturedStderr()); }

    RunMessages m_messages{"shntool", "conv"};
    FormatSettings m_settings{m_messages};
};

TEST_F(FormatSettingsOf, TakesAFormatWithItsExtensionEncoderAndArguments)
{
    m_settings.readOutputOption("cust ext=mp3 lame --quiet - %f");
    const AudioFormat &format = m_settings.outputFormat();
    EXPECT_EQ(m_settings.extension(format), "mp3");
    EXPECT_THAT(m_settings.encoderWords(format, "out/a.mp3"), ElementsAre("lame", "--quiet", "-", "out/a.mp3"));
}

TEST_F(FormatSettingsOf, KeepsTheArgumentsOfTheFormatBehindAnEncoderAlone)
{
    m_settings.readOutputOption("flac flake");
    EXPECT_THAT(m_settings.encoderWords(m_settings.outputFormat(), "a"), ElementsAre("flake", "-s", "-o", "a", "-"));
    EXPECT_EQ(m_settings.extension(m_settings.outputFormat()), "flac");
}

TEST_F(FormatSettingsOf, NamesNoFileThatProgramsWouldTakeForAnOption)
{
    m_settings.readInputOption("shn decoder -x %f -");
    EXPECT_THAT(m_settings.decoderWords(*audioFormatNamed("shn"), "-a.shn"),
                ElementsAre("decoder", "-x", "./-a.shn", "-"));
}

TEST_F(FormatSettingsOf, EndsTheRunForWhatMakesNoSense)
{
    for (const char *text : {"", "nothing", "alac", "kxs"})
        EXPECT_THROW(m_settings.readOutputOption(text), RunEnded) << text;
    for (const char *text : {"", "nothing", "cust", "null"})
        EXPECT_THROW(m_settings.readInputOption(text), RunEnded) << text;
    m_settings.readOutputOption("flac flac -o x -");
    EXPECT_THROW(static_cast<void>(m_settings.encoderWords(m_settings.outputFormat(), "a")), RunEnded);
    m_settings.readOutputOption("cust ext=x");
    EXPECT_THROW(static_cast<void>(m_settings.encoderWords(m_settings.outputFormat(), "a")), RunEnded);
}

TEST_F(FormatSettingsOf, DecodesItselfUntilToldOtherwise)
{
    const AudioFormat &flac = *audioFormatNamed("flac");
    EXPECT_TRUE(m_settings.decodesItself(flac));
    m_settings.readInputOption("flac flac");
    EXPECT_FALSE(m_settings.decodesItself(flac));
    EXPECT_THAT(m_settings.decoderWords(flac, "a"), ElementsAre("flac", "-c", "-d", "-s", "a"));
}

} // namespace

} // namespace nurv::test
