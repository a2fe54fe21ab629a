// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/NurvFailure.h"
#include "cli/CommandSpec.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <optional>

namespace nurv {

/// Wrong usage; the reason is one sentence for the user.
class UsageError : public NurvFailure {
public:
    using NurvFailure::NurvFailure;
};

/// The words after a command, taken apart.
struct ParsedArguments {
    /// Values by name, one for each time that it was given; an empty one for options without, words of a choice in lower
    /// case.
    QHash<QString, QStringList> options;
    QHash<QString, QString> standards; ///< of the options that have one
    QList<QByteArray> operands;        ///< everything else, as bytes: they name files

    [[nodiscard]] bool has(const QString &name) const { return options.contains(name); }
    /// The value that counts: the last one given, else the option's standard, else empty.
    [[nodiscard]] QString value(const QString &name) const
    {
        return has(name) ? options.value(name).last() : standards.value(name);
    }
    /// Every value given, else the option's standard, else none.
    [[nodiscard]] QStringList values(const QString &name) const;
    /// The same as a number; nothing without one. The option is one of numbers.
    [[nodiscard]] std::optional<int> number(const QString &name) const;
};

/// Takes the words apart: `--name`, `--name value`, `--name=value`, in any order
/// with operands; `--` ends the options; options may be repeated.
/// Throws UsageError.
[[nodiscard]] ParsedArguments parseArguments(const CommandSpec &command, const QList<QByteArray> &words);

/// Whether all of it goes together: values, formats, operands, options that exclude each other
/// and those that lack their partner. Throws UsageError.
void checkArguments(const CommandSpec &command, const ParsedArguments &arguments);

} // namespace nurv
