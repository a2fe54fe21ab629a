// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/ScriptedPrompts.h"
#include "app/TrimCharsObject.h"

namespace nurv::test {

inline const PanelQuestion kTrimQuestion{
    .title = QStringLiteral("Remove Characters"),
    .message =
        QStringLiteral("Remove characters from each selected line. Lines that are shorter are removed as a whole."),
    .fields = {QStringLiteral("number"), QStringLiteral("position")}};

inline const FileChooser kNamesFileQuestion{.title = QStringLiteral("Choose file with track names")};

/// The user fills in the trim panel and presses the button.
inline void expectTrim(ScriptedPrompts &prompts, const TrimCharsObject &trim,
                       const QString &button = QStringLiteral("OK"))
{
    prompts.expectPanel(
        kTrimQuestion,
        [trim](const Panel &panel) {
            fieldOf<StepperControl>(panel, QStringLiteral("number")).setIntegerValue(trim.number);
            fieldOf<ChoiceControl>(panel, QStringLiteral("position")).setSelectedIndex(trim.position);
        },
        button);
}

} // namespace nurv::test
