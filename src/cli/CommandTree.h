// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Command.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

namespace nurv {

/// The commands of a program, by one word or by two: "encode", "checksum verify". All of a group begin with the same word,
/// which is no command itself.
class CommandTree {
public:
    /// The commands must outlive the tree.
    explicit CommandTree(std::vector<const Command *> commands) : m_commands(std::move(commands)) {}

    [[nodiscard]] const std::vector<const Command *> &commands() const { return m_commands; }
    /// The commands of a group in their order; empty when the word is none.
    [[nodiscard]] std::vector<const Command *> group(const QString &word) const;
    /// The command that the words begin with, which are then taken off; null when there is none.
    [[nodiscard]] const Command *take(QList<QByteArray> &words) const;
    /// The first words of all commands, each once, in their order.
    [[nodiscard]] QStringList firstWords() const;

private:
    std::vector<const Command *> m_commands;
};

/// The second word of a command of two; empty for one of one word.
[[nodiscard]] QString secondWord(const CommandSpec &command);

} // namespace nurv
