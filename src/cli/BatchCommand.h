// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Command.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace nurv {

class BaseTab;
class NURVController;

/// A command that fills the list of a tab, sets its controls and presses its
/// execute button.
class BatchCommand : public Command {
public:
    [[nodiscard]] ExitStatus run(const ParsedArguments &arguments, Console &console) const final;

    /// The tab with every control set: to what the options say, else to its fixed default, never to what a window has
    /// stored.
    [[nodiscard]] std::unique_ptr<BaseTab> tabFor(NURVController &controller, const ParsedArguments &arguments) const;

protected:
    /// The tab as it is made for a window.
    [[nodiscard]] virtual std::unique_ptr<BaseTab> makeTab(NURVController &controller) const = 0;
    /// Whether the tab makes a job for a file of that name that its page accepts. Any thread.
    [[nodiscard]] virtual bool takes(const QString &path) const = 0;
    /// Throws UsageError when the command can make nothing of that many files.
    virtual void checkFiles(const QStringList &) const {}
    /// Whether what is made of all files would be another thing without one of them.
    [[nodiscard]] virtual bool needsAllFiles(const ParsedArguments &) const { return false; }
    /// A line for each option that was given and has no effect on some of the files.
    [[nodiscard]] virtual QStringList optionsWithoutEffect(const ParsedArguments &, const QStringList &) const
    {
        return {};
    }
};

} // namespace nurv
