// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Panel.h"
#include "app/UserPrompts.h"

namespace nurv::test {

// Panels of the kinds that tools have, each with its controls.

/// One line of text, which may not be empty and may not name a folder.
struct PrefixPanel {
    TextControl prefix;

    [[nodiscard]] Panel panel();
};

/// How many characters, and at which end.
struct TrimPanel {
    StepperControl number{0, 99, 0};
    ChoiceControl position{{QStringLiteral("start"), QStringLiteral("end")}, 2};

    [[nodiscard]] Panel panel();
};

/// Eight rows of a name and a value, and one button. A value without a name is not accepted.
struct CustomTagsPanel {
    PairsControl tags{8};

    [[nodiscard]] Panel panel();
};

/// A track name in each line. One of its buttons loads names, another one runs the panel that
/// trims what is selected.
struct NamesPanel {
    explicit NamesPanel(UserPrompts &prompts) : m_prompts(prompts) {}

    LinesControl names;

    [[nodiscard]] Panel panel();

private:
    void load();
    void trimSelectedLines();

    UserPrompts &m_prompts;
};

/// The controls that the others lack.
struct OptionsPanel {
    LabelControl advice{QStringLiteral("Only what is switched on counts.")};
    CheckControl isOn;
    SliderControl level{0, 8, 1, 5};

    [[nodiscard]] Panel panel();
};

} // namespace nurv::test
