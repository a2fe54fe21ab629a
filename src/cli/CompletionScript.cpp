// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CompletionScript.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr QLatin1StringView kNotice(
    "# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers\n"
    "# SPDX-License-Identifier: GPL-3.0-or-later\n");

/// The words that an option takes, as far as they can be counted off.
QStringList valuesOf(const OptionSpec &option)
{
    constexpr int kMostNumbers = 20;
    QStringList values = option.choices;
    for (const OptionSpec::Numbers &range : option.numbers) {
        if ((range.most - range.least) / range.step >= kMostNumbers)
            continue;
        for (int number = range.least; number <= range.most; number += range.step)
            values.append(QString::number(number));
    }
    return values;
}

/// For all three shells: within single quotes.
QString quoted(QString text)
{
    return u'\'' + text.replace(u"'"_s, u"'\\''"_s) + u'\'';
}

QStringList wordsOf(const CommandSpec &command)
{
    QStringList words;
    for (const CommandSpec::Word &word : command.words)
        words.append(word.word);
    return words;
}

QStringList namesOf(const CommandSpec &command)
{
    QStringList names;
    for (const OptionSpec &option : command.options)
        names.append(u"--"_s + option.name);
    return names;
}

// bash

constexpr QLatin1StringView kBashStart(R"(
# bash completion for nurv

# Completes file names, also those with blanks.
_nurv_paths() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen "$1" -- "$2")
}

_nurv_words() {
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
}

_nurv() {
    local word=${COMP_WORDS[COMP_CWORD]}
    local previous=${COMP_WORDS[COMP_CWORD - 1]}
    # "=" is a word of its own: --format=fl comes as "--format", "=" and "fl".
    if [[ $word == = ]]; then
        word=''
    elif [[ $previous == = ]] && ((COMP_CWORD > 1)); then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    COMPREPLY=()
    local command=${COMP_WORDS[1]:-}
    if ((COMP_CWORD < 2)); then
        _nurv_words )");

QString bashValues(const CommandSpec &command)
{
    QString text;
    for (const OptionSpec &option : command.options) {
        if (!option.takesValue())
            continue;
        text += u"    "_s + quoted(command.name + u" --"_s + option.name) + u")\n"_s;
        if (option.isFolder)
            text += u"        _nurv_paths -d \"$word\"\n"_s;
        else if (const QStringList values = valuesOf(option); !values.isEmpty())
            text += u"        _nurv_words "_s + quoted(values.join(u' ')) + u" \"$word\"\n"_s;
        text += u"        return\n        ;;\n"_s;
    }
    for (const CommandSpec::Word &word : command.words)
        text += u"    "_s + quoted(command.name + u' ' + word.word) + u")\n        _nurv_words "_s
                + quoted(word.values.join(u' ')) + u" \"$word\"\n        return\n        ;;\n"_s;
    return text;
}

// zsh

/// A colon or bracket would end a description.
QString zshText(QString text)
{
    for (const QString &special : {u"\\"_s, u":"_s, u"["_s, u"]"_s})
        text.replace(special, u'\\' + special);
    return text;
}

QString zshArguments(const CommandSpec &command, const QString &indent)
{
    QString text;
    for (const CommandSpec::Word &word : command.words)
        text += indent + u"if [[ $words[CURRENT-1] == "_s + word.word + u" ]]; then compadd -- "_s + word.values.join(u' ')
                + u"; return; fi\n"_s;
    text += indent + u"_arguments -S :"_s;
    const auto add = [&](const QString &word) { text += u" \\\n    "_s + indent + quoted(word); };
    for (const OptionSpec &option : command.options) {
        QString word = u"--"_s + option.name + (option.takesValue() ? u"=["_s : u"["_s) + zshText(option.summary) + u']';
        if (option.isFolder)
            word += u':' + option.valueName + u":_files -/"_s;
        else if (option.takesValue())
            word += u':' + option.valueName + u":("_s + valuesOf(option).join(u' ') + u')';
        add(word);
    }
    if (command.takesPaths)
        add(u"*:PATH:_files"_s);
    if (!command.words.empty())
        add(u"1:WORD:("_s + wordsOf(command).join(u' ') + u')');
    return text + u'\n';
}

