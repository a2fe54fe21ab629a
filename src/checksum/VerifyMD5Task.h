// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "checksum/ListEntries.h"
#include "checksum/MD5Helper.h"
#include "checksum/VerifyListTask.h"

#include <vector>

namespace nurv {

/// Checks an MD5 list. Cancelled, it looks between the blocks of a file, and reports nothing of what it has found.
class VerifyMD5Task final : public VerifyListTask {
public:
    VerifyMD5Task(NURVTaskQueue *queue, const QString &fileName, std::shared_ptr<NURVTaskResults> results);

protected:
    [[nodiscard]] QString openingStatus() const override { return QStringLiteral("Verifying MD5 file"); }
    [[nodiscard]] QString openingLine() const override;
    void verify() override;
    [[nodiscard]] std::vector<checksumList::Entry> ownEntries(const QString &text) const override;
    [[nodiscard]] std::vector<checksumList::Entry> entriesOfOthers(const QString &text) const override;

private:
    void doCreateMD5();
    /// The digest of each entry's file: none for a line that is no entry, nor where the job was cancelled before.
    [[nodiscard]] std::vector<FileDigest> readFiles(const std::vector<checksumList::Entry> &entries);
};

} // namespace nurv
