// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/StagedFixture.h"

#include "lossy/EncodeAACTask.h"
#include "lossy/EncodeMP3Task.h"
#include "lossy/EncodeOpusTask.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace nurv::test {

/// Jobs that encode lossily, with real programs.
class LossyFixture : public StagedFixture {
protected:
    LossyFixture() { tools.addAllReal(); }

    std::shared_ptr<EncodeMP3Task> makeMp3(const QString &source, const QString &type = u"CBR"_s, int level = 160)
    {
        return std::make_shared<EncodeMP3Task>(&queue(), source, type, out.path(), level);
    }
    std::shared_ptr<EncodeAACTask> makeAac(const QString &source, const QString &type = u"ABR"_s, int level = 160)
    {
        return std::make_shared<EncodeAACTask>(&queue(), source, type, out.path(), level);
    }
    std::shared_ptr<EncodeOpusTask> makeOpus(const QString &source, const QString &type = u"VBR"_s, int bitRate = 128,
                                             double frameSize = 20)
    {
        return std::make_shared<EncodeOpusTask>(&queue(), source, type, out.path(), bitRate, frameSize);
    }
    /// The sound in a file of that format word, which is also its extension; "FLAC" alone stands in capitals.
    QString makeSource(const QString &format, const SoundShape &shape)
    {
        if (format == u"AIFF")
            return writeAiff(folder.path(u"a.aiff"_s), shape);
        if (format == u"flac" || format == u"FLAC")
            return writeFlac(folder.path(u"a."_s + format), shape,
                             {u"-T"_s, u"TITLE=Title"_s, u"-T"_s, u"ARTIST=Artist"_s, u"-T"_s, u"ALBUM=Album"_s});
        if (format == u"M4A")
            return writeByFfmpeg(folder.path(u"a.m4a"_s), shape,
                                 {u"-c:a"_s, u"alac"_s, u"-metadata"_s, u"title=Title"_s, u"-metadata"_s,
                                  u"artist=Artist"_s});
        const QString wav = writeWav(folder.path(u"a.wav"_s), shape);
        if (format == u"WAV")
            return wav;
        const QString made = folder.path(u"a."_s + format.toLower());
        const QHash<QString, std::pair<QString, QStringList>> encoders{
            {u"WV"_s, {u"wavpack"_s, {u"-q"_s, wav, u"-o"_s, made}}},
            {u"APE"_s, {u"mac"_s, {wav, made, u"-c2000"_s}}},
            {u"TTA"_s, {u"ttaenc"_s, {wav, u"-o"_s, made}}},
            {u"SHN"_s, {u"shorten"_s, {wav, made}}},
        };
        const auto &[program, arguments] = encoders[format];
        EXPECT_EQ(runProgram(tools.path(program), arguments).exitStatus, 0) << qPrintable(format);
        folder.remove(u"a.wav"_s);
        return made;
    }
    /// The output's one file: everything between was removed.
    [[nodiscard]] QString output(const QString &extension)
    {
        EXPECT_EQ(out.list(), QStringList{u"a."_s + extension});
        return out.path(u"a."_s + extension);
    }
    /// The root mean square of each of two channels, after another decoder; full scale is 1.
    [[nodiscard]] static std::array<double, 2> levels(const QString &path)
    {
        const auto decoded = runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-i"_s, path, u"-f"_s,
                                                      u"s16le"_s, u"-ac"_s, u"2"_s, u"-"_s});
        EXPECT_EQ(decoded.exitStatus, 0);
        std::array<double, 2> sums{};
        const qsizetype frames = decoded.output.size() / 4;
        for (qsizetype at = 0; at < 2 * frames; ++at) {
            const double sample = qFromLittleEndian<qint16>(decoded.output.constData() + 2 * at) / 32768.0;
            sums.at(static_cast<std::size_t>(at % 2)) += sample * sample;
        }
        for (double &sum : sums)
            sum = std::sqrt(sum / static_cast<double>(std::max<qsizetype>(frames, 1)));
        return sums;
    }
    /// Seconds of sound after another decoder, which leaves out what the encoder filled up with.
    [[nodiscard]] static double decodedSeconds(const QString &path, int rate)
    {
        const auto decoded = runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-i"_s, path, u"-f"_s,
                                                      u"s16le"_s, u"-ac"_s, u"1"_s, u"-ar"_s, QString::number(rate), u"-"_s});
        EXPECT_EQ(decoded.exitStatus, 0) << decoded.output.toStdString();
        return static_cast<double>(decoded.output.size()) / 2.0 / rate;
    }
};

} // namespace nurv::test
