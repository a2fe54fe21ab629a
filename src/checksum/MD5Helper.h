// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

namespace nurv {

/// The MD5 digest (RFC 1321) of whole files.
class MD5Helper {
public:
    /// The digest of the file's bytes, 32 lower-case hexadecimal digits. A file that
    /// cannot be opened is read as empty; the log says so. Throws NurvFailure when
    /// the machine refuses MD5. Any thread; blocks for the reading of the file.
    /// `isStopped` is asked before every block of 1 MiB; once it says yes the text
    /// is empty.
    [[nodiscard]] static QString getMD5FromFile(const QString &path, const std::function<bool()> &isStopped = {});
};

} // namespace nurv
