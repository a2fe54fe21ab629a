// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "checksum/VerifyListTask.h"

#include <QStringList>

#include <map>

namespace nurv {

/// Checks a list of FLAC fingerprints with `metaflac`, then decodes every file whose fingerprint is the list's with
/// `flac -t`. It is not looked whether the job was cancelled.
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

private:
    /// Returns the files whose fingerprints fit, in the order of their paths.
    [[nodiscard]] QStringList doVerifyFPP();
    void verifyFlacFilesSync(const QStringList &paths);
    /// Shows a chunk of flac's output, and returns it trimmed.
    [[nodiscard]] QString processFlacFileOutput(QStringView chunk, const QString &path);

    std::multimap<QString, std::size_t> m_filesOfPath; ///< the places among the list's files
};

} // namespace nurv
