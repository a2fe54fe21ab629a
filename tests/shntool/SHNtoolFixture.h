// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/ConvertFixture.h"

#include "base/WorkerThreads.h"
#include "process/ChildProcess.h"
#include "shntool/SHNtoolTab.h"

#include <QFile>

#include <algorithm>

namespace nurv::test {

using namespace Qt::StringLiterals;

/// A tab of shntool with real programs, and a folder for what it makes.
class SHNtoolFixture : public ConvertFixture {
protected:
    SHNtoolFixture()
    {
        for (const char16_t *key : {u"shntoolCommandOption", u"shntoolLenOption", u"shntoolOutputFormat", u"shntoolNamesFormat"})
            SettingsStore::instance().remove(QString::fromUtf16(key));
        set(u"warnOnDelete", false);
        set(u"trashOrDelete", 0);
        set(u"shntoolPreview", 0);
        tools.addAllReal();
        QObject::connect(&queue(), &NURVTaskQueue::rowChanged, &controller, [this](int row) {
            const auto &task = queue().panelArray()[static_cast<std::size_t>(row)];
            note(statuses, task->topTextField().text);
            note(mainLines, task->textField().text);
        });
        QObject::connect(&queue(), &NURVTaskQueue::outputWindowRequested, &controller,
                         [this](const QString &text, const QString &) { windows.append(text); });
    }

    /// Runs the command on the files, into the folder `out` where it makes any. Returns its jobs.
    std::vector<std::shared_ptr<NURVTask>> execute(const QString &command, const QStringList &files, const QString &format = u"flac"_s,
                                                   const std::function<void(SHNtoolTab &)> &setUp = {})
    {
        SHNtoolTab tab(controller);
        EXPECT_TRUE(tab.shntoolCommandMatrix.selectTitle(command));
        EXPECT_TRUE(tab.outputFormatMatrix.selectTitle(format));
        tab.addMatchedFiles(files);
        if (setUp)
            setUp(tab);
        const bool makes = QStringList{u"trim"_s, u"pad"_s, u"strip"_s, u"split"_s, u"join"_s}.contains(command);
        if (makes && !tab.sourceEncodeButton.isOn())
            prompts.expectOutputFolder(out.path());
        queue().hold();
        // Jobs that failed stay in the list.
        const auto before = static_cast<std::ptrdiff_t>(queue().panelArray().size());
        tab.executeCommand();
        std::vector<std::shared_ptr<NURVTask>> jobs(queue().panelArray().begin() + before, queue().panelArray().end());
        queue().release();
        EXPECT_TRUE(tab.fileNames().isEmpty());
        settle();
        return jobs;
    }
    void settle()
    {
        EXPECT_TRUE(finish());
        EXPECT_TRUE(waitUntil([] { return workerThreads::runningCount() == 0; }));
        handleWaitingEvents();
        EXPECT_EQ(children::runningCount(), 0);
    }
    static bool areThere(const QStringList &paths)
    {
        return std::all_of(paths.begin(), paths.end(), [](const QString &path) { return QFile::exists(path); });
    }
    /// A sound between stretches of digital silence.
    QString writeSilentEnds(const QString &name, SoundShape shape = {.frames = 30'000}, int silence = 20'000)
    {
        const QByteArray zeros(static_cast<qsizetype>(silence) * shape.channels * shape.bits / 8, '\0');
        const QByteArray samples = zeros + makeSamples(shape) + zeros;
        return writeByFfmpegFromSamples(folder.path(name), samples, shape);
    }
    /// A file of those samples, by the machine's ffmpeg.
    QString writeByFfmpegFromSamples(const QString &path, const QByteArray &samples, const SoundShape &shape)
    {
        const QString raw = folder.write(u"raw/samples"_s, samples);
        const QString form = u"s%1le"_s.arg(shape.bits);
        const ProgramResult made = runProgram(
            u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-y"_s, u"-f"_s, form, u"-ar"_s, QString::number(shape.rate), u"-ac"_s,
                          QString::number(shape.channels), u"-i"_s, raw, u"-c:a"_s, u"pcm_"_s + form, path});
        EXPECT_EQ(made.exitStatus, 0) << made.errors.constData();
        return path;
    }
    /// The samples of the files, one after the other, as another decoder has them.
    static QByteArray sound(const QStringList &paths, const QString &form = u"s16le"_s)
    {
        QByteArray joined;
        for (const QString &path : paths) {
            const ProgramResult decoded = runProgram(
                u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-i"_s, path, u"-f"_s, form, u"-c:a"_s, u"pcm_"_s + form, u"-"_s});
            EXPECT_EQ(decoded.exitStatus, 0) << qPrintable(path) << decoded.errors.constData();
            joined += decoded.output;
        }
        return joined;
    }
    /// Whether the job ended without an error, with its report where it did not.
    static ::testing::AssertionResult isDone(const std::shared_ptr<NURVTask> &job)
    {
        if (job->isDone() && !job->error() && !job->cancelled())
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << job->report().toStdString() << job->outcome().problem.toStdString();
    }

    ProgramFolder tools;
    QStringList statuses;
    QStringList mainLines;
    QStringList windows;

private:
    static void note(QStringList &lines, const QString &line)
    {
        if (lines.isEmpty() || lines.last() != line)
            lines.append(line);
    }
};

} // namespace nurv::test
