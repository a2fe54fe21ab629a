// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/ConvertFixture.h"

#include "base/WorkerThreads.h"
#include "fix/FixTab.h"
#include "fix/FixTask.h"
#include "process/ChildProcess.h"

#include <QFile>

namespace nurv::test {

using namespace Qt::StringLiterals;

/// Sets of files whose borders lie in the middle of sectors, and jobs that fix them with real programs.
class FixFixture : public ConvertFixture {
protected:
    static constexpr int kSectorFrames = 588;

    FixFixture()
    {
        set(u"warnOnDelete", false);
        set(u"trashOrDelete", 0);
        set(u"fixOutputFormat", 1);
        tools.addAllReal();
        QObject::connect(&queue(), &NURVTaskQueue::rowChanged, &controller, [this](int row) {
            const auto &task = queue().panelArray()[static_cast<std::size_t>(row)];
            note(statuses, task->topTextField().text);
            note(mainLines, task->textField().text);
        });
    }

    /// Frames of the file in that place: no whole sectors, all of them together neither.
    static SoundShape shapeOf(int place) { return {.frames = 20'001 + 1000 * place, .seed = 7U + static_cast<unsigned>(place)}; }
    /// show-d1t01.wav, show-d1t02.wav, show-d1t03.wav
    QStringList makeWavs(int count = 3)
    {
        QStringList paths;
        for (int i = 1; i <= count; ++i)
            paths.append(writeWav(folder.path(u"show-d1t0%1.wav"_s.arg(i)), shapeOf(i)));
        return paths;
    }
    QStringList makeFlacs(int count = 3)
    {
        QStringList paths;
        for (int i = 1; i <= count; ++i)
            paths.append(writeFlac(folder.path(u"show-d1t0%1.flac"_s.arg(i)), shapeOf(i),
                                   {u"-T"_s, u"TITLE=Song %1"_s.arg(i), u"-T"_s, u"ARTIST=Artist"_s, u"-T"_s, u"DATE=1999"_s}));
        return paths;
    }
    std::shared_ptr<FixTask> make(const QStringList &sources, const QString &format, const QString &md5Option = u"No MD5"_s,
                                  FixTab *tab = nullptr)
    {
        return std::make_shared<FixTask>(&queue(), sources, format, out.path(), md5Option, 4, tab);
    }
    /// Runs the job to its end, its last step after the queue was told included.
    std::shared_ptr<FixTask> runJob(const std::shared_ptr<FixTask> &task)
    {
        queue().addTask(task);
        settle();
        return task;
    }
    void settle()
    {
        EXPECT_TRUE(finish());
        EXPECT_TRUE(waitUntil([] { return workerThreads::runningCount() == 0; }));
        handleWaitingEvents();
        EXPECT_EQ(children::runningCount(), 0);
    }
    /// The samples of the files, one after the other, as another decoder has them.
    static QByteArray sound(const QStringList &paths)
    {
        QByteArray joined;
        for (const QString &path : paths) {
            const ProgramResult decoded = runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-i"_s, path,
                                                                   u"-f"_s, u"s16le"_s, u"-"_s});
            EXPECT_EQ(decoded.exitStatus, 0) << qPrintable(path) << decoded.errors.constData();
            joined += decoded.output;
        }
        return joined;
    }
    /// Whether the files hold that sound and the silence up to the next border of a sector, and begin and end at such.
    static void expectFixed(const QByteArray &before, const QStringList &paths)
    {
        constexpr qsizetype kSectorBytes = 4 * kSectorFrames;
        QByteArray joined;
        for (const QString &path : paths) {
            joined += sound({path});
            EXPECT_EQ(joined.size() % kSectorBytes, 0) << qPrintable(path);
        }
        const qsizetype missing = (kSectorBytes - before.size() % kSectorBytes) % kSectorBytes;
        EXPECT_TRUE(joined == before + QByteArray(missing, '\0'));
    }
    [[nodiscard]] QStringList outputs(const QString &extension, int count = 3) const
    {
        QStringList paths;
        for (int i = 1; i <= count; ++i)
            paths.append(out.path(u"show-d1t0%1.%2"_s.arg(i).arg(extension)));
        return paths;
    }
    static bool areThere(const QStringList &paths)
    {
        return std::all_of(paths.begin(), paths.end(), [](const QString &path) { return QFile::exists(path); });
    }
    static bool areGone(const QStringList &paths)
    {
        return std::none_of(paths.begin(), paths.end(), [](const QString &path) { return QFile::exists(path); });
    }
    void setFake(const QString &tool, const QByteArray &script)
    {
        tools.remove(tool);
        tools.addFake(tool, script);
    }
    /// Steps of a fake shntool that tells of a source and makes its output a copy of that file.
    [[nodiscard]] QByteArray makes(const QString &source, const QString &contents, const QString &extension) const
    {
        const QByteArray made = out.path(QFileInfo(source).completeBaseName() + u"-fixed."_s + extension).toUtf8();
        return "out=Fixing [" + source.toUtf8() + "] (0:01.00) --> [" + made + "] : 100% OK\\n;copy=" + contents.toUtf8() + ':'
               + made + ';';
    }

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
