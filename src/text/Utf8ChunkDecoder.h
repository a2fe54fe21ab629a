// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace nurv {

/// Turns the chunks of one child's output into text. One decoder belongs to one
/// stream and is used from one thread.
///
///     "… na\xC3" | "\xAFve …"  ->  "… na" | "ïve …"
class Utf8ChunkDecoder {
public:
    /// The text of `chunk`, with what an earlier chunk left unfinished in front
    /// and what this one leaves unfinished held back. A chunk with bytes that are
    /// no UTF-8 gives no text at all; so do held bytes that it does not continue.
    [[nodiscard]] QString decode(const QByteArray &chunk);

private:
    QByteArray m_held;
};

} // namespace nurv
