// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ScriptedPrompts.h"

#include "app/NURVController.h"
#include "settings/SettingsStore.h"

#include <gtest/gtest.h>

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

QString quoted(const QString &text)
{
    return u'"' + text + u'"';
}

QString worded(const Alert &alert)
{
    return u"alert "_s + quoted(alert.title) + u", text "_s + quoted(alert.message) + u", buttons "_s
        + quoted(alert.buttons.join(u"\", \""_s));
}

QString worded(const FileChooser &chooser)
{
    const QString title = chooser.title.isEmpty() ? u"without a title"_s : quoted(chooser.title);
    if (chooser.kind == FileChooser::Kind::Save)
        return u"save panel "_s + title + u", name "_s + quoted(chooser.suggestedName);
    const QString kind = chooser.kind == FileChooser::Kind::Folder ? u"folder chooser "_s
        : chooser.kind == FileChooser::Kind::File                  ? u"chooser of one file "_s
                                                                   : u"file chooser "_s;
    const QString types = chooser.extensions.isEmpty() ? QString() : u", of "_s + chooser.extensions.join(u", "_s);
    return kind + title + u", button "_s + quoted(chooser.buttonText) + types;
}

QString worded(const PanelQuestion &panel)
{
    return u"panel "_s + quoted(panel.title) + u", text "_s + quoted(panel.message) + u", fields "_s
        + quoted(panel.fields.join(u"\", \""_s)) + u", buttons "_s + quoted(panel.buttons.join(u"\", \""_s));
}

PanelQuestion questionOf(const Panel &panel)
{
    PanelQuestion question{.title = panel.title, .message = panel.message, .fields = {}, .buttons = {}};
    for (const PanelField &field : panel.fields)
        question.fields.append(field.name);
    for (const PanelButton &button : panel.buttons)
        question.buttons.append(button.title);
    return question;
}

FileChooser ofKind(FileChooser chooser, FileChooser::Kind kind)
{
    chooser.kind = kind;
    return chooser;
}

QStringList listed(const std::optional<QString> &path)
{
    return path ? QStringList(*path) : QStringList();
}

const PanelButton *buttonOf(const Panel &panel, const QString &title)
{
    for (const PanelButton &button : panel.buttons) {
        if (button.title == title)
            return &button;
    }
    return nullptr;
}

} // namespace

ScriptedPrompts::~ScriptedPrompts()
{
    verify();
}

void ScriptedPrompts::verify()
{
    for (const Step &step : m_script)
        ADD_FAILURE() << "Nobody asked: " << qPrintable(step.question);
    m_script.clear();
    for (const QString &what : std::as_const(m_givenUp))
        ADD_FAILURE() << "Nobody waited: " << qPrintable(what);
    m_givenUp.clear();
}

void ScriptedPrompts::expectAsk(const QString &title, const QStringList &buttons, const QString &answer)
{
    expectAsk(Alert{.title = title, .message = {}, .buttons = buttons}, answer);
}

void ScriptedPrompts::expectAsk(const Alert &alert, const QString &answer)
{
    EXPECT_TRUE(alert.buttons.contains(answer)) << "No such button: " << qPrintable(answer);
    m_script.push_back({worded(alert), answer});
}

void ScriptedPrompts::expectDeletionQuestion(const QString &answer)
{
    const bool goesToTrash = SettingsStore::instance().integer(u"trashOrDelete"_s) != 0;
    expectAsk({.title = u"You have chosen to delete the original files.  Are you sure you want to continue?"_s,
               .message = goesToTrash ? u"They will be moved to the trash."_s : u"They will be deleted for good."_s,
               .buttons = {u"Yes"_s, u"No"_s}},
              answer);
}

void ScriptedPrompts::expectFiles(const FileChooser &chooser, const QStringList &answer)
{
    m_script.push_back({worded(ofKind(chooser, FileChooser::Kind::Files)), answer});
}

