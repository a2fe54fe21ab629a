// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringView>

#include <cstdint>

#include <unicode/unistr.h>

namespace nurv {

/// The text for ICU to read: nothing is copied, and `text` must outlive it.
[[nodiscard]] inline icu::UnicodeString icuAliasOf(QStringView text)
{
    return icu::UnicodeString(false, text.utf16(), static_cast<std::int32_t>(text.size()));
}

} // namespace nurv
