// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/ConvertFixture.h"

#include "programs/Cdda2wav.h"
#include "util/CDExtractTask.h"

#include <QFile>

namespace nurv::test {

using namespace Qt::StringLiterals;

/// A job that copies a disc into the folder `out`, by whatever stands in for cdda2wav.
class CDExtractFixture : public ConvertFixture {
protected:
    CDExtractFixture()
    {
        QObject::connect(&queue(), &NURVTaskQueue::rowChanged, &controller, [this](int row) {
            const auto &task = queue().panelArray()[static_cast<std::size_t>(row)];
            note(statuses, task->topTextField().text);
            note(mainLines, task->textField().text);
        });
    }

    std::shared_ptr<CDExtractTask> makeJob(const QString &range, const QStringList &names, bool isOneFile = false)
    {
        const auto job = std::make_shared<CDExtractTask>(
            &queue(), tools.path(u"cdda2wav"_s), cdda2wav::extractionArguments(range, isOneFile, u"/dev/sr0"_s));
        QStringList paths;
        for (const QString &name : names)
            paths.append(u"/media/Show/"_s + name);
        job->setTrackString(range);
        job->setOneTrack(isOneFile);
        job->setFileNames(paths);
        job->setTitle(u"CD Tracks 1 - 3"_s);
        job->setDiscName(u"Show"_s);
        job->setDirectory(out.path());
        return job;
    }
    void run(const std::shared_ptr<CDExtractTask> &job)
    {
        queue().addTask(job);
        settle();
    }
    void settle()
    {
        EXPECT_TRUE(finish());
        EXPECT_EQ(children::runningCount(), 0);
    }
    /// A step of the stand-in that makes a track's file, of which `seed` tells one from another.
    QByteArray making(const QString &name, std::uint32_t seed)
    {
        const QString sound = writeWav(folder.path(u"sound%1.wav"_s.arg(seed)), {.frames = 588 * 10, .seed = seed});
        return "copy=" + QFile::encodeName(sound) + ':' + QFile::encodeName(name) + ';';
    }
    [[nodiscard]] QByteArray sound(std::uint32_t seed) const { return folder.read(u"sound%1.wav"_s.arg(seed)); }

    ProgramFolder tools;
    QStringList statuses;
    QStringList mainLines;

private:
    static void note(QStringList &lines, const QString &line)
    {
        if (lines.isEmpty() || lines.last() != line)
            lines.append(line);
    }
};

} // namespace nurv::test