/// Offers the words, each with what it stands for.
QString zshDescribe(const QStringList &words, const QStringList &summaries, const QString &indent)
{
    QString text = indent + u"words_of_nurv=("_s;
    for (qsizetype i = 0; i < words.size(); ++i)
        text += u"\n    "_s + indent + quoted(words[i] + u':' + zshText(summaries[i]));
    return text + u'\n' + indent + u")\n"_s + indent + u"_describe command words_of_nurv\n"_s;
}

QString zshBranch(const CommandTree &commands, const QString &first)
{
    const std::vector<const Command *> group = commands.group(first);
    QString text = u"    "_s + first + u")\n"_s;
    if (group.empty()) {
        QList<QByteArray> words{first.toUtf8()};
        return text + zshArguments(commands.take(words)->spec(), u"        "_s) + u"        ;;\n"_s;
    }
    QStringList words;
    QStringList summaries;
    for (const Command *member : group) {
        words.append(secondWord(member->spec()));
        summaries.append(member->spec().summary);
    }
    text += u"        if ((CURRENT == 2)); then\n"_s + zshDescribe(words, summaries, u"            "_s)
            + u"            return\n        fi\n        shift words\n        ((CURRENT--))\n        case $words[1] in\n"_s;
    for (const Command *member : group)
        text += u"        "_s + secondWord(member->spec()) + u")\n"_s + zshArguments(member->spec(), u"            "_s)
                + u"            ;;\n"_s;
    return text + u"        esac\n        ;;\n"_s;
}

// fish

/// What the line must have for the command's own words.
QString fishCondition(const CommandSpec &command)
{
    QStringList conditions;
    for (const QString &word : command.name.split(u' '))
        conditions.append(u"__fish_seen_subcommand_from "_s + word);
    return quoted(conditions.join(u"; and "_s));
}

QString fishLines(const CommandSpec &command)
{
    const QString start = u"complete -c nurv -n "_s + fishCondition(command);
    QString text;
    if (command.takesPaths)
        text += start + u" -F\n"_s;
    for (const CommandSpec::Word &word : command.words) {
        const QString chosen = fishCondition(command).chopped(1) + u"; and "_s;
        text += u"complete -c nurv -n "_s + chosen + u"not __fish_seen_subcommand_from "_s + wordsOf(command).join(u' ')
                + u"' -a "_s + word.word + u" -d "_s + quoted(word.summary) + u'\n';
        if (!word.values.isEmpty())
            text += u"complete -c nurv -n "_s + chosen + u"__fish_seen_subcommand_from "_s + word.word + u"' -a "_s
                    + quoted(word.values.join(u' ')) + u'\n';
    }
    for (const OptionSpec &option : command.options) {
        text += start + u" -l "_s + option.name;
        if (option.isFolder)
            text += u" -x -a "_s + quoted(u"(__fish_complete_directories)"_s);
        else if (option.takesValue())
            text += u" -x -a "_s + quoted(valuesOf(option).join(u' '));
        text += u" -d "_s + quoted(option.summary) + u'\n';
    }
    return text;
}

} // namespace

