// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "checksum/MD5Helper.h"
#include "engine/NURVInProcessTask.h"

#include <QStringList>

#include <vector>

namespace nurv {

/// Writes the MD5, the ST5 and the FFP list of some files in one go: each file is digested as it stands while it is decoded
/// to its end, so that damage is seen before a list vouches for the file. Several files are read at a time.
///
/// The lists are those that the jobs for one kind write. A file that could not be read, decoded or fingerprinted, and a list that
/// could not be written, is a warning of the job. Cancelled, it writes no list.
class CreateAllListsTask final : public NURVInProcessTask {
public:
    /// The lists to write, absolute paths.
    struct Lists {
        QString md5;
        QString st5;
        QString ffp;
    };

    /// `files` are absolute paths. Of audio files that shntool reads there is a line in the ST5 list, of FLAC files one in
    /// the FFP list; a list of no files is not written.
    CreateAllListsTask(NURVTaskQueue *queue, const QStringList &files, Lists lists);

    [[nodiscard]] NeededPrograms neededPrograms() const override;
    void stopTask() override;

protected:
    void doStartTask() override;

private:
    /// What was found of a file.
    struct Finding {
        FileDigest digest;
        QString st5Line;     ///< with its line end; empty: shntool gave none
        QString st5Problem;  ///< why the file is not whole; empty: it is, or has no place in the list
        QString fingerprint; ///< as in the list; empty: it has no place there
    };

    void readFiles();
    [[nodiscard]] Finding read(const QString &path) const;
    void hash(const QString &path, Finding &finding) const;
    void writeLists();
    void writeList(const QString &path, const QString &header, const QString &entries);

    QStringList m_files;
    Lists m_lists;
    std::vector<Finding> m_findings; ///< of each file
};

} // namespace nurv
