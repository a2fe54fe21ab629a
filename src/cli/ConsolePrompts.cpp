// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ConsolePrompts.h"

#include "cli/ChosenPath.h"
#include "cli/Console.h"
#include "cli/FieldWords.h"
#include "cli/OutputFolder.h"

#include <QFile>

#include <array>
#include <utility>

#include <errno.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

QString textOf(const Alert &alert)
{
    if (alert.message.isEmpty())
        return alert.title.simplified();
    const QString separator = !alert.title.isEmpty() && alert.title.back().isPunct() ? u" "_s : u": "_s;
    // The lines of a message are the names of a list.
    return alert.title.simplified() + separator
        + alert.message.split(u'\n', Qt::SkipEmptyParts).join(u", "_s).simplified();
}

/// The button that the typed line stands for: its name or the beginning of it.
/// An empty line changes nothing.
std::optional<QString> buttonFor(const Alert &alert, const QString &line)
{
    const QString typed = line.trimmed();
    if (typed.isEmpty())
        return dismissingButton(alert);
    for (const QString &button : alert.buttons) {
        if (button.startsWith(typed, Qt::CaseInsensitive))
            return button;
    }
    return std::nullopt;
}

} // namespace

PromptAnswers answersOf(const CommandSpec &command, const ParsedArguments &arguments)
{
    PromptAnswers answers;
    for (const OptionSpec &option : command.options) {
        if (const QStringList values = arguments.values(option.name); !values.isEmpty())
            answers.options.insert(option.name, values);
    }
    if (arguments.has(u"yes"_s) || arguments.has(u"no"_s))
        answers.answerAll = arguments.has(u"yes"_s);
    return answers;
}

ConsolePrompts::ConsolePrompts(Console &console, PromptAnswers answers)
    : m_console(console), m_answers(std::move(answers))
{
}

QString ConsolePrompts::ask(const Alert &alert)
{
    if (alert.buttons.size() < 2) {
        m_objections.append(textOf(alert));
        m_console.writeNote(m_objections.last());
        return dismissingButton(alert);
    }
    if (m_answers.answerAll)
        return answered(alert, *m_answers.answerAll ? u"Yes"_s : u"No"_s);
    if (Console::canAsk())
        return askOnTerminal(alert);

    m_outcome = Outcome::Unanswered;
    m_console.writeNote(u"%1 Answered \"%2\", since there is no terminal to ask on; --yes answers \"Yes\"."_s.arg(
        textOf(alert), dismissingButton(alert)));
    return dismissingButton(alert);
}

/// Notes what the answer means and gives it in the words of the alert.
QString ConsolePrompts::answered(const Alert &alert, const QString &button)
{
    const QString chosen = alert.buttons.contains(button) ? button : dismissingButton(alert);
    if (chosen == dismissingButton(alert)) {
        m_outcome = Outcome::Declined;
        m_console.writeNote(u"%1 Answered \"%2\"."_s.arg(textOf(alert), chosen));
    }
    return chosen;
}

QString ConsolePrompts::askOnTerminal(const Alert &alert)
{
    const QString safe = dismissingButton(alert);
    if (const auto subject = std::exchange(m_subject, nullptr))
        m_console.writeNote(subject());
    while (true) {
        m_console.writeQuestion(u"%1 [%2, default %3] "_s.arg(textOf(alert), alert.buttons.join(u'/'), safe));
        const std::optional<QString> line = readLine();
        if (!line) {
            m_console.writeLine(QString());
            if (m_outcome != Outcome::Interrupted)
                m_outcome = Outcome::Declined;
            return safe;
        }
        if (const std::optional<QString> button = buttonFor(alert, *line)) {
            if (*button == safe)
                m_outcome = Outcome::Declined;
            return *button;
        }
    }
}

/// A line of standard input; nothing at its end and when interrupted.
std::optional<QString> ConsolePrompts::readLine()
{
    QByteArray line;
    while (true) {
        std::array<pollfd, 2> fds{pollfd{STDIN_FILENO, POLLIN, 0}, pollfd{m_interruptDescriptor, POLLIN, 0}};
        if (::poll(fds.data(), fds.size(), -1) < 0) {
            if (errno == EINTR)
                continue;
            return std::nullopt;
        }
        if (fds[1].revents != 0) {
            m_outcome = Outcome::Interrupted;
            return std::nullopt;
        }
        char character = 0;
        const ssize_t count = ::read(STDIN_FILENO, &character, 1);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return std::nullopt;
        if (character == '\n')
            return QString::fromUtf8(line);
        line += character;
    }
}

std::optional<QString> ConsolePrompts::readAnswer()
{
    const std::optional<QString> line = readLine();
    if (line)
        return line;
    m_console.writeLine(QString());
    if (m_outcome != Outcome::Interrupted)
        m_outcome = Outcome::Declined;
    return std::nullopt;
}

void ConsolePrompts::refuse(const QString &reason)
{
    m_console.writeNote(reason);
    m_outcome = Outcome::Unanswered;
}

QStringList ConsolePrompts::choose(const FileChooser &chooser)
{
    // The files to work on are given as arguments.
    if (chooser.option.isEmpty())
        return {};
    QStringList paths;
    if (m_answers.options.contains(chooser.option))
        paths = chooseByOption(chooser);
    else if (Console::canAsk())
        paths = chooseOnTerminal(chooser);
    else
        refuse(u"--%1 is needed, since there is no terminal to ask on: %2"_s.arg(chooser.option, chooser.title));
    const bool isToBeWritten = chooser.kind == FileChooser::Kind::Save && !paths.isEmpty();
    return isToBeWritten && !mayWrite(paths.first()) ? QStringList() : paths;
}

