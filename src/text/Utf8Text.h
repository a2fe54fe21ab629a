// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace nurv {

/// `bytes` as text when every byte of them belongs to valid UTF-8, else nothing.
/// A byte-order mark is a character like any other, so that encoding the text
/// again gives the same bytes.
[[nodiscard]] std::optional<QString> fromStrictUtf8(const QByteArray &bytes);

/// The length of the UTF-8 sequence cut short at the end of `bytes`: 0 to 3.
/// A tail that no continuation can make valid does not count.
[[nodiscard]] qsizetype cutSequenceLength(const QByteArray &bytes);

/// The length of the valid UTF-8 sequence at `offset` of `bytes`; 0 when what
/// stands there is none.
[[nodiscard]] qsizetype sequenceLengthAt(const QByteArray &bytes, qsizetype offset);

} // namespace nurv
