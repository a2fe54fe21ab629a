// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "programs/ExternalProgram.h"

#include <QString>

#include <vector>

namespace nurv {

/// Whether a bundled program was built with this version of the application.
[[nodiscard]] bool isPartOfThisBuild(const ExternalProgram &program);

/// What became of a search for a program.
struct ProgramStatus {
    enum class State { Found, NotFound, NotExecutable };

    State state = State::NotFound;
    QString path;    ///< where it is, or would be
    QString version; ///< such as "1.4.2"; empty when it does not tell
};

/// Every external program, in the order in which reports list them.
[[nodiscard]] const std::vector<ExternalProgram> &externalPrograms();

/// The entry of a name; null when there is none.
[[nodiscard]] const ExternalProgram *findExternalProgram(const QString &name);

/// Looks the program up in the resource folder and asks it for its version.
/// Blocks while it runs; meant for worker threads and the command line.
[[nodiscard]] ProgramStatus checkProgram(const ExternalProgram &program);
/// The same for a program that lies elsewhere.
[[nodiscard]] ProgramStatus checkProgram(const ExternalProgram &program, const QString &path);

/// The text for a program that could not be started: its name, the folder looked
/// in, `reason`, and what provides it. `launchPath` is the path that was tried.
[[nodiscard]] QString missingProgramText(const QString &launchPath, const QString &reason);

/// Throws NurvFailure with that text when the bundled or installed program of that name cannot be run: for jobs that start it
/// for every file, of which none would be served.
void requireProgram(const QString &name);

/// The line for a program that died by a signal while it worked on `title`.
[[nodiscard]] QString killedProgramText(const QString &name, int signal, const QString &title);

} // namespace nurv
