// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/EncodeCoreAudioSync.h"
#include "engine/TestTasks.h"
#include "support/AudioFixtures.h"
#include "support/LogLines.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"
#include "support/WaitUntil.h"

#include <QCryptographicHash>
#include <QFile>
#include <QStringList>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace nurv::test {

/// Conversions on the worker thread of a queued job, as in the application.
class AudioConversionFixture : public ::testing::Test {
protected:
    using Configure = std::function<void(EncodeCoreAudioSync &)>;

    AudioConversionFixture()
    {
        QObject::connect(&queue, &NURVTaskQueue::rowChanged, &queue, [this] {
            const NURVTask &job = *queue.panelArray().back();
            if (job.topTextField().text.startsWith(u"Encoding to ")
                && (shown.isEmpty() || shown.last() != job.topTextField().text)) {
                shown.append(job.topTextField().text);
                values.append(job.progressIndicator().value);
                if (onProgress)
                    onProgress(*queue.panelArray().back());
            }
        });
    }

    /// Runs one conversion to its end and returns the job.
    std::shared_ptr<WorkTask> convert(const QString &source, const QString &output, FourCharCode formatType,
                                      FourCharCode fileType, const Configure &configure = {})
    {
        shown.clear();
        values.clear();
        const auto job = std::make_shared<WorkTask>(&queue, [&](WorkTask &self) {
            EncodeCoreAudioSync conversion(self, source, output, formatType, fileType);
            if (configure)
                configure(conversion);
            conversion.doEncodeCall();
            failureText = conversion.failureText();
            obstacle = conversion.obstacle();
        });
        queue.addTask(job);
        EXPECT_TRUE(waitUntil([this] { return queue.taskCount() == 0; }, std::chrono::seconds(60)));
        return job;
    }
    std::shared_ptr<WorkTask> toAppleLossless(const QString &source, const QString &output)
    {
        return convert(source, output, kFormatAppleLossless, kFileM4A);
    }
    std::shared_ptr<WorkTask> toAac(const QString &source, const QString &output, const Configure &configure = {})
    {
        return convert(source, output, kFormatAAC, kFileM4A, configure);
    }
    std::shared_ptr<WorkTask> toWav(const QString &source, const QString &output)
    {
        return convert(source, output, kFormatLinearPCM, kFileWave);
    }
    std::shared_ptr<WorkTask> toAiff(const QString &source, const QString &output)
    {
        return convert(source, output, kFormatLinearPCM, kFileAIFF);
    }

    /// The text that a failed conversion leaves, for the reason given.
    [[nodiscard]] static QString failure(const QString &source, const QString &format, const QString &reason)
    {
        return QStringLiteral("Error encoding %1 to %2:\n%3\n").arg(source, format, reason);
    }

    RecordingServices services;
    NURVTaskQueue queue{services};
    TestFolder folder;
    QStringList shown;    ///< the status lines of the last conversion
    QList<double> values; ///< the progress beside them
    QString failureText;
    QString obstacle;
    std::function<void(NURVTask &)> onProgress;
};

/// MD5 of the fixture's samples as decodedMd5 gives it: 32 bits, left-justified.
inline QByteArray soundMd5(const SoundShape &shape)
{
    const QByteArray samples = makeSamples(shape);
    const int width = shape.bits / 8;
    QByteArray wide;
    wide.reserve(samples.size() / width * 4);
    for (qsizetype start = 0; start < samples.size(); start += width) {
        wide.append(4 - width, '\0');
        wide.append(samples.constData() + start, width);
        if (shape.bits == 8)
            wide.back() = static_cast<char>(wide.back() ^ '\x80');
    }
    return QCryptographicHash::hash(wide, QCryptographicHash::Md5).toHex();
}

} // namespace nurv::test
