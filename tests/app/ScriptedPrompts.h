// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/UserPrompts.h"

#include <QString>
#include <QStringList>

#include <deque>
#include <functional>
#include <optional>
#include <utility>
#include <variant>

namespace nurv::test {

/// A user who answers by a script. The questions must come in the order of the
/// script and be worded as it says: any other question fails the running test and is
/// answered with what changes nothing. An answer that nobody has asked for fails the
/// test when the object goes, or in `verify`.
class ScriptedPrompts final : public UserPrompts {
public:
    ScriptedPrompts() = default;
    ~ScriptedPrompts() override;
    ScriptedPrompts(const ScriptedPrompts &) = delete;
    ScriptedPrompts &operator=(const ScriptedPrompts &) = delete;

    /// An alert with an empty text below its title.
    void expectAsk(const QString &title, const QStringList &buttons, const QString &answer);
    /// An alert with this title, text and these buttons.
    void expectAsk(const Alert &alert, const QString &answer);
    void expectFiles(const FileChooser &chooser, const QStringList &answer);
    void expectFolder(const FileChooser &chooser, const std::optional<QString> &answer);
    /// The chooser of the tabs, "Choose output directory".
    void expectOutputFolder(const std::optional<QString> &answer);
    void expectSavePath(const QString &suggestedName, const std::optional<QString> &title,
                        const std::optional<QString> &answer);

    /// Does this once while the next question is on the screen, before its answer.
    void duringNextQuestion(std::function<void()> work) { m_duringNextQuestion = std::move(work); }
    /// How many scripted answers nobody has asked for yet.
    [[nodiscard]] int unaskedCount() const { return static_cast<int>(m_script.size()); }
    /// Every alert that was shown, scripted or not.
    [[nodiscard]] const QList<Alert> &shownAlerts() const { return m_shownAlerts; }
    /// Fails the running test for every unasked answer and forgets them.
    void verify();

    QString ask(const Alert &alert) override;
    QStringList chooseFiles(const FileChooser &chooser) override;
    std::optional<QString> chooseFolder(const FileChooser &chooser) override;
    std::optional<QString> chooseSavePath(const QString &suggestedName, const std::optional<QString> &title) override;

private:
    using Answer = std::variant<QString, QStringList, std::optional<QString>>;
    struct Step {
        QString question; ///< the whole question, worded for the failure message
        Answer answer;
    };

    [[nodiscard]] std::optional<Answer> answerTo(const QString &question);

    std::deque<Step> m_script;
    QList<Alert> m_shownAlerts;
    std::function<void()> m_duringNextQuestion;
};

} // namespace nurv::test
