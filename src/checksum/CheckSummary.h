// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ReportFrame.h"

#include <QStringList>

#include <map>
#include <mutex>

namespace nurv {

/// What a batch of checks came to, for who reads its window: first what is wrong, list by list in the order of the batch, and
/// behind the reports how much is good.
///
///     show.md5: 1 of 3 files is missing
///         t03.flac: missing (No such file or directory)
///
///     ... the reports ...
///     1 of 2 lists good; 5 of 6 entries good
class CheckSummary final : public ReportFrame {
public:
    enum class Kind {
        Lists,
        Files, ///< that were tested by themselves: what was wrong with them their reports tell
    };
    explicit CheckSummary(Kind kind) : m_kind(kind) {}

    void addMember(int place, const NURVTask &task) override;
    [[nodiscard]] QString head() const override;
    [[nodiscard]] QString foot() const override;

private:
    struct Check {
        QString name;
        QString problem = {};      ///< empty: all is good
        QStringList failures = {}; ///< the first of them
        qsizetype wrong = 0;  ///< entries
        qsizetype entries = 0;
    };

    const Kind m_kind;
    mutable std::mutex m_lock;
    std::map<int, Check> m_checks;
};

} // namespace nurv
