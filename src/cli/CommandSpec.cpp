// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CommandSpec.h"

#include <algorithm>

namespace nurv {

const OptionSpec::Numbers *OptionSpec::numbersFor(const QString &format) const
{
    const auto found = std::find_if(numbers.begin(), numbers.end(), [&format](const Numbers &range) {
        return range.formats.isEmpty() || range.formats.contains(format);
    });
    return found == numbers.end() ? nullptr : &*found;
}

const OptionSpec *CommandSpec::option(const QString &optionName) const
{
    const auto found =
        std::find_if(options.begin(), options.end(), [&](const OptionSpec &spec) { return spec.name == optionName; });
    return found == options.end() ? nullptr : &*found;
}

} // namespace nurv