QStringList ConsolePrompts::chooseByOption(const FileChooser &chooser)
{
    QStringList names = m_answers.options.value(chooser.option);
    if (chooser.kind != FileChooser::Kind::Files)
        names = names.last(1);
    QStringList paths;
    for (const QString &name : std::as_const(names)) {
        const ChosenPath chosen = checkChosenPath(chooser, name);
        if (!chosen.obstacle.isEmpty()) {
            refuse(u"--%1: %2"_s.arg(chooser.option, chosen.obstacle));
            return {};
        }
        paths.append(chosen.path);
    }
    return paths;
}

QStringList ConsolePrompts::chooseOnTerminal(const FileChooser &chooser)
{
    const bool isOfMany = chooser.kind == FileChooser::Kind::Files;
    QStringList paths;
    while (true) {
        const QString end = paths.isEmpty() ? u"cancel"_s : u"no more"_s;
        m_console.writeQuestion(u"%1 [Enter alone: %2]: "_s.arg(chooser.title, end));
        const std::optional<QString> line = readAnswer();
        if (!line)
            return {};
        const QString name = line->trimmed();
        if (name.isEmpty()) {
            if (paths.isEmpty())
                m_outcome = Outcome::Declined;
            return paths;
        }
        const ChosenPath chosen = checkChosenPath(chooser, withHomeFolder(name));
        if (!chosen.obstacle.isEmpty()) {
            m_console.writeNote(chosen.obstacle);
            continue;
        }
        paths.append(chosen.path);
        if (!isOfMany)
            return paths;
    }
}

bool ConsolePrompts::mayWrite(const QString &path)
{
    struct stat facts = {};
    if (::lstat(QFile::encodeName(path).constData(), &facts) != 0 || m_answers.options.contains(u"overwrite"_s))
        return true;
    return ask({.title = u"%1 exists already. Do you want to replace it?"_s.arg(path),
                .message = {},
                .buttons = {u"No"_s, u"Yes"_s}})
        == u"Yes";
}

bool ConsolePrompts::runPanel(const Panel &panel)
{
    QList<const PanelField *> missing;
    for (const PanelField &field : panel.fields) {
        if (m_answers.options.contains(field.name)) {
            if (!answerByOption(field))
                return false;
        } else if (mustBeAnswered(field)) {
            missing.append(&field);
        }
    }
    if (!missing.isEmpty() && !Console::canAsk()) {
        QStringList names;
        for (const PanelField *field : std::as_const(missing))
            names.append(u"--"_s + field->name);
        refuse(u"%1 %2 needed, since there is no terminal to ask on: %3"_s.arg(
            names.join(u" and "_s), names.size() == 1 ? u"is"_s : u"are"_s, panel.title));
        return false;
    }
    if (!missing.isEmpty())
        m_console.writeNote(textOf({.title = panel.title, .message = panel.message, .buttons = {}})
                            + u" (Ctrl-D cancels)"_s);
    for (const PanelField *field : std::as_const(missing)) {
        if (!askForField(*field))
            return false;
    }
    // A field may object to what another one has got since.
    const QString objection = panel.objection();
    if (!objection.isEmpty())
        refuse(objection);
    return objection.isEmpty();
}

bool ConsolePrompts::answerByOption(const PanelField &field)
{
    QString problem = takeWords(field, m_answers.options.value(field.name));
    if (!problem.isEmpty())
        problem = u"--%1 %2"_s.arg(field.name, problem);
    else if (field.objection && mustBeAnswered(field))
        problem = field.objection();
    if (problem.isEmpty())
        return true;
    refuse(problem.startsWith(u"--"_s) ? problem : u"--%1: %2"_s.arg(field.name, problem));
    return false;
}

bool ConsolePrompts::askForField(const PanelField &field)
{
    while (true) {
        const std::optional<QStringList> words = readWords(field);
        if (!words)
            return false;
        QString problem = takeWords(field, *words);
        if (!problem.isEmpty())
            problem = field.title() + u' ' + problem;
        else if (field.objection)
            problem = field.objection();
        if (problem.isEmpty())
            return true;
        m_console.writeNote(problem);
    }
}

/// What is typed for the field: nothing to keep its value; no list at all when the user does not want to go on.
std::optional<QStringList> ConsolePrompts::readWords(const PanelField &field)
{
    QStringList hints;
    if (const QString kind = kindOfWords(field); !kind.isEmpty())
        hints.append(kind);
    if (takesSeveral(field))
        hints.append(u"one a line, Enter alone ends"_s);
    else if (const QString present = wordOf(field); !present.isEmpty())
        hints.append(u"default %1"_s.arg(present));
    const QString question =
        field.title() + (hints.isEmpty() ? QString() : u" ["_s + hints.join(u", "_s) + u']') + u": "_s;
    QStringList words;
    while (true) {
        m_console.writeQuestion(question);
        const std::optional<QString> line = readAnswer();
        if (!line)
            return std::nullopt;
        if (line->isEmpty())
            return words;
        words.append(*line);
        if (!takesSeveral(field))
            return words;
    }
}

} // namespace nurv
