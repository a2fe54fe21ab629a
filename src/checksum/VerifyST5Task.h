// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "checksum/VerifyListTask.h"

#include <QStringView>

namespace nurv {

/// Checks an ST5 list with `shntool hash`, a run for each file. It is not looked whether the job was cancelled.
class VerifyST5Task final : public VerifyListTask {
public:
    VerifyST5Task(NURVTaskQueue *queue, const QString &fileName, std::shared_ptr<NURVTaskResults> results);

    [[nodiscard]] NeededPrograms neededPrograms() const override;

protected:
    [[nodiscard]] QString openingStatus() const override { return QStringLiteral("Verigying ST5 File"); }
    [[nodiscard]] QString openingLine() const override;
    void verify() override;
    [[nodiscard]] std::vector<checksumList::Entry> ownEntries(const QString &text) const override;
    [[nodiscard]] std::vector<checksumList::Entry> entriesOfOthers(const QString &text) const override;
    [[nodiscard]] bool needsBareNames() const override { return true; }

private:
    void doCreateST5();
    void check(const checksumList::Entry &entry, const QString &path);
    /// What the program said of a file.
    struct Answer {
        QString text;         ///< the file's line, or the warning; empty when it gave neither
        QString failure = {}; ///< why it did not come to its end; empty: it did
    };
    [[nodiscard]] Answer st5(const QString &path);
    void showProgress(QStringView chunk);
    /// What the program's output has to say of the file, with the file's name behind it: its last warning, or else its
    /// digest. However the output was cut into chunks, a line is a line.
    [[nodiscard]] static QString processTaskOutput(QStringView output, const QString &path);
};

} // namespace nurv
