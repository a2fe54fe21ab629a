// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ConsolePrompts.h"

#include "cli/Console.h"
#include "cli/OutputFolder.h"

#include <array>
#include <utility>

#include <errno.h>
#include <poll.h>
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

ConsolePrompts::ConsolePrompts(Console &console, PromptAnswers answers)
    : m_console(console), m_answers(std::move(answers))
{
}

QString ConsolePrompts::ask(const Alert &alert)
{
    if (alert.buttons.size() < 2) {
        m_console.writeNote(textOf(alert));
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

QStringList ConsolePrompts::chooseFiles(const FileChooser &)
{
    // Files are given as arguments.
    return {};
}

std::optional<QString> ConsolePrompts::chooseFolder(const FileChooser &chooser)
{
    if (m_answers.outputFolder)
        return m_answers.outputFolder;
    if (!Console::canAsk()) {
        m_outcome = Outcome::Unanswered;
        return std::nullopt;
    }
    while (true) {
        m_console.writeQuestion(u"%1 [Enter alone: cancel]: "_s.arg(chooser.title));
        const std::optional<QString> line = readLine();
        if (!line)
            m_console.writeLine(QString());
        const QString name = line.value_or(QString()).trimmed();
        if (name.isEmpty()) {
            if (m_outcome != Outcome::Interrupted)
                m_outcome = Outcome::Declined;
            return std::nullopt;
        }
        const OutputFolder folder = checkOutputFolder(withHomeFolder(name));
        if (folder.obstacle.isEmpty())
            return folder.path;
        m_console.writeNote(folder.obstacle);
    }
}

std::optional<QString> ConsolePrompts::chooseSavePath(const QString &, const std::optional<QString> &)
{
    return std::nullopt;
}

} // namespace nurv
