// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "checksum/VerifyListTask.h"

namespace nurv {

/// Checks an MD5 list. Cancelled, it looks between the blocks of a file, and reports nothing of what it has found.
class VerifyMD5Task final : public VerifyListTask {
public:
    VerifyMD5Task(NURVTaskQueue *queue, const QString &fileName, std::shared_ptr<NURVTaskResults> results);

protected:
    [[nodiscard]] QString openingStatus() const override { return QStringLiteral("Verifying MD5 file"); }
    [[nodiscard]] QString openingLine() const override;
    void verify() override;

private:
    void doCreateMD5();
};

} // namespace nurv
