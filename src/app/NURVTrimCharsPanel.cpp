// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/NURVTrimCharsPanel.h"

#include "app/Panel.h"
#include "app/UserPrompts.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// As many as the longest track name that is read from a file has.
constexpr int kMostCharacters = 10'000;

} // namespace

NURVTrimCharsPanel::NURVTrimCharsPanel(UserPrompts &prompts)
    : m_prompts(prompts), m_numberField(0, kMostCharacters, 0), m_positionMatrix({u"Start"_s, u"End"_s}, 2)
{
}

std::optional<TrimCharsObject> NURVTrimCharsPanel::runPanel()
{
    const bool isConfirmed = m_prompts.runPanel(
        {.title = u"Remove Characters"_s,
         .message = u"Remove characters from each selected line. Lines that are shorter are removed as a whole."_s,
         .fields = {{.name = u"number"_s,
                     .caption = u"&Number of characters:"_s,
                     .control = &m_numberField,
                     .hint = u"How many characters each line loses."_s},
                    {.name = u"position"_s,
                     .caption = u"&From the:"_s,
                     .control = &m_positionMatrix,
                     .hint = u"The end of the line at which they are."_s}},
         .buttons = okAndCancel()});
    if (!isConfirmed)
        return std::nullopt;
    return TrimCharsObject{.number = m_numberField.integerValue(), .position = m_positionMatrix.selectedColumn()};
}

} // namespace nurv
