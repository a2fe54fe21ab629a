// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "programs/ExternalProgram.h"

#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace nurv::mkisofs {

// `mkisofs`, the application's own. Nothing here runs it. Paths are absolute; each word is one argument.

[[nodiscard]] const ExternalProgram &program();

/// The image of a DVD-Audio disc of a folder as `dvda` makes it.
[[nodiscard]] QStringList imageArguments(const QString &image, const QString &folder);

/// The figure of a chunk with "  0.79% done, estimate finish ...", in percent. It is taken to open the chunk.
[[nodiscard]] std::optional<double> parseProgress(QStringView chunk);

/// Why it failed, in its own words. Empty: none.
[[nodiscard]] QString reasonOfFailure(QStringView text);

} // namespace nurv::mkisofs
