// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Panel.h"
#include "app/UserPrompts.h"
#include "cli/ArgumentParser.h"

#include <QHash>

#include <functional>
#include <optional>
#include <utility>

namespace nurv {

class Console;

/// What the options say to the questions of a tab.
struct PromptAnswers {
    /// The values of every option that was given or has a standard, by its name. Choosers and the fields of panels
    /// look for the option that they are named after.
    QHash<QString, QStringList> options;
    std::optional<bool> answerAll; ///< --yes, --no
};

[[nodiscard]] PromptAnswers answersOf(const CommandSpec &command, const ParsedArguments &arguments);

/// The prompts of the command line: answered by the options, else by a question
/// on the terminal, else by the answer that changes nothing, with a text that
/// says so.
class ConsolePrompts final : public UserPrompts {
public:
    /// Why a command may have ended before it queued anything.
    enum class Outcome {
        Answered,   ///< every question was answered with a "go on"
        Declined,   ///< the user or an option said no
        Unanswered, ///< there was nobody to ask
        Interrupted,
    };

    /// `console` must outlive the prompts.
    ConsolePrompts(Console &console, PromptAnswers answers);

    /// What the questions are about, in one line; asked for and written before the first
    /// question that goes to the terminal.
    void setSubject(std::function<QString()> subject) { m_subject = std::move(subject); }

    /// A question is given up as soon as this descriptor is readable.
    void setInterruptDescriptor(int descriptor) { m_interruptDescriptor = descriptor; }

    [[nodiscard]] Outcome outcome() const { return m_outcome; }
    /// What was told without a choice: why something is not done.
    [[nodiscard]] const QStringList &objections() const { return m_objections; }

    QString ask(const Alert &alert) override;
    QStringList choose(const FileChooser &chooser) override;
    bool runPanel(const Panel &panel) override;

private:
    QString answered(const Alert &alert, const QString &button);
    QString askOnTerminal(const Alert &alert);
    /// False when the option's words do not fit: that was told.
    [[nodiscard]] bool answerByOption(const PanelField &field);
    [[nodiscard]] bool askForField(const PanelField &field);
    [[nodiscard]] std::optional<QStringList> readWords(const PanelField &field);
    [[nodiscard]] QStringList chooseByOption(const FileChooser &chooser);
    [[nodiscard]] QStringList chooseOnTerminal(const FileChooser &chooser);
    /// Whether what is there, if anything, may be replaced.
    [[nodiscard]] bool mayWrite(const QString &path);
    /// What was asked for is not to be had, and that is the fault of the command line.
    void refuse(const QString &reason);
    std::optional<QString> readLine();
    /// The same on a line that was begun; at the end of the input the user does not want to go on.
    std::optional<QString> readAnswer();

    Console &m_console;
    PromptAnswers m_answers;
    std::function<QString()> m_subject;
    int m_interruptDescriptor = -1;
    Outcome m_outcome = Outcome::Answered;
    QStringList m_objections;
};

} // namespace nurv
