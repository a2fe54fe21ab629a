// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace nurv {

/// The text of `bytes`, which came from a file in an unknown encoding: by its
/// byte-order mark, else as UTF-8 when every byte fits, else in the encoding that
/// the detector is sure of, else as Windows-1252. The mark itself is dropped.
[[nodiscard]] QString decodeText(const QByteArray &bytes);

} // namespace nurv
