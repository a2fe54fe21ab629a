// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

namespace nurv {

class BaseTab;

/// Sets a control of a command's tab to the value that counts: the given one, else the option's standard. Nothing for a
/// switch that is not given, an empty text for one that is.
using ControlSetter = std::function<void(BaseTab &tab, const std::optional<QString> &value)>;

/// Everything that there is to say of an option. The parser, the messages about wrong usage, the help, the completion of the
/// shells, the manual page and the control that it sets all read this.
struct OptionSpec {
    /// Whole numbers: least, least + step, ..., most.
    struct Numbers {
        int least = 0;
        int most = 0;
        int step = 1;
        QStringList formats = {}; ///< where the command's selector is one of these; empty: always

        [[nodiscard]] bool hold(int number) const
        {
            return number >= least && number <= most && (number - least) % step == 0;
        }
    };

    QString name;                       ///< without the leading dashes
    QString valueName = {};             ///< empty: a switch, which takes no value
    QString summary = {};               ///< for the help, one line
    QString manual = {};                ///< for the manual page; "--option" and *WORDS* become bold, _words_ italic
    QStringList choices = {};           ///< the words that it takes, in lower case; empty: any
    std::vector<Numbers> numbers = {};  ///< empty: the value is no number
    bool isFolder = false;              ///< the value is the path of a folder
    bool namesFiles = false;            ///< the value says which files are meant: none need follow
    QString standard = {};              ///< the value that counts when the option is not given
    QStringList formats = {};           ///< it goes with one of these of the command's selector only
    QMap<QString, QStringList> choiceFormats = {}; ///< the same of some of its choices
    QStringList partners = {};          ///< it goes with one of those options only
    QStringList excluded = {};          ///< options that it cannot be given with
    ControlSetter set = {};             ///< empty: it sets no control

    [[nodiscard]] bool takesValue() const { return !valueName.isEmpty(); }
    /// The numbers that it takes with that value of the selector; null when it takes none there.
    [[nodiscard]] const Numbers *numbersFor(const QString &format) const;
};

/// A command: its name and what may follow it.
struct CommandSpec {
    /// A word that may follow, and the words that may follow that one.
    struct Word {
        QString word;
        QString summary = {};    ///< one line
        QString manual = {};     ///< for the manual page, as of options
        QStringList values = {}; ///< empty: any
    };

    QString name;             ///< one word, or two: "checksum verify"
    QString summary = {};     ///< one line, for the list of commands
    QString synopsis = {};    ///< what follows "nurv <name>"
    QString details = {};     ///< paragraphs for the command's own help
    bool takesPaths = true;   ///< files and folders may follow
    std::vector<Word> words = {}; ///< may follow where no paths do
    /// The option on whose value others depend: see OptionSpec::formats.
    QString selector = QStringLiteral("format");
    std::vector<OptionSpec> options = {};

    /// Null when there is none of that name.
    [[nodiscard]] const OptionSpec *option(const QString &optionName) const;
};

} // namespace nurv
