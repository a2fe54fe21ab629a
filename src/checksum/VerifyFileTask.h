// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVAsyncNSTask.h"

#include <QString>
#include <QStringView>

#include <memory>

namespace nurv {

/// Tests one lossless file with the decoder of its format, and reports the decoder's own words to a set that all files
/// of a batch share. A decoder that ends with another status than 0 ends the job in error.
class VerifyFileTask : public NURVAsyncNSTask {
public:
    [[nodiscard]] const QString &fileName() const { return m_fileName; }
    /// What its decoder said of this file, in whichever entry of the set that stands.
    [[nodiscard]] QString report() const override { return m_report; }

protected:
    /// Names the row after the file. `arguments` name it by `path`, which is absolute.
    VerifyFileTask(std::shared_ptr<NURVTaskResults> results, NURVTaskQueue *queue, const QString &launchPath,
                   const QStringList &arguments, const QString &path);

    /// Shows "Verifying: 45.000000%" and the file's name.
    void showProgress(double percent);
    /// Adds to the report, and to the job's own entry of the set.
    void addLines(const QString &lines);
    /// Adds to the report, and to the first entry of the set.
    void addLinesToFirst(const QString &lines);
    void failWith(const QString &reason) override;

private:
    QString m_fileName; ///< without its folder
    QString m_report;
};

/// By `flac -t`.
class VerifyFlacTask final : public VerifyFileTask {
public:
    VerifyFlacTask(std::shared_ptr<NURVTaskResults> results, NURVTaskQueue *queue, const QString &launchPath,
                   const QStringList &arguments);
    void startTask() override;

protected:
    void processTaskOutput(const QString &chunk) override;
    void cleanup() override;

private:
    QString m_singleResult;
};

/// By `mac -v`. What it has to say goes to the first entry of the set, whichever job that belongs to.
class VerifyApeTask final : public VerifyFileTask {
public:
    VerifyApeTask(std::shared_ptr<NURVTaskResults> results, NURVTaskQueue *queue, const QString &launchPath,
                  const QStringList &arguments);

protected:
    void processTaskOutput(const QString &chunk) override;
    void cleanup() override;

private:
    QString m_singleResult;
};

/// By `wvunpack -v` or `ttaenc -t`, which write alike.
class VerifyByPercentTask : public VerifyFileTask {
public:
    void startTask() override;

protected:
    VerifyByPercentTask(std::shared_ptr<NURVTaskResults> results, NURVTaskQueue *queue, const QString &launchPath,
                        const QStringList &arguments);
    void processTaskOutput(const QString &chunk) override;
};

class VerifyWavepackTask final : public VerifyByPercentTask {
public:
    VerifyWavepackTask(std::shared_ptr<NURVTaskResults> results, NURVTaskQueue *queue, const QString &launchPath,
                       const QStringList &arguments)
        : VerifyByPercentTask(std::move(results), queue, launchPath, arguments)
    {
    }
};

class VerifyTTATask final : public VerifyByPercentTask {
public:
    VerifyTTATask(std::shared_ptr<NURVTaskResults> results, NURVTaskQueue *queue, const QString &launchPath,
                  const QStringList &arguments)
        : VerifyByPercentTask(std::move(results), queue, launchPath, arguments)
    {
    }
};

} // namespace nurv
