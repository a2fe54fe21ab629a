// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/OutputSet.h"

#include "shntool/RunMessages.h"
#include "shntool/WaveOutput.h"

#include <algorithm>

namespace nurv {

OutputSet::OutputSet() = default;

OutputSet::~OutputSet() = default;

WaveOutput &OutputSet::add(const std::string &name, std::unique_ptr<WaveOutput> output)
{
    m_members.push_back({.name = name, .output = std::move(output)});
    return *m_members.back().output;
}

void OutputSet::clear()
{
    m_members.clear();
}

bool OutputSet::commit(const RunMessages &messages)
{
    const auto failed =
        std::ranges::find_if_not(m_members, [](const Member &member) { return member.output->commit(); });
    if (failed == m_members.end())
        return true;
    messages.warn(
        "could not complete output file: [" + failed->name + "]"
        + (failed == m_members.begin() ? "" : " -- those before it are complete, those behind it are not made"));
    clear();
    return false;
}

} // namespace nurv
