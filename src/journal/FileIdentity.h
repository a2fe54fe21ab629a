// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <cstdint>
#include <optional>

#include <sys/stat.h>

namespace nurv {

/// What tells a file from any other one, and from what it was before it changed.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t modifiedNs = 0; ///< since 1970

    /// Devices get other numbers with every start of the system: then they do not count.
    [[nodiscard]] bool isSameAs(const FileIdentity &other, bool sameBoot) const;

    [[nodiscard]] QByteArray toText() const;
    [[nodiscard]] static std::optional<FileIdentity> fromText(const QByteArray &text);
    [[nodiscard]] static FileIdentity of(const struct stat &facts);
};

/// Nanoseconds since 1970.
[[nodiscard]] std::int64_t nanoseconds(const struct timespec &time);
/// Now, by the slower of the clocks that stamp files: some milliseconds late, never ahead of
/// a file that is changed from now on. Kernels before 6.13 know no other for files; later ones
/// also stamp exactly (Documentation/filesystems/multigrain-ts.rst).
[[nodiscard]] std::int64_t fileClockNow();
/// Now, to the nanosecond: no file that was changed before has a later time.
[[nodiscard]] std::int64_t exactClockNow();
/// Waits until files that are changed from now on have this time or a later one: one tick of
/// the kernel for an exact time that was taken just now, and never longer than a few.
void waitForFileClock(std::int64_t timeNs);

/// The whole decimal number; nothing for anything else, and out of range.
[[nodiscard]] std::optional<std::int64_t> wholeNumber(const QByteArray &text);

} // namespace nurv
