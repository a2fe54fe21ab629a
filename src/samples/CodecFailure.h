// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/ToolError.h"

#include <QString>

#include <string>

namespace nurv {

/// What a codec of the bundled programs complains of, in a line without the file's name,
/// which is `name` there.
[[nodiscard]] inline QString codecFailureReason(const std::runtime_error &error, const std::string &name)
{
    QString text = QString::fromUtf8(error.what());
    const QString file = QString::fromStdString(name);
    if (text.startsWith(file + QStringLiteral(": ")))
        text.remove(0, file.size() + 2);
    return text.replace(file, QStringLiteral("it"));
}

} // namespace nurv
