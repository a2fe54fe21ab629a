// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/SettingsCommand.h"

#include "app/NURVController.h"
#include "app/SettingsTable.h"
#include "cli/BatchOptions.h"
#include "cli/Console.h"
#include "cli/SimilarWord.h"
#include "files/FileNames.h"
#include "settings/SettingsStore.h"
#include "text/PrintableText.h"
#include "toolbox/Toolbox.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

const std::vector<Setting> &table()
{
    static const std::vector<Setting> settings = settingsTable(toolbox());
    return settings;
}

QString hintAt(const QString &written, const QStringList &known)
{
    const std::optional<QString> meant = similarWord(written, known);
    return meant ? u" (did you mean %1?)"_s.arg(*meant) : QString();
}

const Setting &settingNamed(const QString &key)
{
    if (const Setting *const setting = settingOf(table(), key))
        return *setting;
    QStringList keys;
    for (const Setting &setting : table())
        keys.append(setting.key);
    throw UsageError(u"there is no setting \"%1\""_s.arg(key) + hintAt(key, keys));
}

QString quotedText(const Setting &setting, const QVariant &value)
{
    const QString text = setting.textOf(value);
    return setting.kind == Setting::Kind::Text ? u'"' + text + u'"' : text;
}

bool isStandard(const Setting &setting, const QVariant &value)
{
    return setting.textOf(value) == setting.textOf(setting.standard);
}

/// What is said of a setting that is no value: what it is for, and what it takes.
QString explanationOf(const Setting &setting)
{
    return setting.kind == Setting::Kind::Text ? setting.meaning : u"%1 (%2)"_s.arg(setting.meaning, setting.range());
}

/// Two lines.
QString entryOf(const Setting &setting)
{
    const QVariant value = setting.value(SettingsStore::instance());
    const QString standard =
        isStandard(setting, value) ? u"default"_s : u"default: %1"_s.arg(quotedText(setting, setting.standard));
    return u"%1 = %2 (%3)\n    %4\n"_s.arg(setting.key, printableLine(quotedText(setting, value)), standard,
                                           explanationOf(setting));
}

QJsonValue jsonValue(const Setting &setting, const QVariant &value)
{
    switch (setting.kind) {
    case Setting::Kind::Switch: return value.toBool();
    case Setting::Kind::Number: return value.toInt();
    case Setting::Kind::Choice:
    case Setting::Kind::Text: break;
    }
    return setting.textOf(value);
}

QString kindWord(Setting::Kind kind)
{
    switch (kind) {
    case Setting::Kind::Switch: return u"switch"_s;
    case Setting::Kind::Number: return u"number"_s;
    case Setting::Kind::Choice: return u"choice"_s;
    case Setting::Kind::Text: break;
    }
    return u"text"_s;
}

QJsonObject objectOf(const Setting &setting)
{
    const QVariant value = setting.value(SettingsStore::instance());
    QJsonObject object{{u"type"_s, u"setting"_s},
                       {u"key"_s, setting.key},
                       {u"kind"_s, kindWord(setting.kind)},
                       {u"value"_s, jsonValue(setting, value)},
                       {u"default"_s, jsonValue(setting, setting.standard)},
                       {u"isDefault"_s, isStandard(setting, value)},
                       {u"meaning"_s, setting.meaning}};
    if (setting.kind == Setting::Kind::Number) {
        object.insert(u"least"_s, setting.least);
        object.insert(u"most"_s, setting.most);
    } else if (setting.kind == Setting::Kind::Choice) {
        object.insert(u"choices"_s, QJsonArray::fromStringList(setting.words()));
    }
    return object;
}

ExitStatus tell(const std::vector<Setting> &settings, bool asList, const ParsedArguments &arguments, Console &console,
                ExitStatus status)
{
    const bool isQuiet = arguments.has(u"quiet"_s);
    QString text;
    for (const Setting &setting : settings) {
        if (arguments.has(u"json"_s))
            console.writeJson(objectOf(setting));
        else
            text += asList ? entryOf(setting) : setting.textOf(setting.value(SettingsStore::instance())) + u'\n';
    }
    if (arguments.has(u"json"_s))
        console.writeJson({{u"type"_s, u"settings"_s},
                           {u"file"_s, SettingsStore::instance().filePath()},
                           {u"exitStatus"_s, static_cast<int>(status)}});
    else if (!isQuiet)
        console.writeOutput(text);
    return status;
}

