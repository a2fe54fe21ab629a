// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace nurv::test {

/// Counts how often the code of the program looks at files, from its making on; one at a time.
/// Only calls of our own libraries count, not those inside of others.
class FileLooks {
public:
    FileLooks();
    ~FileLooks();
    FileLooks(const FileLooks &) = delete;
    FileLooks &operator=(const FileLooks &) = delete;

    /// Questions about the path's type and size.
    [[nodiscard]] int stats(const QString &path) const;
    [[nodiscard]] int opens(const QString &path) const;
};

} // namespace nurv::test