void ScriptedPrompts::expectFilesToAdd(const NURVController &controller, const QString &label,
                                       const QStringList &answer)
{
    QStringList extensions;
    for (const QString &extension : controller.offeredExtensions(label))
        extensions.append(extension.toLower());
    expectFiles({.title = u"Choose files for processing"_s,
                 .buttonText = u"Add Files"_s,
                 .extensions = extensions,
                 .offersAllFiles = true},
                answer);
}

void ScriptedPrompts::expectFile(const FileChooser &chooser, const std::optional<QString> &answer)
{
    m_script.push_back({worded(ofKind(chooser, FileChooser::Kind::File)), listed(answer)});
}

void ScriptedPrompts::expectFolder(const FileChooser &chooser, const std::optional<QString> &answer)
{
    m_script.push_back({worded(ofKind(chooser, FileChooser::Kind::Folder)), listed(answer)});
}

void ScriptedPrompts::expectOutputFolder(const std::optional<QString> &answer)
{
    expectFolder({.title = u"Choose output directory"_s}, answer);
}

void ScriptedPrompts::expectSavePath(const QString &suggestedName, const std::optional<QString> &title,
                                     const std::optional<QString> &answer)
{
    const FileChooser chooser{.title = title.value_or(QString()), .suggestedName = suggestedName};
    m_script.push_back({worded(ofKind(chooser, FileChooser::Kind::Save)), listed(answer)});
}

void ScriptedPrompts::expectPanel(const PanelQuestion &panel, const std::function<void(const Panel &)> &act,
                                  const QString &button)
{
    EXPECT_TRUE(panel.buttons.contains(button)) << "No such button: " << qPrintable(button);
    m_script.push_back({worded(panel), PanelAnswer{act, button}});
}

std::optional<ScriptedPrompts::Answer> ScriptedPrompts::answerTo(const QString &question)
{
    if (m_script.empty() || m_script.front().question != question) {
        ADD_FAILURE() << "Unexpected question: " << qPrintable(question) << "\n         expected: "
                      << (m_script.empty() ? "none" : qPrintable(m_script.front().question));
        return std::nullopt;
    }
    const Answer answer = m_script.front().answer;
    m_script.pop_front();
    if (const auto work = std::exchange(m_duringNextQuestion, nullptr))
        work();
    return answer;
}

QString ScriptedPrompts::ask(const Alert &alert)
{
    m_shownAlerts.append(alert);
    const std::optional<Answer> answer = answerTo(worded(alert));
    return answer ? std::get<QString>(*answer) : dismissingButton(alert);
}

QStringList ScriptedPrompts::choose(const FileChooser &chooser)
{
    const std::optional<Answer> answer = answerTo(worded(chooser));
    return answer ? std::get<QStringList>(*answer) : QStringList();
}

bool ScriptedPrompts::waitFor(const QString &what,
                              const std::function<void(const std::function<bool()> &isUnwanted)> &work)
{
    const bool isGivenUp = m_givenUp.removeOne(what);
    work([isGivenUp] { return isGivenUp; });
    return !isGivenUp;
}

bool ScriptedPrompts::runPanel(const Panel &panel)
{
    const std::optional<Answer> answer = answerTo(worded(questionOf(panel)));
    if (!answer)
        return false;
    const PanelAnswer &user = std::get<PanelAnswer>(*answer);
    if (user.act)
        user.act(panel);
    const PanelButton *const button = buttonOf(panel, user.button);
    if (!button || button->role == PanelButton::Role::Dismiss)
        return false;
    const bool accepts = button->role == PanelButton::Role::Accept;
    EXPECT_TRUE(accepts) << "The panel stays after " << qPrintable(user.button);
    const QString objection = panel.objection();
    EXPECT_TRUE(objection.isEmpty()) << qPrintable(user.button) << " is disabled: " << qPrintable(objection);
    return accepts && objection.isEmpty();
}

void pressButtonOf(const Panel &panel, const QString &title)
{
    const PanelButton *const button = buttonOf(panel, title);
    ASSERT_TRUE(button && button->role == PanelButton::Role::Stay && button->action) << qPrintable(title);
    button->action();
}

} // namespace nurv::test