/// Stores what was changed, and says so only in JSON.
ExitStatus finish(const Setting &setting, const ParsedArguments &arguments, Console &console)
{
    // The log tells why not.
    const ExitStatus status = SettingsStore::instance().sync() ? ExitStatus::Ok : ExitStatus::Failed;
    return arguments.has(u"json"_s) ? tell({setting}, false, arguments, console, status) : status;
}

std::vector<CommandSpec::Word> wordsOfSettings()
{
    std::vector<CommandSpec::Word> words;
    for (const Setting &setting : table())
        words.push_back({.word = setting.key,
                         .summary = setting.meaning,
                         .manual = u"%1. The default is %2."_s.arg(explanationOf(setting), quotedText(setting, setting.standard)),
                         .values = setting.words()});
    return words;
}

CommandSpec makeSpec()
{
    return {
        .name = u"settings"_s,
        .summary = u"list, print and store the settings of the window"_s,
        .synopsis = u"[OPTION]... [KEY [VALUE]]"_s,
        .details = u"Without a KEY: lists every setting with its value, its default, what it is for\n"
                   "and what it takes. With a KEY: prints its value. With a VALUE: stores it, as the\n"
                   "preferences window does. Switches are \"on\" or \"off\", choices have words.\n"
                   "What a command does follows from its own options; of the settings it goes by\n"
                   "the number of jobs, the questions, the trash, and the names of lists."_s,
        .takesPaths = false,
        .words = wordsOfSettings(),
        .options = joined(
            joined({{.name = u"reset"_s,
                     .summary = u"forget what was stored of KEY: its default counts"_s,
                     .manual = u"Forgets what was stored of the _KEY_, so that its default counts."_s},
                    {.name = u"json"_s, .summary = u"print one JSON object per setting and one for the whole"_s},
                    {.name = u"quiet"_s, .summary = u"print nothing; the exit status tells"_s},
                    {.name = u"yes"_s, .summary = u"accepted as everywhere; there are no questions"_s},
                    {.name = u"no"_s, .summary = u"accepted as everywhere; there are no questions"_s}},
                   unusedOptions()),
            standingOptions())};
}

} // namespace

const CommandSpec &SettingsCommand::spec() const
{
    static const CommandSpec spec = makeSpec();
    return spec;
}

ExitStatus SettingsCommand::run(const ParsedArguments &arguments, Console &console) const
{
    QStringList words;
    for (const QByteArray &operand : arguments.operands) {
        const std::optional<QString> word = fileNameFromBytes(operand);
        if (!word)
            throw UsageError(u"not valid UTF-8: %1"_s.arg(displayName(operand)));
        words.append(*word);
    }
    const bool resets = arguments.has(u"reset"_s);
    const qsizetype most = resets ? 1 : 2;
    if (words.size() > most)
        throw UsageError(resets ? u"--reset takes one KEY and no VALUE"_s
                                : u"one KEY and one VALUE are taken; put a VALUE with blanks in quotes"_s);
    if (resets && words.isEmpty())
        throw UsageError(u"--reset needs a KEY"_s);
    NURVController::registerDefaults(toolbox());
    if (words.isEmpty())
        return tell(table(), true, arguments, console, ExitStatus::Ok);
    const Setting &setting = settingNamed(words.first());
    SettingsStore &store = SettingsStore::instance();
    if (resets) {
        store.remove(setting.key);
        return finish(setting, arguments, console);
    }
    if (words.size() == 1)
        return tell({setting}, false, arguments, console, ExitStatus::Ok);
    const SettingInput input = setting.read(words.last());
    if (!input.value)
        throw UsageError(u"%1 %2"_s.arg(setting.key, input.objection) + hintAt(words.last(), setting.words()));
    store.setValue(setting.key, *input.value);
    return finish(setting, arguments, console);
}

} // namespace nurv
