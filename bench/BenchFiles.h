// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace nurv::test {
class TestFolder;
}

namespace nurv::bench {

/// Gives the file "0000.wav", or of another extension, `count` names in all: "0001.wav" and so on. Programs do the same work
/// for each, and the disk holds it once. Ends the benchmark when it fails.
void addNames(const QString &first, int count);

/// The folder of that name without what an earlier round left in it.
[[nodiscard]] QString emptyFolder(const test::TestFolder &folder, const QString &name);

} // namespace nurv::bench
