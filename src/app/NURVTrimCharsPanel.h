// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Control.h"
#include "app/TrimCharsObject.h"

#include <optional>

namespace nurv {

class UserPrompts;

/// The modal panel that asks how many characters to remove, and at which end. It shows again what
/// was in it last. GUI thread.
class NURVTrimCharsPanel {
public:
    explicit NURVTrimCharsPanel(UserPrompts &prompts);

    /// What the user has confirmed; nothing when the panel was cancelled.
    [[nodiscard]] std::optional<TrimCharsObject> runPanel();

private:
    UserPrompts &m_prompts;
    StepperControl m_numberField;
    ChoiceControl m_positionMatrix;
};

} // namespace nurv
