// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

namespace nurv {

/// Whether the output is known not to hold the whole sound of its source: it is empty, no
/// sound file although its source is one, shorter than its source, or a FLAC file that its
/// encoder did not come to seal. Reads a few headers. False when in doubt.
[[nodiscard]] bool isKnownToBeIncomplete(const QByteArray &output, const QByteArray &source);

} // namespace nurv
