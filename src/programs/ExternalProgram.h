// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace nurv {

/// What is known of one program that the system starts, whoever starts it.
struct ExternalProgram {
    QString name;           ///< in the resource folder
    bool isBundled = false; ///< the application's own, not a package's
    QString package;        ///< of Debian; empty for a bundled program
    QString purpose;        ///< for people: "encodes and decodes FLAC"
    QStringList versionArguments = {QStringLiteral("--version")};
    /// Without it the everyday conversions do not work.
    bool isRequired = false;
    /// When it fails, a cut output stays behind.
    bool leavesHalfMadeOutput = false;
    /// It gives its output the name when that is whole: whatever has the name after a failure is somebody else's.
    bool placesWholeOutput = false;
    /// The programs that it starts when it is given these arguments; null for one that
    /// starts none. May look at the first bytes of the files that they name.
    QStringList (*startedBy)(const QStringList &arguments) = nullptr;
};

} // namespace nurv
