// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace nurv {

struct OutputBatch;

/// The path as a disk sees it that ignores case.
[[nodiscard]] QString foldedName(const QString &path);

/// A job's right to make its output: no two make one file at the same time,
/// of one batch only the first does, and no file is made and converted at the same
/// time. Any thread; with a batch only the GUI thread takes.
class OutputClaim {
public:
    OutputClaim() = default;
    ~OutputClaim() { release(); }
    OutputClaim(const OutputClaim &) = delete;
    OutputClaim &operator=(const OutputClaim &) = delete;

    /// Takes `output` for `source`, as a member of `batch` if there is one. Returns
    /// nothing when it is granted, else why it is not. One folder under two names is
    /// still one folder, and where a disk takes two spellings for one name, so does
    /// this. At most once.
    [[nodiscard]] std::optional<QString> take(const QString &output, const QString &source, OutputBatch *batch);
    /// Takes part in reading the source, and makes nothing of it alone: one of several sources of one output. At most
    /// once, instead of `take`. Returns why it is not granted.
    [[nodiscard]] std::optional<QString> takeSource(const QString &source);
    /// Whether another job converts the source as well. Also after `release`.
    [[nodiscard]] bool isSourceReadByOthers() const;
    /// Gives the output back to other batches; in its own batch it stays taken.
    void release();

private:
    QString m_place; ///< of the output; empty: none is held
    QString m_sourcePlace;
    bool m_isHeld = false;
};

} // namespace nurv
