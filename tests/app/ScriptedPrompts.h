// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Panel.h"
#include "app/UserPrompts.h"

#include <QString>
#include <QStringList>

#include <deque>
#include <functional>
#include <optional>
#include <stdexcept>
#include <utility>
#include <variant>

namespace nurv {
class NURVController;
}

namespace nurv::test {

/// The texts of a panel that a script expects.
struct PanelQuestion {
    QString title;
    QString message = {};
    QStringList fields = {}; ///< their names
    QStringList buttons = {QStringLiteral("Cancel"), QStringLiteral("OK")};
};

/// The control of a panel with that name. Fails the running test, and ends it, when there is
/// no such one.
template<typename Kind>
[[nodiscard]] Kind &fieldOf(const Panel &panel, const QString &name)
{
    for (const PanelField &field : panel.fields) {
        if (auto *const *control = std::get_if<Kind *>(&field.control); control && field.name == name)
            return **control;
    }
    throw std::runtime_error("no such field of that kind: " + name.toStdString());
}

/// Presses a button that lets the panel stay.
void pressButtonOf(const Panel &panel, const QString &title);

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
    /// The question before originals go, by the setting that says where to.
    void expectDeletionQuestion(const QString &answer);
    void expectFiles(const FileChooser &chooser, const QStringList &answer);
    /// The chooser behind the Add button of a page.
    void expectFilesToAdd(const NURVController &controller, const QString &label, const QStringList &answer);
    void expectFolder(const FileChooser &chooser, const std::optional<QString> &answer);
    /// The chooser of the tabs, "Choose output directory".
    void expectOutputFolder(const std::optional<QString> &answer);
    void expectSavePath(const QString &suggestedName, const std::optional<QString> &title,
                        const std::optional<QString> &answer);
    void expectFile(const FileChooser &chooser, const std::optional<QString> &answer);
    /// A panel with these texts. `act` does what the user does before the button is pressed; a
    /// button that accepts cannot be pressed while a field objects, which fails the test.
    void expectPanel(const PanelQuestion &panel, const std::function<void(const Panel &)> &act, const QString &button);

    /// The user gives up the next work that is told in these words, at once.
    void expectGivingUp(const QString &what) { m_givenUp.append(what); }
    /// Does this once while the next question is on the screen, before its answer.
    void duringNextQuestion(std::function<void()> work) { m_duringNextQuestion = std::move(work); }
    /// How many scripted answers nobody has asked for yet.
    [[nodiscard]] int unaskedCount() const { return static_cast<int>(m_script.size()); }
    /// Every alert that was shown, scripted or not.
    [[nodiscard]] const QList<Alert> &shownAlerts() const { return m_shownAlerts; }
    /// Fails the running test for every unasked answer and forgets them.
    void verify();

    QString ask(const Alert &alert) override;
    QStringList choose(const FileChooser &chooser) override;
    bool runPanel(const Panel &panel) override;
    bool waitFor(const QString &what,
                 const std::function<void(const std::function<bool()> &isUnwanted)> &work) override;

private:
    struct PanelAnswer {
        std::function<void(const Panel &)> act;
        QString button;
    };
    using Answer = std::variant<QString, QStringList, PanelAnswer>;
    struct Step {
        QString question; ///< the whole question, worded for the failure message
        Answer answer;
    };

    [[nodiscard]] std::optional<Answer> answerTo(const QString &question);

    std::deque<Step> m_script;
    QList<Alert> m_shownAlerts;
    QStringList m_givenUp; ///< works that are to be given up
    std::function<void()> m_duringNextQuestion;
};

} // namespace nurv::test
