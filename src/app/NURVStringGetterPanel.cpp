// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/NURVStringGetterPanel.h"

#include "app/Panel.h"
#include "app/UserPrompts.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

NURVStringGetterPanel::NURVStringGetterPanel(UserPrompts &prompts, QString option)
    : m_prompts(prompts), m_option(std::move(option))
{
}

std::optional<QString> NURVStringGetterPanel::runPanel(const QString &title, const std::optional<QString> &message,
                                                       const std::optional<QString> &initialString)
{
    if (message)
        setMessage(*message);
    if (initialString)
        setEnteredText(*initialString);
    const bool isConfirmed = m_prompts.runPanel(
        {.title = m_title ? title : u"Enter Text"_s,
         .message = m_message,
         .fields = {{.name = m_option, .caption = u"&Text:"_s, .control = &m_field, .hint = m_message}},
         .buttons = okAndCancel()});
    return isConfirmed ? std::optional(enteredText()) : std::nullopt;
}

} // namespace nurv
