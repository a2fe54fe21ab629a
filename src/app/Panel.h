// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Control.h"
#include "app/LinesControl.h"
#include "app/PairsControl.h"
#include "app/TextControl.h"

#include <QString>

#include <functional>
#include <variant>
#include <vector>

namespace nurv {

/// The kinds of controls that a panel shows. Window, command line and tests know them all, so
/// a new panel needs no code of theirs.
using PanelControl = std::variant<CheckControl *, ChoiceControl *, SliderControl *, StepperControl *, LabelControl *,
                                  TextControl *, LinesControl *, PairsControl *>;

/// A control of a panel and its caption. The control belongs to whoever runs the panel.
struct PanelField {
    /// Of the option that answers it on the command line, and of its widget.
    QString name;
    /// With a mnemonic: "&Prefix:"; empty for a control that needs none.
    QString caption = {};
    PanelControl control;
    /// What it is for, in a sentence: a tool tip.
    QString hint = {};
    /// Why the panel cannot be accepted with this value, in plain words; an empty text when it can.
    std::function<QString()> objection = {};

    [[nodiscard]] Control &base() const;
    /// The caption as a word in a sentence, the name without one.
    [[nodiscard]] QString title() const;
};

struct PanelButton {
    enum class Role {
        Accept,  ///< ends the panel; disabled while a field objects
        Dismiss, ///< ends the panel
        Stay,    ///< does its action, and the panel stays
    };

    QString title; ///< may have a mnemonic
    Role role = Role::Accept;
    std::function<void()> action = {}; ///< of a button that stays
};

/// A modal panel as data: `UserPrompts::runPanel`.
///
///     title
///     +--------------------------+
///     | message                  |
///     | Prefix: [..............] |   a field for each control
///     | why it is not accepted   |
///     | Load...      Cancel   OK |
///     +--------------------------+
struct Panel {
    QString title;
    QString message = {};
    std::vector<PanelField> fields = {};
    /// At least one accepts. Escape presses the one that dismisses; where there is none, it
    /// accepts unless a field objects.
    std::vector<PanelButton> buttons = {};

    /// What the first of its fields objects to; empty when the panel can be accepted. Hidden
    /// and disabled fields object to nothing.
    [[nodiscard]] QString objection() const;
    [[nodiscard]] bool canBeDismissed() const;
};

/// "Cancel" and "OK".
[[nodiscard]] std::vector<PanelButton> okAndCancel();

} // namespace nurv
