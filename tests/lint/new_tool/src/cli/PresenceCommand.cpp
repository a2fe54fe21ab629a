// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/PresenceCommand.h"

#include "checksum/PresenceTab.h"
#include "cli/BatchOptions.h"

using namespace Qt::StringLiterals;

namespace nurv {

const CommandSpec &PresenceCommand::spec() const
{
    static const CommandSpec spec{.name = u"checksum presence"_s,
                                  .summary = u"tell which files are not there"_s,
                                  .synopsis = u"[OPTION]... PATH..."_s,
                                  .details = u"Looks whether the files are there."_s,
                                  .options = joined({{.name = u"strict"_s,
                                                      .summary = u"links do not count"_s,
                                                      .manual = u"Links do not count."_s,
                                                      .set = setsCheck(&PresenceTab::strictButton)}},
                                                    batchOptions())};
    return spec;
}

std::unique_ptr<BaseTab> PresenceCommand::makeTab(NURVController &controller) const
{
    return std::make_unique<PresenceTab>(controller);
}

bool PresenceCommand::takes(const QString &) const
{
    return true;
}

} // namespace nurv
