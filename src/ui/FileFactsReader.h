// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/FileFacts.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <utility>
#include <vector>

namespace nurv {

/// Reads the facts of the files of a list on a thread of its own, those that are looked at first, and keeps them. GUI thread.
class FileFactsReader final : public QObject {
    Q_OBJECT

public:
    explicit FileFactsReader(QObject *parent = nullptr);
    ~FileFactsReader() override;

    /// The list is in sight: from now on its files are read.
    void wake();
    /// The files of the list as it is now. Facts of others are forgotten.
    void setFiles(const QStringList &paths);
    /// Looks at every file again: some may have gone or changed.
    void refresh();
    /// Null until they have been read; they come soon then.
    [[nodiscard]] const FileFacts *facts(const QString &path) const;
    /// Whether the facts of all files are there.
    [[nodiscard]] bool isComplete() const { return m_facts.size() == m_files.size(); }
    [[nodiscard]] qint64 totalBytes() const { return m_totalBytes; }
    /// Of all sounds whose lengths are known.
    [[nodiscard]] double totalSeconds() const { return m_totalSeconds; }

Q_SIGNALS:
    /// There are facts of further files, or others.
    void factsChanged();

private:
    struct Work;
    using Found = std::vector<std::pair<QString, FileFacts>>;

    void readAll(const QStringList &paths, const QHash<QString, FileFacts> &known);
    static void run(const std::shared_ptr<Work> &work);
    void take(int round, const Found &found);
    void count(const FileFacts &facts, int sign);

    QStringList m_files;
    QHash<QString, FileFacts> m_facts;
    std::shared_ptr<Work> m_work; ///< shared with the thread that does it
    bool m_isAwake = false;
    int m_round = 0;
    qint64 m_totalBytes = 0;
    double m_totalSeconds = 0.0;
};

} // namespace nurv
