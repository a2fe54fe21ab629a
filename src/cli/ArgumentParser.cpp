// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ArgumentParser.h"

#include "platform/FileNames.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

bool looksLikeOption(const QByteArray &word)
{
    // A lone dash is a name like any other.
    return word.size() > 1 && word.startsWith('-');
}

/// The number of letters to insert, remove or replace that make one word of the other.
qsizetype distance(const QString &from, const QString &to)
{
    std::vector<qsizetype> row(static_cast<std::size_t>(to.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const QChar letter : from) {
        qsizetype diagonal = row[0]++;
        for (std::size_t i = 1; i < row.size(); ++i) {
            const qsizetype replaced = diagonal + (letter == to[static_cast<qsizetype>(i) - 1] ? 0 : 1);
            diagonal = row[i];
            row[i] = std::min({replaced, row[i] + 1, row[i - 1] + 1});
        }
    }
    return row.back();
}

/// The known option that may have been meant, or nothing.
std::optional<QString> similarOption(const CommandSpec &command, const QString &written)
{
    constexpr qsizetype kLikelySlips = 2;
    constexpr qsizetype kShortestName = 3;
    if (written.size() < kShortestName)
        return std::nullopt;
    for (const OptionSpec &option : command.options) {
        if (option.name.startsWith(written) || distance(written, option.name) <= kLikelySlips)
            return option.name;
    }
    return std::nullopt;
}

QString optionValue(const QString &name, const QByteArray &bytes)
{
    const std::optional<QString> value = fileNameFromBytes(bytes);
    if (!value)
        throw UsageError(u"the value of --%1 is not valid UTF-8: %2"_s.arg(name, displayName(bytes)));
    if (value->isEmpty())
        throw UsageError(u"the value of --%1 is empty"_s.arg(name));
    return *value;
}

} // namespace

const OptionSpec *CommandSpec::option(const QString &optionName) const
{
    const auto found =
        std::find_if(options.begin(), options.end(), [&](const OptionSpec &spec) { return spec.name == optionName; });
    return found == options.end() ? nullptr : &*found;
}

int ParsedArguments::number(const QString &name, int minimum, int maximum) const
{
    bool isNumber = false;
    const int result = value(name).toInt(&isNumber);
    if (!isNumber || result < minimum || result > maximum) {
        throw UsageError(u"--%1 takes a whole number from %2 to %3, not \"%4\""_s.arg(
            name, QString::number(minimum), QString::number(maximum), value(name)));
    }
    return result;
}

ParsedArguments parseArguments(const CommandSpec &command, const QList<QByteArray> &words)
{
    ParsedArguments result;
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
        if (option->valueName.isEmpty()) {
            if (equals >= 0)
                throw UsageError(u"--%1 takes no value"_s.arg(name));
            result.options.insert(name, QString());
        } else if (equals >= 0) {
            result.options.insert(name, optionValue(name, word.mid(equals + 1)));
        } else if (i + 1 < words.size()) {
            result.options.insert(name, optionValue(name, words[++i]));
        } else {
            throw UsageError(u"--%1 needs a value (%2)"_s.arg(name, option->valueName));
        }
    }
    return result;
}

} // namespace nurv
