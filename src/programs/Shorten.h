// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "programs/ExternalProgram.h"
#include "programs/ProgramStage.h"

#include <QString>
#include <QStringView>

namespace nurv::shorten {

// `shorten`, the application's own. Nothing here runs it. Paths are absolute.

[[nodiscard]] const ExternalProgram &program();

/// It writes nothing while it works.
[[nodiscard]] ProgramStage encoding(const QString &input, const QString &output);

/// All that it writes is for the report.
[[nodiscard]] ChunkReport parse(QStringView chunk);

} // namespace nurv::shorten
