// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/Setting.h"

#include "settings/SettingsStore.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

const QString kOn = u"on"_s;
const QString kOff = u"off"_s;

/// "a", "a or b", "a, b or c".
QString alternatives(const QStringList &words)
{
    if (words.size() < 2)
        return words.join(QString());
    return words.first(words.size() - 1).join(u", "_s) + u" or "_s + words.last();
}

/// As the setting's type, so that the file looks the same whoever has stored it.
QVariant switchValue(const QVariant &standard, bool isOn)
{
    return standard.typeId() == QMetaType::Bool ? QVariant(isOn) : QVariant(isOn ? 1 : 0);
}

std::optional<bool> switchOf(const QString &word)
{
    const QString lowered = word.trimmed().toLower();
    if (QStringList{kOn, u"true"_s, u"yes"_s, u"1"_s}.contains(lowered))
        return true;
    if (QStringList{kOff, u"false"_s, u"no"_s, u"0"_s}.contains(lowered))
        return false;
    return std::nullopt;
}

} // namespace

Setting Setting::onOff(const QString &key, const QVariant &standard, const QString &meaning)
{
    return {.key = key, .kind = Kind::Switch, .standard = standard, .meaning = meaning};
}

Setting Setting::number(const QString &key, int standard, int least, int most, const QString &meaning)
{
    return {.key = key, .kind = Kind::Number, .standard = standard, .meaning = meaning, .least = least, .most = most};
}

Setting Setting::choice(const QString &key, int standard, const QStringList &words, const QString &meaning)
{
    Setting setting{.key = key, .kind = Kind::Choice, .standard = standard, .meaning = meaning};
    for (const QString &word : words)
        setting.choices.push_back({word, static_cast<int>(setting.choices.size())});
    return setting;
}

SettingInput Setting::read(const QString &text) const
{
    const SettingInput refused{.objection = u"takes %1, not \"%2\""_s.arg(
                                   kind == Kind::Number ? u"a whole number from "_s + range() : range(), text)};
    switch (kind) {
    case Kind::Switch:
        if (const std::optional<bool> isOn = switchOf(text))
            return {.value = switchValue(standard, *isOn)};
        return refused;
    case Kind::Number: {
        bool isNumber = false;
        const int number = text.trimmed().toInt(&isNumber);
        return isNumber && number >= least && number <= most ? SettingInput{.value = number} : refused;
    }
    case Kind::Choice:
        for (const Choice &choice : choices) {
            const QString written = text.trimmed();
            if (written.compare(choice.word, Qt::CaseInsensitive) == 0 || written == choice.value.toString())
                return {.value = choice.value};
        }
        return refused;
    case Kind::Text: break;
    }
    const QString reason = objection ? objection(text) : QString();
    return reason.isEmpty() ? SettingInput{.value = text} : SettingInput{.objection = reason};
}

QVariant Setting::value(const SettingsStore &store) const
{
    switch (kind) {
    case Kind::Switch: return switchValue(standard, store.boolean(key));
    case Kind::Number: return std::clamp(store.integer(key), least, most);
    case Kind::Choice: {
        const QVariant lacking = inDoubt.value_or(standard);
        if (standard.typeId() == QMetaType::Int && inDoubt && !store.reliableInteger(key))
            return lacking;
        return read(store.string(key)).value.value_or(lacking);
    }
    case Kind::Text: break;
    }
    // Also one that nobody could store now: it is what the program goes by.
    return store.string(key);
}

QString Setting::textOf(const QVariant &value) const
{
    if (kind == Kind::Switch)
        return value.toBool() ? kOn : kOff;
    const auto named = std::find_if(choices.begin(), choices.end(),
                                    [&value](const Choice &choice) { return choice.value == value; });
    return named == choices.end() ? value.toString() : named->word;
}

QStringList Setting::words() const
{
    constexpr int kMostNumbers = 20;
    QStringList words;
    if (kind == Kind::Switch)
        words = {kOn, kOff};
    for (const Choice &choice : choices)
        words.append(choice.word);
    if (kind == Kind::Number && most - least < kMostNumbers) {
        for (int number = least; number <= most; ++number)
            words.append(QString::number(number));
    }
    return words;
}

QString Setting::range() const
{
    if (kind == Kind::Number)
        return u"%1 to %2"_s.arg(least).arg(most);
    return kind == Kind::Text ? u"a text"_s : alternatives(words());
}

} // namespace nurv
