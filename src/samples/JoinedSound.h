// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "samples/SampleStream.h"

#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace nurv {

/// The sound of one side of a comparison: its files, one after the other, as one.
///
/// Every operation throws NurvFailure with a line that names the side, and the file where
/// there are several. Used by one thread at a time.
class JoinedSound {
public:
    enum class Side { Source, Output };

    /// Opens the first file.
    JoinedSound(const QStringList &paths, Side side);

    /// Of the first file; the others have the same rate, channels and kind.
    [[nodiscard]] const SampleFormat &format() const { return m_format; }

    /// Fills `samples` with `frames` frames, with fewer at the end of the last file only.
    [[nodiscard]] std::size_t read(std::int32_t *samples, std::size_t frames);

    [[nodiscard]] std::int64_t framesRead() const { return m_framesRead; }
    /// The widths of the samples of the files up to now.
    [[nodiscard]] int leastBits() const { return m_leastBits; }
    [[nodiscard]] int mostBits() const { return m_mostBits; }
    /// From 0 to 1.
    [[nodiscard]] double progress() const;

    /// "the source", "the output".
    [[nodiscard]] static QString nameOf(Side side);

private:
    void open();
    void checkLength() const;
    [[noreturn]] void fail(const QString &what, const QString &reason) const;

    QStringList m_paths;
    Side m_side;
    std::vector<std::int64_t> m_sizes; ///< bytes
    std::int64_t m_allBytes = 0;
    std::int64_t m_bytesDone = 0; ///< of the files before the current one
    std::unique_ptr<SampleStream> m_stream;
    qsizetype m_index = 0;
    SampleFormat m_format;
    int m_leastBits = 0;
    int m_mostBits = 0;
    std::int64_t m_framesRead = 0;
    std::int64_t m_framesOfFile = 0;
};

} // namespace nurv
