// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/NurvFailure.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <vector>

namespace nurv {

/// An option of a command, as its help shows it.
struct OptionSpec {
    QString name;      ///< without the leading dashes
    QString valueName; ///< empty: the option takes no value
    QString summary;
};

/// A command: its name and what may follow it.
struct CommandSpec {
    QString name;
    QString summary;  ///< one line, for the list of commands
    QString synopsis; ///< what follows "nurv <name>"
    QString details;  ///< paragraphs for the command's own help
    std::vector<OptionSpec> options;

    [[nodiscard]] const OptionSpec *option(const QString &optionName) const;
};

/// Wrong usage; the reason is one sentence for the user.
class UsageError : public NurvFailure {
public:
    using NurvFailure::NurvFailure;
};

/// The words after a command, taken apart.
struct ParsedArguments {
    QHash<QString, QString> options; ///< value by name; empty for options without one
    QList<QByteArray> operands;      ///< everything else, as bytes: they name files

    [[nodiscard]] bool has(const QString &name) const { return options.contains(name); }
    [[nodiscard]] QString value(const QString &name) const { return options.value(name); }
    /// The value as a whole number of that range. Throws UsageError.
    [[nodiscard]] int number(const QString &name, int minimum, int maximum) const;
};

/// Takes the words apart: `--name`, `--name value`, `--name=value`, in any order
/// with operands; `--` ends the options; the last of repeated options counts.
/// Throws UsageError.
[[nodiscard]] ParsedArguments parseArguments(const CommandSpec &command, const QList<QByteArray> &words);

} // namespace nurv
