// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

class UserPrompts;

/// Says that the chosen conversion cannot be made.
void tellFormatIsNotAvailable(UserPrompts &prompts);

} // namespace nurv
