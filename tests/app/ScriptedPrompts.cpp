// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ScriptedPrompts.h"

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

QString worded(const QString &kind, const FileChooser &chooser)
{
    return kind + u' ' + quoted(chooser.title) + u", button "_s + quoted(chooser.buttonText);
}

QString worded(const QString &suggestedName, const std::optional<QString> &title)
{
    return u"save panel "_s + (title ? quoted(*title) : u"without a title"_s) + u", name "_s + quoted(suggestedName);
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

void ScriptedPrompts::expectFiles(const FileChooser &chooser, const QStringList &answer)
{
    m_script.push_back({worded(u"file chooser"_s, chooser), answer});
}

void ScriptedPrompts::expectFolder(const FileChooser &chooser, const std::optional<QString> &answer)
{
    m_script.push_back({worded(u"folder chooser"_s, chooser), answer});
}

void ScriptedPrompts::expectOutputFolder(const std::optional<QString> &answer)
{
    expectFolder({.title = u"Choose output directory"_s, .buttonText = {}}, answer);
}

void ScriptedPrompts::expectSavePath(const QString &suggestedName, const std::optional<QString> &title,
                                     const std::optional<QString> &answer)
{
    m_script.push_back({worded(suggestedName, title), answer});
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

QStringList ScriptedPrompts::chooseFiles(const FileChooser &chooser)
{
    const std::optional<Answer> answer = answerTo(worded(u"file chooser"_s, chooser));
    return answer ? std::get<QStringList>(*answer) : QStringList();
}

std::optional<QString> ScriptedPrompts::chooseFolder(const FileChooser &chooser)
{
    const std::optional<Answer> answer = answerTo(worded(u"folder chooser"_s, chooser));
    return answer ? std::get<std::optional<QString>>(*answer) : std::nullopt;
}

std::optional<QString> ScriptedPrompts::chooseSavePath(const QString &suggestedName, const std::optional<QString> &title)
{
    const std::optional<Answer> answer = answerTo(worded(suggestedName, title));
    return answer ? std::get<std::optional<QString>>(*answer) : std::nullopt;
}

} // namespace nurv::test
