// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ArgumentParser.h"

#include "cli/SimilarWord.h"
#include "files/FileNames.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

bool looksLikeOption(const QByteArray &word)
{
    // A lone dash is a name like any other.
    return word.size() > 1 && word.startsWith('-');
}

/// The known option that may have been meant, or nothing.
std::optional<QString> similarOption(const CommandSpec &command, const QString &written)
{
    QStringList names;
    for (const OptionSpec &option : command.options)
        names.append(option.name);
    return similarWord(written, names);
}

QString optionValue(const OptionSpec &option, const QByteArray &bytes)
{
    const std::optional<QString> value = fileNameFromBytes(bytes);
    if (!value)
        throw UsageError(u"the value of --%1 is not valid UTF-8: %2"_s.arg(option.name, displayName(bytes)));
    if (value->isEmpty())
        throw UsageError(u"the value of --%1 is empty"_s.arg(option.name));
    const QString lowered = value->toLower();
    return option.choices.contains(lowered) ? lowered : *value;
}

/// "a", "a or b", "a, b or c".
QString alternatives(const QStringList &words)
{
    if (words.size() < 2)
        return words.join(QString());
    return words.first(words.size() - 1).join(u", "_s) + u" or "_s + words.last();
}

QString choiceText(const QStringList &choices)
{
    constexpr qsizetype kFew = 2;
    return choices.size() > kFew ? u"one of "_s + choices.join(u", "_s) : choices.join(u" or "_s);
}

void checkNumber(const CommandSpec &command, const OptionSpec &option, const QString &value, const QString &format)
{
    const OptionSpec::Numbers *const numbers = option.numbersFor(format);
    bool isNumber = false;
    const int number = value.toInt(&isNumber);
    if (!numbers || (isNumber && numbers->hold(number)))
        return;
    if (numbers->step == 1)
        throw UsageError(u"--%1 takes a whole number from %2 to %3, not \"%4\""_s.arg(
            option.name, QString::number(numbers->least), QString::number(numbers->most), value));
    QStringList list;
    for (int member = numbers->least; member <= numbers->most; member += numbers->step)
        list.append(QString::number(member));
    throw UsageError(
        u"--%1 takes %2 with --%3 %4, not \"%5\""_s.arg(option.name, alternatives(list), command.selector, format, value));
}

void checkValue(const CommandSpec &command, const OptionSpec &option, const ParsedArguments &arguments)
{
    const QString value = arguments.value(option.name);
    const QString format = arguments.value(command.selector);
    if (!option.choices.isEmpty() && !option.choices.contains(value))
        throw UsageError(u"--%1 takes %2, not \"%3\""_s.arg(option.name, choiceText(option.choices), value));
    if (!option.formats.isEmpty() && !option.formats.contains(format))
        throw UsageError(u"--%1 goes with --%2 %3 only, not with %4"_s.arg(option.name, command.selector,
                                                                          alternatives(option.formats), format));
    const QStringList formats = option.choiceFormats.value(value);
    if (!formats.isEmpty() && !formats.contains(format))
        throw UsageError(u"--%1 %2 goes with --%3 %4 only, not with %5"_s.arg(option.name, value, command.selector,
                                                                             alternatives(formats), format));
    if (!option.numbers.empty())
        checkNumber(command, option, value, format);
}

} // namespace

std::optional<int> ParsedArguments::number(const QString &name) const
{
    bool isNumber = false;
    const int result = value(name).toInt(&isNumber);
    return isNumber ? std::optional(result) : std::nullopt;
}

QStringList ParsedArguments::values(const QString &name) const
{
    if (has(name))
        return options.value(name);
    const QString standard = standards.value(name);
    return standard.isEmpty() ? QStringList() : QStringList(standard);
}

ParsedArguments parseArguments(const CommandSpec &command, const QList<QByteArray> &words)
{
    ParsedArguments result;
    for (const OptionSpec &option : command.options) {
        if (!option.standard.isEmpty())
            result.standards.insert(option.name, option.standard);
    }
    bool optionsEnded = false;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QByteArray &word = words[i];
        if (!optionsEnded && word == "--") {
            optionsEnded = true;
            continue;
        }
        if (optionsEnded || !looksLikeOption(word)) {
            result.operands.append(word);
            continue;
        }
        const qsizetype equals = word.indexOf('=');
        const QByteArray written = equals < 0 ? word : word.left(equals);
        const QString name = written == "-h" ? u"help"_s : QString::fromUtf8(written.mid(2));
        const OptionSpec *const option = written.startsWith("--") || written == "-h" ? command.option(name) : nullptr;
        if (!option) {
            const std::optional<QString> meant = similarOption(command, name);
            const QString hint = meant ? u" (did you mean --%1?)"_s.arg(*meant) : QString();
            throw UsageError(u"unknown option \"%1\""_s.arg(displayName(written)) + hint);
        }
        if (!option->takesValue()) {
            if (equals >= 0)
                throw UsageError(u"--%1 takes no value"_s.arg(name));
            result.options[name].append(QString());
        } else if (equals >= 0) {
            result.options[name].append(optionValue(*option, word.mid(equals + 1)));
        } else if (i + 1 < words.size()) {
            result.options[name].append(optionValue(*option, words[++i]));
        } else {
            throw UsageError(u"--%1 needs a value (%2)"_s.arg(name, option->valueName));
        }
    }
    return result;
}

void checkArguments(const CommandSpec &command, const ParsedArguments &arguments)
{
    const auto given = [&](const auto &check) {
        for (const OptionSpec &option : command.options) {
            if (arguments.has(option.name))
                check(option);
        }
    };
    given([&](const OptionSpec &option) { checkValue(command, option, arguments); });
    const bool areFilesNamed = std::any_of(command.options.begin(), command.options.end(), [&](const OptionSpec &option) {
        return option.namesFiles && arguments.has(option.name);
    });
    if (command.takesPaths && arguments.operands.isEmpty() && !areFilesNamed)
        throw UsageError(u"no files are given"_s);
    if (!command.takesPaths && command.words.empty() && !arguments.operands.isEmpty())
        throw UsageError(u"%1 takes no files"_s.arg(command.name));
    given([&](const OptionSpec &option) {
        for (const QString &other : option.excluded) {
            if (arguments.has(other))
                throw UsageError(u"--%1 and --%2 cannot both be given"_s.arg(option.name, other));
        }
    });
    given([&](const OptionSpec &option) {
        const bool hasPartner = std::any_of(option.partners.begin(), option.partners.end(),
                                            [&](const QString &partner) { return arguments.has(partner); });
        if (!option.partners.isEmpty() && !hasPartner)
            throw UsageError(u"--%1 goes with --%2 only"_s.arg(option.name, option.partners.join(u" or --"_s)));
    });
}

} // namespace nurv
