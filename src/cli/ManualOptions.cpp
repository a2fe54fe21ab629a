// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ManualOptions.h"

#include "base/NurvFailure.h"
#include "text/RegularExpression.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using Options = std::vector<OptionSpec>;

QString roffText(const QString &text)
{
    QString marked = QString(text).replace(u'\\', u"\\e"_s);
    const auto replaceAll = [&marked](const QString &pattern, const QString &font) {
        const RegularExpression expression(pattern);
        QString result;
        qsizetype end = 0;
        for (const RegularExpressionMatch &match : expression.findAll(marked)) {
            QString word = match.text();
            if (word.startsWith(u"--"))
                word.replace(u'-', u"\\-"_s);
            else
                word = word.sliced(1, word.size() - 2);
            result += marked.sliced(end, match.start() - end) + font + word + u"\\fR"_s;
            end = match.start() + match.text().size();
        }
        marked = result + marked.sliced(end);
    };
    replaceAll(u"--[a-z][-a-z0-9]*[a-z0-9]"_s, u"\\fB"_s);
    replaceAll(u"\\*[^*]+\\*"_s, u"\\fB"_s);
    replaceAll(u"(?<!\\w)_[^_]+_(?!\\w)"_s, u"\\fI"_s);
    return marked;
}

QString folded(const QString &text)
{
    constexpr qsizetype kWidth = 120;
    QString lines;
    QString line;
    for (const QString &word : text.split(u' ')) {
        if (!line.isEmpty() && line.size() + 1 + word.size() > kWidth) {
            lines += line + u'\n';
            line.clear();
        }
        // At the start of a line these would be a request.
        const bool isRequest = line.isEmpty() && (word.startsWith(u'.') || word.startsWith(u'\''));
        line += (line.isEmpty() ? QString() : u" "_s) + (isRequest ? u"\\&"_s : QString()) + word;
    }
    return lines + line + u'\n';
}

QString entryOf(const OptionSpec &option)
{
    const QString name = u"\\-\\-"_s + QString(option.name).replace(u'-', u"\\-"_s);
    const QString value = option.choices.isEmpty() ? option.valueName : option.choices.join(u'|');
    const QString head = option.takesValue() ? u".BI "_s + name + u" \" "_s + value + u"\"\n"_s : u".B "_s + name + u'\n';
    return u".TP\n"_s + head + folded(roffText(option.manual.isEmpty() ? option.summary : option.manual));
}

QString entryOf(const CommandSpec::Word &word)
{
    return u".TP\n.B "_s + word.word + u'\n' + folded(roffText(word.manual));
}

/// The words that may follow the command.
QString wordsOf(const QString &name, const CommandTree &commands)
{
    QString text;
    for (const Command *command : commands.commands()) {
        if (command->spec().name != name)
            continue;
        for (const CommandSpec::Word &word : command->spec().words)
            text += entryOf(word);
    }
    if (text.isEmpty())
        throw NurvFailure(u"there are no words of \"%1\""_s.arg(name));
    return text;
}

/// Whether the command has it, and says the same of it.
bool has(const CommandSpec &command, const OptionSpec &option)
{
    const OptionSpec *const own = command.option(option.name);
    return own && own->choices == option.choices && (own->manual == option.manual || own->manual.isEmpty());
}

class Sections {
public:
    explicit Sections(const CommandTree &commands) : m_commands(commands)
    {
        for (const bool takesPaths : {true, false}) {
            for (const Command *command : commands.commands()) {
                for (const OptionSpec &option : command->spec().options) {
                    if (command->spec().takesPaths == takesPaths)
                        add(command->spec(), option);
                }
            }
        }
    }

    /// Nothing for a section that was asked for before, too.
    [[nodiscard]] QString take(const QString &name)
    {
        const auto found = std::find_if(m_sections.begin(), m_sections.end(),
                                        [&name](const auto &section) { return section.first == name; });
        if (found == m_sections.end())
            throw NurvFailure(u"there are no options \"%1\""_s.arg(name));
        QString text;
        for (const OptionSpec &option : found->second)
            text += entryOf(option);
        m_sections.erase(found);
        return text;
    }
    [[nodiscard]] QStringList left() const
    {
        QStringList names;
        for (const auto &[name, options] : m_sections)
            names.append(name);
        return names;
    }

private:
    void add(const CommandSpec &command, const OptionSpec &option)
    {
        const auto &all = m_commands.commands();
        const bool isEverywhere = std::all_of(
            all.begin(), all.end(), [&](const Command *other) { return has(other->spec(), option); });
        // Some take paths and make no outputs of them one by one: they lack some of these.
        const auto sharers = std::count_if(all.begin(), all.end(), [&](const Command *other) {
            return other->spec().takesPaths && has(other->spec(), option);
        });
        if (command.takesPaths && isEverywhere)
            addOnce(u"common"_s, option);
        else if (command.takesPaths && sharers > 1)
            addOnce(u"shared"_s, option);
        else if (!option.manual.isEmpty() && !isCommon(option.name))
            addOnce(command.name, option);
    }
    /// Commands without paths say in their own help what a common option is there.
    [[nodiscard]] bool isCommon(const QString &name) const
    {
        return std::any_of(m_sections.begin(), m_sections.end(), [&](const auto &section) {
            return section.first == u"common"
                   && std::any_of(section.second.begin(), section.second.end(),
                                  [&](const OptionSpec &option) { return option.name == name; });
        });
    }
    void addOnce(const QString &name, const OptionSpec &option)
    {
        auto section = std::find_if(m_sections.begin(), m_sections.end(),
                                    [&name](const auto &entry) { return entry.first == name; });
        if (section == m_sections.end())
            section = m_sections.insert(section, {name, {}});
        Options &options = section->second;
        if (std::none_of(options.begin(), options.end(), [&](const OptionSpec &known) { return known.name == option.name; }))
            options.push_back(option);
    }

    const CommandTree &m_commands;
    std::vector<std::pair<QString, Options>> m_sections;
};

} // namespace

QString manualPage(const QString &page, const CommandTree &commands)
{
    constexpr QLatin1StringView kMark("@options ");
    constexpr QLatin1StringView kWordsMark("@words ");
    Sections sections(commands);
    QString text;
    for (const QString &line : page.split(u'\n')) {
        if (line.startsWith(kMark) && line.endsWith(u'@'))
            text += sections.take(line.sliced(kMark.size(), line.size() - kMark.size() - 1));
        else if (line.startsWith(kWordsMark) && line.endsWith(u'@'))
            text += wordsOf(line.sliced(kWordsMark.size(), line.size() - kWordsMark.size() - 1), commands);
        else
            text += line + u'\n';
    }
    text.chop(1);
    if (const QStringList left = sections.left(); !left.isEmpty())
        throw NurvFailure(u"the page has no place for the options of %1"_s.arg(left.join(u", "_s)));
    return text;
}

} // namespace nurv
