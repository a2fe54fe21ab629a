// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConversionPrompts.h"

#include "app/UserPrompts.h"

using namespace Qt::StringLiterals;

namespace nurv {

void tellFormatIsNotAvailable(UserPrompts &prompts)
{
    // There is one button only, so the answer says nothing.
    static_cast<void>(
        prompts.ask({.title = u"This format is not available yet"_s, .message = {}, .buttons = {u"OK"_s}}));
}

} // namespace nurv
