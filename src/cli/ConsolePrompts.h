// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/UserPrompts.h"

#include <functional>
#include <optional>
#include <utility>

namespace nurv {

class Console;

/// What the options say to the questions of a tab.
struct PromptAnswers {
    std::optional<QString> outputFolder; ///< the answer to a folder chooser; else the terminal is asked
    std::optional<bool> answerAll;       ///< --yes, --no
};

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

    QString ask(const Alert &alert) override;
    QStringList chooseFiles(const FileChooser &chooser) override;
    std::optional<QString> chooseFolder(const FileChooser &chooser) override;
    std::optional<QString> chooseSavePath(const QString &suggestedName, const std::optional<QString> &title) override;

private:
    QString answered(const Alert &alert, const QString &button);
    QString askOnTerminal(const Alert &alert);
    std::optional<QString> readLine();

    Console &m_console;
    PromptAnswers m_answers;
    std::function<QString()> m_subject;
    int m_interruptDescriptor = -1;
    Outcome m_outcome = Outcome::Answered;
};

} // namespace nurv
