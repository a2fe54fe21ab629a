// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace nurv {

/// The known word that may have been meant: it begins with what was written, or a slip or two lie between them, whatever the
/// case of their letters.
[[nodiscard]] std::optional<QString> similarWord(const QString &written, const QStringList &known);

} // namespace nurv
