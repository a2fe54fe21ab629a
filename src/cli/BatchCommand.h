// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ArgumentParser.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace nurv {

class BaseTab;
class NURVController;
struct OriginalsControls;

/// A command that fills the list of a tab, sets its controls and presses its
/// execute button.
class BatchCommand {
public:
    virtual ~BatchCommand() = default;

    [[nodiscard]] virtual const CommandSpec &spec() const = 0;
    /// Whether the tab makes a job for a file that its page accepts.
    [[nodiscard]] virtual bool takes(const QString &path) const = 0;
    /// Throws UsageError for values out of range and options that do not go together.
    virtual void check(const ParsedArguments &arguments) const = 0;
    /// The tab with every control set: to what the options say, else to its fixed
    /// default, never to what a window has stored.
    [[nodiscard]] virtual std::unique_ptr<BaseTab> makeTab(NURVController &controller,
                                                           const ParsedArguments &arguments) const = 0;
    /// A line for each option that was given and has no effect on some of the files.
    [[nodiscard]] virtual QStringList optionsWithoutEffect(const ParsedArguments &, const QStringList &) const
    {
        return {};
    }
};

/// The options that all batch commands know.
[[nodiscard]] std::vector<OptionSpec> commonBatchOptions();

/// Throws UsageError for options that exclude each other and for those that lack the one
/// they go with.
void checkOptionPairs(const ParsedArguments &arguments);

/// Sets what becomes of originals and of outputs that exist: to what the options say,
/// never to what a window has stored.
void setOriginals(OriginalsControls &originals, const ParsedArguments &arguments);

/// Throws UsageError when an option that goes with one format only is given with
/// another: "--md5 goes with --format shn only".
void requireFormat(const ParsedArguments &arguments, const QString &option, const QStringList &formats,
                   const QString &format);

/// The value of --format, in lower case. Throws UsageError when it is none of `formats`.
[[nodiscard]] QString chosenFormat(const ParsedArguments &arguments, const QStringList &formats,
                                   const QString &standard);

} // namespace nurv
