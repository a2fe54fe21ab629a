// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConversionPrompts.h"

#include "app/PathNames.h"
#include "app/UserPrompts.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qsizetype kNamesShown = 10;

} // namespace

QStringList sourcesOfFormats(const QStringList &sources, const QStringList &formats)
{
    QStringList found;
    std::copy_if(sources.begin(), sources.end(), std::back_inserter(found),
                 [&](const QString &source) { return formats.contains(formatWord(source)); });
    return found;
}

void tellFormatIsNotAvailable(UserPrompts &prompts, const QStringList &what)
{
    QString names = what.first(std::min(what.size(), kNamesShown)).join(u'\n');
    if (what.size() > kNamesShown)
        names += u"\nand %1 more"_s.arg(what.size() - kNamesShown);
    // There is one button only, so the answer says nothing.
    static_cast<void>(
        prompts.ask({.title = u"This format is not available yet"_s, .message = names, .buttons = {u"OK"_s}}));
}

} // namespace nurv
