// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

class QMimeData;

namespace nurv {

/// Whether the dragged data names local files.
[[nodiscard]] bool hasLocalFiles(const QMimeData *data);

/// The absolute paths of the local files in the dragged data, in its order.
[[nodiscard]] QStringList localFiles(const QMimeData *data);

} // namespace nurv
