// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

/// How many characters to remove from each line, and at which end: what the trim panel returns.
struct TrimCharsObject {
    int number = 0;
    int position = 0; ///< 0: at the start of the line; else at its end

    bool operator==(const TrimCharsObject &) const = default;
};

} // namespace nurv
