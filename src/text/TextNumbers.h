// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

#include <cstdint>

namespace nurv {

// Numbers and ends of texts that programs and people wrote. Nothing here depends
// on the locale, and every function may be called from any thread.

/// The integer at the start of `text`: leading blanks and line ends are skipped,
/// then an optional sign, then digits as far as they go. No digits give 0; a
/// number out of range gives the nearest value in range.
[[nodiscard]] int leadingInteger(QStringView text);

/// `leadingInteger` in 64 bits.
[[nodiscard]] std::int64_t leadingInteger64(QStringView text);

/// The decimal at the start of `text`, by the rules of `leadingInteger`, with the
/// point as the separator; an exponent is not read.
[[nodiscard]] double leadingNumber(QStringView text);

/// `text` less the backspace characters (U+0008) at both ends.
[[nodiscard]] QString trimBackspaces(QStringView text);

/// `text` less the white space and line ends at both ends.
[[nodiscard]] QString trimWhitespaceAndNewlines(QStringView text);

/// `number` with six decimals and a point, as "%f" writes it in the C locale.
[[nodiscard]] QString sixDecimals(double number);

} // namespace nurv