QString bashCompletion(const CommandTree &commands)
{
    QString text = u"# shellcheck shell=bash\n"_s + kNotice + kBashStart + quoted(commands.firstWords().join(u' ') + u" --version --help"_s)
                   + u" \"$word\"\n        return\n    fi\n"_s;
    QString groups;
    for (const QString &first : commands.firstWords()) {
        QStringList words;
        for (const Command *member : commands.group(first))
            words.append(secondWord(member->spec()));
        if (!words.isEmpty())
            groups += u"    "_s + first + u")\n        if ((COMP_CWORD == 2)); then\n            _nurv_words "_s
                      + quoted(words.join(u' ') + u" --help"_s)
                      + u" \"$word\"\n            return\n        fi\n        command+=\" ${COMP_WORDS[2]}\"\n        ;;\n"_s;
    }
    if (!groups.isEmpty())
        text += u"    case $command in\n"_s + groups + u"    esac\n"_s;
    QString values;
    QString takers;
    QString wordTakers;
    QString options;
    for (const Command *command : commands.commands()) {
        const CommandSpec &spec = command->spec();
        values += bashValues(spec);
        if (spec.takesPaths)
            takers += (takers.isEmpty() ? u""_s : u" | "_s) + quoted(spec.name);
        if (!spec.words.empty())
            wordTakers += u"        "_s + quoted(spec.name) + u") _nurv_words "_s + quoted(wordsOf(spec).join(u' '))
                          + u" \"$word\" ;;\n"_s;
        options += u"    "_s + quoted(spec.name) + u") _nurv_words "_s + quoted(namesOf(spec).join(u' ')) + u" \"$word\" ;;\n"_s;
    }
    text += u"    case \"$command $previous\" in\n"_s + values + u"    esac\n"_s;
    if (!takers.isEmpty())
        takers = u"        "_s + takers + u") _nurv_paths -f \"$word\" ;;\n"_s;
    if (!takers.isEmpty() || !wordTakers.isEmpty())
        text += u"    if [[ $word != -* ]]; then\n        case $command in\n"_s + takers + wordTakers
                + u"        esac\n        return\n    fi\n"_s;
    return text + u"    case $command in\n"_s + options + u"    esac\n}\n\ncomplete -F _nurv nurv\n"_s;
}

QString zshCompletion(const CommandTree &commands)
{
    QStringList summaries;
    QString branches;
    for (const QString &first : commands.firstWords()) {
        const std::vector<const Command *> group = commands.group(first);
        QList<QByteArray> words{first.toUtf8()};
        QStringList members;
        for (const Command *member : group)
            members.append(secondWord(member->spec()));
        summaries.append(group.empty() ? commands.take(words)->spec().summary : members.join(u", "_s));
        branches += zshBranch(commands, first);
    }
    return u"#compdef nurv\n"_s + kNotice + u"\n_nurv() {\n    local -a words_of_nurv\n    if ((CURRENT == 2)); then\n"_s
           + zshDescribe(commands.firstWords(), summaries, u"        "_s)
           + u"        return\n    fi\n    shift words\n    ((CURRENT--))\n    case $words[1] in\n"_s + branches
           + u"    esac\n}\n\n_nurv \"$@\"\n"_s;
}

QString fishCompletion(const CommandTree &commands)
{
    QString text = kNotice + u"\ncomplete -c nurv -f\n"_s;
    for (const QString &first : commands.firstWords()) {
        QList<QByteArray> words{first.toUtf8()};
        const Command *const command = commands.take(words);
        text += u"complete -c nurv -n __fish_use_subcommand -a "_s + first
                + (command ? u" -d "_s + quoted(command->spec().summary) : QString()) + u'\n';
        QStringList members;
        for (const Command *member : commands.group(first))
            members.append(secondWord(member->spec()));
        for (const Command *member : commands.group(first))
            text += u"complete -c nurv -n "_s
                    + quoted(u"__fish_seen_subcommand_from "_s + first + u"; and not __fish_seen_subcommand_from "_s
                             + members.join(u' '))
                    + u" -a "_s + secondWord(member->spec()) + u" -d "_s + quoted(member->spec().summary) + u'\n';
    }
    for (const QString &option : {u"version"_s, u"help"_s})
        text += u"complete -c nurv -n __fish_use_subcommand -l "_s + option + u'\n';
    for (const Command *command : commands.commands())
        text += fishLines(command->spec());
    return text;
}

} // namespace nurv
