// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CommandTree.h"

#include <algorithm>
#include <iterator>

namespace nurv {

namespace {

QString firstWord(const CommandSpec &command)
{
    return command.name.section(u' ', 0, 0);
}

} // namespace

QString secondWord(const CommandSpec &command)
{
    return command.name.section(u' ', 1);
}

std::vector<const Command *> CommandTree::group(const QString &word) const
{
    std::vector<const Command *> members;
    std::copy_if(m_commands.begin(), m_commands.end(), std::back_inserter(members), [&word](const Command *command) {
        return firstWord(command->spec()) == word && !secondWord(command->spec()).isEmpty();
    });
    return members;
}

const Command *CommandTree::take(QList<QByteArray> &words) const
{
    for (const Command *command : m_commands) {
        const QList<QByteArray> name = command->spec().name.toUtf8().split(' ');
        if (words.size() < name.size() || words.first(name.size()) != name)
            continue;
        words.remove(0, name.size());
        return command;
    }
    return nullptr;
}

QStringList CommandTree::firstWords() const
{
    QStringList words;
    for (const Command *command : m_commands) {
        if (const QString word = firstWord(command->spec()); !words.contains(word))
            words.append(word);
    }
    return words;
}

} // namespace nurv
