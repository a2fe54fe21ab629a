// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

#include <sys/stat.h>

namespace nurv::test {

/// What this process asks of the file system while it lives: which files are flushed, written, cut, closed and named,
/// and in which order. Some of it can be made to fail, as on a disk that breaks. One at a time; any thread may call.
/// For test programs that link nurv_system_calls, whose functions stand before those of the system.
///
///     fsync PATH    fdatasync PATH    write PATH    pwrite PATH    ftruncate PATH    posix_fallocate PATH
///     fchown PATH    flock PATH    close PATH    rename FROM TO    link FROM TO    unlink PATH
///
/// Paths are absolute. A file without a name is that of its folder with "/?" behind it.
class SystemCallRecorder {
public:
    SystemCallRecorder();
    ~SystemCallRecorder();
    SystemCallRecorder(const SystemCallRecorder &) = delete;
    SystemCallRecorder &operator=(const SystemCallRecorder &) = delete;

    /// The calls so far, those that failed included.
    [[nodiscard]] QStringList calls() const;
    /// Where the first call stands that begins so; -1 when there is none.
    [[nodiscard]] qsizetype indexOf(const QString &start) const;

    /// From now on calls that begin so fail with that error, for ever or so many times. A file is closed all the same.
    void fail(const QString &start, int error, int times = -1);
    /// From now on lstat tells something else of what has that path or lies below it.
    void lie(const QString &path, std::function<void(struct stat &facts)> change);
    /// From now on no rename knows a flag, as on some file systems.
    void forgetRenameFlags();
    /// Once, right before the first call that begins so.
    void before(const QString &start, std::function<void()> work);
};

} // namespace nurv::test
