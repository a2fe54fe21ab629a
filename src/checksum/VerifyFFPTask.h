// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "checksum/VerifyListTask.h"

#include <QStringList>

#include <map>

namespace nurv {

/// Checks a list of FLAC fingerprints with `metaflac`, then decodes every file whose fingerprint is the list's with
/// `flac -t`. The fingerprints are compared to the end of the list; of a cancelled job no further file is decoded.
class VerifyFFPTask final : public VerifyListTask {
public:
    VerifyFFPTask(NURVTaskQueue *queue, const QString &fileName, std::shared_ptr<NURVTaskResults> results);

    [[nodiscard]] NeededPrograms neededPrograms() const override;
    /// The list.
    [[nodiscard]] QString description() const override { return fileName(); }

protected:
    [[nodiscard]] QString openingStatus() const override { return QStringLiteral("Verifying FFP"); }
    [[nodiscard]] QString openingLine() const override;
    void verify() override;
    [[nodiscard]] std::vector<checksumList::Entry> ownEntries(const QString &text) const override;
    [[nodiscard]] std::vector<checksumList::Entry> entriesOfOthers(const QString &text) const override;
    [[nodiscard]] bool needsBareNames() const override { return true; }

private:
    /// Returns the files whose fingerprints fit, in the order of their paths.
    [[nodiscard]] QStringList doVerifyFPP();
    [[nodiscard]] bool check(const checksumList::Entry &entry, const QString &path);
    void verifyFlacFilesSync(const QStringList &paths);
    void verifyFlacFile(const QString &path);
    /// Shows a chunk of flac's output, and returns it trimmed.
    [[nodiscard]] QString processFlacFileOutput(QStringView chunk, const QString &path);

    std::multimap<QString, std::size_t> m_filesOfPath; ///< the places among the list's files
};

} // namespace nurv
