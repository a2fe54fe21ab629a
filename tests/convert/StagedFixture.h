// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/ConvertFixture.h"

#include "base/WorkerThreads.h"
#include "convert/DecodeALACTask.h"
#include "convert/DecodeAPETask.h"
#include "convert/DecodeTTATask.h"
#include "convert/DecodeWavpackTask.h"
#include "convert/EncodeALACTask.h"
#include "convert/EncodeALACToAPETask.h"
#include "convert/EncodeALACToFlacTask.h"
#include "convert/EncodeALACToTTATask.h"
#include "convert/EncodeALACToWavpackTask.h"
#include "convert/EncodeApeTask.h"
#include "convert/EncodeTTATask.h"
#include "convert/EncodeWavpackTask.h"
#include "convert/EncodeWavpackToFlacTask.h"
#include "process/ChildProcess.h"

namespace nurv::test {

using namespace Qt::StringLiterals;

/// Jobs that work in stages, run one at a time, with the status lines that they showed.
class StagedFixture : public ConvertFixture {
protected:
    StagedFixture()
    {
        set(u"warnOnDelete", false);
        QObject::connect(&queue(), &NURVTaskQueue::rowChanged, &controller, [this](int row) {
            const QString status = queue().panelArray()[static_cast<std::size_t>(row)]->topTextField().text;
            if (statuses.isEmpty() || statuses.last() != status)
                statuses.append(status);
        });
    }

    /// Makes the job that the tab would make, to or from the format, without running it.
    std::shared_ptr<StagedTask> makeEncoder(const QString &source, const QString &format, bool verify = false)
    {
        NURVTaskQueue *const q = &queue();
        const QString to = out.path();
        const bool isAlac = source.endsWith(u".m4a"_s);
        if (format == u"WV") {
            if (isAlac)
                return std::make_shared<EncodeALACToWavpackTask>(q, source, to, u"-f"_s);
            return std::make_shared<EncodeWavpackTask>(q, source, u"-f"_s, to);
        }
        if (format == u"TTA") {
            if (isAlac)
                return std::make_shared<EncodeALACToTTATask>(q, source, to);
            return std::make_shared<EncodeTTATask>(q, source, to);
        }
        if (format == u"APE") {
            if (isAlac)
                return std::make_shared<EncodeALACToAPETask>(q, source, to, u"2000"_s);
            return std::make_shared<EncodeApeTask>(q, source, u"2000"_s, to);
        }
        if (format == u"M4A")
            return std::make_shared<EncodeALACTask>(q, source, to);
        auto results = std::make_shared<NURVTaskResults>();
        std::shared_ptr<StagedTask> task;
        if (isAlac)
            task = std::make_shared<EncodeALACToFlacTask>(q, source, to, 8, verify, results);
        else
            task = std::make_shared<EncodeWavpackToFlacTask>(q, source, to, 8, verify, results);
        results->addTaskInSet(*task);
        return task;
    }
    std::shared_ptr<StagedTask> makeDecoder(const QString &source, const QString &format)
    {
        NURVTaskQueue *const q = &queue();
        if (source.endsWith(u".wv"_s))
            return std::make_shared<DecodeWavpackTask>(q, source, out.path(), format);
        if (source.endsWith(u".tta"_s))
            return std::make_shared<DecodeTTATask>(q, source, out.path(), format);
        if (source.endsWith(u".ape"_s))
            return std::make_shared<DecodeAPETask>(q, source, out.path(), format);
        return std::make_shared<DecodeALACTask>(q, source, out.path(), format);
    }
    /// Runs the job to its end, its last step after the queue was told included.
    std::shared_ptr<StagedTask> runJob(const std::shared_ptr<StagedTask> &task)
    {
        queue().addTask(task);
        EXPECT_TRUE(finish());
        EXPECT_TRUE(waitUntil([] { return workerThreads::runningCount() == 0; }));
        EXPECT_EQ(children::runningCount(), 0);
        return task;
    }
    /// The lines that logged fakes wrote, their words joined by "|".
    [[nodiscard]] QStringList calls(const QString &tool) const
    {
        if (!folder.exists(tool + u".log"_s))
            return {};
        const QStringList lines = QString::fromUtf8(folder.read(tool + u".log"_s)).split(u'\n', Qt::SkipEmptyParts);
        QStringList words;
        for (QString line : lines)
            words.append(line.replace(u'\t', u'|'));
        return words;
    }
    /// A fake in the place of the one before.
    void setFake(const QString &tool, const QByteArray &script)
    {
        if (QFile::exists(tools.path(tool)))
            tools.remove(tool);
        tools.addFake(tool, script);
    }
    /// The same, which logs its arguments before it acts out the script.
    void addFake(const QString &tool, const QByteArray &script)
    {
        setFake(tool, "log=" + folder.path(tool + u".log"_s).toUtf8() + ';' + script);
    }
    /// The path less the folders of the test.
    [[nodiscard]] QString shortened(QString text) const
    {
        return text.replace(folder.path() + u'/', u"in/"_s).replace(out.path() + u'/', u"out/"_s);
    }

    ProgramFolder tools;
    QStringList statuses;
};

} // namespace nurv::test
