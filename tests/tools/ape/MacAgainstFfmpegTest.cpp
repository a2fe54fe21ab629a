// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ApeSounds.h"
#include "RunMac.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

/// The samples that ffmpeg finds in a file, with checksums compared.
QByteArray decodedByFfmpeg(const QString &path, unsigned bits)
{
    const QString format = bits == 8 ? u"u8"_s : u"s%1le"_s.arg(bits);
    const ProgramResult result =
        runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-err_detect"_s, u"crccheck+explode"_s, u"-i"_s, path, u"-c:a"_s,
                                 u"pcm_"_s + format, u"-f"_s, format, u"-"_s});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_EQ(result.errors, "");
    return result.output;
}

/// Level, bits, channels.
class MacAgainstFfmpeg : public ::testing::TestWithParam<std::tuple<ApeLevel, unsigned, unsigned>> {};

TEST_P(MacAgainstFfmpeg, HasEverySampleDecoded)
{
    const auto [level, bits, channels] = GetParam();
    const PcmShape shape{.bits = bits, .channels = channels};
    const TestFolder folder;
    for (const Sound sound : {Sound::Silence, Sound::Square, Sound::Alternation, Sound::Noise, Sound::Bursts,
                              Sound::Sweep, Sound::EqualChannels, Sound::OneChannel, Sound::Music}) {
        SCOPED_TRACE(static_cast<int>(sound));
        const QByteArray pcm = pcmOf(makeSamples(sound, shape, 100000), shape);
        const QString wavPath = folder.write(u"a.wav"_s, wavOf(pcm, shape));
        const QString apePath = folder.path(u"a.ape"_s);
        ASSERT_EQ(runMac({wavPath, apePath, levelOption(level)}).exitStatus, 0);
        // ffmpeg sums in 64 bits here and has wrong samples where the sums overflow.
        if (level != ApeLevel::Insane || bits != 24 || sound == Sound::Silence) {
            EXPECT_TRUE(isSame(decodedByFfmpeg(apePath, bits), pcm));
        }
        ASSERT_EQ(runMac({apePath, folder.path(u"b.wav"_s), u"-d"_s}).exitStatus, 0);
        EXPECT_TRUE(isSame(folder.read(u"b.wav"_s), wavOf(pcm, shape)));
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, MacAgainstFfmpeg,
                         ::testing::Combine(::testing::ValuesIn(kApeLevels), ::testing::Values(8U, 16U, 24U),
                                            ::testing::Values(1U, 2U)),
                         [](const auto &tested) {
                             return "Level" + std::to_string(static_cast<int>(std::get<0>(tested.param))) + "Bits"
                                    + std::to_string(std::get<1>(tested.param)) + "Channels"
                                    + std::to_string(std::get<2>(tested.param));
                         });

} // namespace

} // namespace nurv::test
