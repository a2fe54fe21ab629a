// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <optional>
#include <vector>

namespace nurv {

class SettingsStore;

/// What a text that somebody wrote for a setting is: a value that can be stored, or why it is none.
struct SettingInput {
    std::optional<QVariant> value = {};
    QString objection = {}; ///< the end of a sentence that begins with the setting: "takes on or off, not ..."
};

/// Everything that there is to say of one of the user's settings: the store takes its default from here; the window, the
/// command line and the manual page what it takes and what it is for.
struct Setting {
    enum class Kind {
        Switch, ///< "on" and "off"
        Number, ///< a whole number from `least` to `most`
        Choice, ///< one of `choices`
        Text,   ///< a line of text that `objection` accepts
    };
    struct Choice {
        QString word;   ///< for command lines, in lower case
        QVariant value; ///< what is stored
    };

    QString key;
    Kind kind = Kind::Switch;
    QVariant standard; ///< the default; its type is the one that is stored
    QString meaning;   ///< one line without a full stop, for people
    int least = 0;
    int most = 0;
    std::vector<Choice> choices = {};
    /// Why the text cannot be taken, as in SettingInput; an empty text when it can.
    std::function<QString(const QString &text)> objection = {};
    /// What counts when a stored value cannot be read; nothing: the default.
    std::optional<QVariant> inDoubt = {};

    [[nodiscard]] static Setting onOff(const QString &key, const QVariant &standard, const QString &meaning);
    [[nodiscard]] static Setting number(const QString &key, int standard, int least, int most, const QString &meaning);
    /// The value of each word is its place in the list.
    [[nodiscard]] static Setting choice(const QString &key, int standard, const QStringList &words, const QString &meaning);

    /// What a text stands for: words in any case, numbers of choices, too.
    [[nodiscard]] SettingInput read(const QString &text) const;
    /// The value that counts now, within what the setting takes.
    [[nodiscard]] QVariant value(const SettingsStore &store) const;
    /// The text that stands for the value: "on", "flac", "4".
    [[nodiscard]] QString textOf(const QVariant &value) const;
    /// The words that it takes, as far as they can be counted off: for lists and for the completion of shells.
    [[nodiscard]] QStringList words() const;
    /// What it takes, in words: "on or off", "1 to 256", "flac or wav".
    [[nodiscard]] QString range() const;
};

} // namespace nurv
