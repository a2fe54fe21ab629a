// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/BaseTab.h"
#include "app/Control.h"
#include "cli/CommandSpec.h"

#include <optional>
#include <vector>

namespace nurv {

// Setters for the controls of a tab, by the member that they are.

/// On when the option is given.
template<typename Tab>
[[nodiscard]] ControlSetter setsCheck(CheckControl Tab::*control)
{
    return [control](BaseTab &tab, const std::optional<QString> &value) {
        (static_cast<Tab &>(tab).*control).setOn(value.has_value());
    };
}

/// The cell whose title the value is.
template<typename Tab>
[[nodiscard]] ControlSetter setsChoice(ChoiceControl Tab::*control)
{
    return [control](BaseTab &tab, const std::optional<QString> &value) {
        (static_cast<Tab &>(tab).*control).selectTitle(value.value_or(QString()));
    };
}

/// The controls behind `outputOptions`.
struct OutputSetters {
    ControlSetter besideSource;
    ControlSetter keepFolders;
    ControlSetter overwrite;
    ControlSetter skipExisting;
    ControlSetter deleteOriginals;
    ControlSetter noProof;
    ControlSetter dropMetadata;
};

/// The options of a ConversionTab.
[[nodiscard]] OutputSetters conversionSetters();

/// Where outputs go, and what becomes of originals and of outputs that exist.
[[nodiscard]] std::vector<OptionSpec> outputOptions(const OutputSetters &setters);
/// Those of the options that have one of the names; they exclude none of the others.
[[nodiscard]] std::vector<OptionSpec> optionsNamed(std::vector<OptionSpec> options, const QStringList &names);

/// Of every batch: jobs, answers, what is printed.
[[nodiscard]] std::vector<OptionSpec> batchOptions();

/// "--version" and "--help", which every command has.
[[nodiscard]] std::vector<OptionSpec> standingOptions();

/// "--verbose" and "--jobs" of a command that has no use for them.
[[nodiscard]] std::vector<OptionSpec> unusedOptions();

/// Of a command that works on files itself: what is printed, and the answers and jobs that it has no use for. `json`: what
/// that prints.
[[nodiscard]] std::vector<OptionSpec> reportOptionsWithoutJobs(const QString &json);

/// The lists behind each other.
[[nodiscard]] std::vector<OptionSpec> joined(std::vector<OptionSpec> list, const std::vector<OptionSpec> &more);

} // namespace nurv
