// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Cdda2wav.h"
#include "util/CDExtractFixture.h"
#include "util/CompactDisc.h"

#include <QFile>

#include <array>
#include <random>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

/// Bytes of one sector of sound (IEC 60908): 588 frames of two channels of 16 bits.
constexpr qsizetype kSectorBytes = 2352;

class CDImageTest : public test::CDExtractFixture {
protected:
    /// A disc of noise, from which nobody can guess the order of bytes (hence -c), and in place of cdda2wav what has
    /// its arguments read by another program, from the image.
    void makeDisc(const QList<int> &sectors)
    {
        std::mt19937 generator(7);
        QByteArray image;
        QByteArray sheet = "FILE \"image.bin\" BINARY\n";
        int number = 1;
        int begin = 0;
        for (const int count : sectors) {
            QByteArray track(count * kSectorBytes, '\0');
            for (char &byte : track)
                byte = static_cast<char>(generator());
            tracks.append(track);
            image += track;
            sheet += u"  TRACK %1 AUDIO\n    INDEX 01 00:%2:%3\n"_s.arg(number++, 2, 10, QChar(u'0'))
                         .arg(begin / 75, 2, 10, QChar(u'0'))
                         .arg(begin % 75, 2, 10, QChar(u'0'))
                         .toUtf8();
            begin += count;
        }
        folder.write(u"image.bin"_s, image);
        const QString cue = folder.write(u"image.cue"_s, sheet);
        const QString program = tools.path(u"cdda2wav"_s);
        QFile script(program);
        ASSERT_TRUE(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\n"
                     "[ \"$1 $2 $3 $4 $5\" = '-B -L 1 -H -t' ] || exit 2\n"
                     "track=${6%+*}\n"
                     "while [ \"$track\" -le \"${6#*+}\" ]; do\n"
                     "    cd-paranoia -q -c -d '"
                     + QFile::encodeName(cue)
                     + "' -w \"$track\" \"audio_$(printf %02d \"$track\").wav\" || exit 1\n"
                       "    echo \"100%  0 rderr, 0 skip, 0 atom\"\n"
                       "    track=$((track + 1))\n"
                       "done\n");
        script.close();
        ASSERT_TRUE(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    [[nodiscard]] QByteArray samplesOf(const QString &name) const
    {
        const test::ProgramResult decoded = test::runProgram(
            u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-i"_s, out.path(name), u"-f"_s, u"s16le"_s, u"-"_s});
        EXPECT_EQ(decoded.exitStatus, 0) << decoded.errors.constData();
        return decoded.output;
    }

    QList<QByteArray> tracks;
};

TEST_F(CDImageTest, CopiesEverySampleOfEachTrack)
{
    makeDisc({225, 150, 160});
    const QStringList names{u"1 Track.aiff"_s, u"2 Track.aiff"_s, u"3 Track.aiff"_s};
    const auto job = makeJob(getTrackNumberForExtract(reNumberCdTracks(names)), names);
    run(job);
    EXPECT_FALSE(job->error()) << qPrintable(job->report());
    EXPECT_TRUE(samplesOf(u"01 Track.wav"_s) == tracks[0]);
    EXPECT_TRUE(samplesOf(u"02 Track.wav"_s) == tracks[1]);
    EXPECT_TRUE(samplesOf(u"03 Track.wav"_s) == tracks[2]);
    EXPECT_EQ(out.list().size(), 4);
}

TEST_F(CDImageTest, CopiesASingleTrack)
{
    makeDisc({150, 150, 150});
    const auto job = makeJob(u"2+2"_s, {u"2 Encore.aiff"_s});
    run(job);
    EXPECT_FALSE(job->error()) << qPrintable(job->report());
    EXPECT_TRUE(samplesOf(u"02 Encore.wav"_s) == tracks[1]);
}

TEST_F(CDImageTest, TellsWhyTheProgramOfTheDistributionFails)
{
    tools.addReal(u"cdda2wav"_s);
    const auto job =
        std::make_shared<CDExtractTask>(&queue(), tools.path(u"cdda2wav"_s),
                                        cdda2wav::extractionArguments(u"1+1"_s, false, folder.path(u"no drive"_s)));
    job->setTrackString(u"1+1"_s);
    job->setFileNames({u"/media/Show/1 Track.aiff"_s});
    job->setDirectory(out.path());
    run(job);
    EXPECT_TRUE(job->error());
    EXPECT_FALSE(job->outcome().problem.isEmpty());
    EXPECT_EQ(out.list(), QStringList{u"CD.log.txt"_s});
    EXPECT_TRUE(out.read(u"CD.log.txt"_s).contains("no drive")) << out.read(u"CD.log.txt"_s).constData();
}

} // namespace
} // namespace nurv
