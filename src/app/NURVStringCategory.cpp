// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/NURVStringCategory.h"

namespace nurv {

bool nurvStartsWith(QStringView text, QStringView prefix)
{
    return !prefix.isEmpty() && text.startsWith(prefix);
}

bool nurvEndsWith(QStringView text, QStringView suffix)
{
    return text.endsWith(suffix);
}

} // namespace nurv
