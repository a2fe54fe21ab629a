// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "NurvProgram.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QJsonObject>

#include <gtest/gtest.h>

namespace nurv::test {

using namespace Qt::StringLiterals;

inline constexpr int kSectorFrames = 588;
inline constexpr int kFrameBytes = 4;

/// The samples of the files, one after the other, as another decoder has them.
[[nodiscard]] inline QByteArray sound(const QStringList &paths)
{
    QByteArray joined;
    for (const QString &path : paths) {
        const ProgramResult decoded =
            runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-i"_s, u"file:"_s + path, u"-f"_s,
                                     u"s16le"_s, u"-c:a"_s, u"pcm_s16le"_s, u"-"_s});
        EXPECT_EQ(decoded.exitStatus, 0) << qPrintable(path) << decoded.errors.constData();
        joined += decoded.output;
    }
    return joined;
}

/// The object of the only job.
[[nodiscard]] inline QJsonObject jobOf(const ProgramResult &result)
{
    QJsonObject job;
    int count = 0;
    for (const QJsonObject &object : jsonLines(result.output)) {
        if (object[u"type"_s] != u"job"_s)
            continue;
        job = object;
        ++count;
    }
    EXPECT_EQ(count, 1) << result.output.constData();
    EXPECT_FALSE(job[u"report"_s].toString().contains(u'\b'));
    return job;
}

/// Files in the folder "in", and an empty folder "out".
class SHNtoolCommandFixture : public ::testing::Test {
protected:
    [[nodiscard]] static ProgramResult shntool(const QStringList &arguments)
    {
        return runNurv(QStringList{u"shntool"_s} + arguments);
    }
    /// An edit with its outputs in "out".
    [[nodiscard]] ProgramResult edit(const QString &command, const QStringList &arguments) const
    {
        return shntool(QStringList{command, u"--output-dir"_s, out} + arguments);
    }
    /// A sound of 16 bits between stretches of digital silence.
    QString writeSilentEnds(const QString &name, SoundShape shape = {.frames = 30'000}) const
    {
        const QByteArray silence(qsizetype{20'000} * kFrameBytes, '\0');
        const QByteArray samples = silence + makeSamples(shape) + silence;
        constexpr qsizetype kHeader = 44;
        shape.frames = samples.size() / kFrameBytes;
        return folder.write(name, wavBytes(shape).first(kHeader) + samples);
    }
    /// A file that the edit has something to do with.
    QString writeFor(const QString &command, const QString &name, std::uint32_t seed = 1) const
    {
        if (command == u"trim")
            return writeSilentEnds(name, {.frames = 30'000, .seed = seed});
        if (command == u"strip")
            return folder.write(name,
                                wavBytes({.frames = 10 * kSectorFrames, .seed = seed}, riffChunk("note", "by hand")));
        return writeWav(folder.path(name), {.frames = 75 * kSectorFrames + 17, .seed = seed});
    }
    /// A cue sheet of two tracks, of which the second begins after a second.
    QString writeSheet(const QString &name = u"points.cue"_s) const
    {
        return folder.write(name, "FILE \"a.wav\" WAVE\n  TRACK 01 AUDIO\n    TITLE \"Zw\xc3\xb6lf\"\n"
                                  "    INDEX 01 00:00:00\n  TRACK 02 AUDIO\n    TITLE \"Two\"\n"
                                  "    INDEX 01 00:01:00\n");
    }

    TestFolder folder;
    QString out = folder.makeFolder(u"out"_s);
};

} // namespace nurv::test
