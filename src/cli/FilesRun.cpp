// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/FilesRun.h"

#include "app/FileArrivals.h"
#include "app/NURVController.h"
#include "base/NurvFailure.h"
#include "cli/Console.h"
#include "cli/ConsolePrompts.h"
#include "desktop/NullDesktopServices.h"
#include "journal/OutputJournal.h"
#include "settings/SettingsStore.h"
#include "text/FileNameCollator.h"
#include "text/PrintableText.h"
#include "toolbox/Toolbox.h"

#include <QJsonArray>

#include <exception>

#include <poll.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

InputFiles findFiles(const QList<QByteArray> &operands, Console &console, const FilesRun::Page &page)
{
    NURVController::registerDefaults(toolbox());
    SettingsStore::instance().setPersistence(SettingsStore::Persistence::MemoryOnly);
    ConsolePrompts prompts(console, {});
    NullDesktopServices services;
    const NURVController controller(prompts, services, toolbox());
    return collectInput(
        operands, controller.arrivals(),
        {.label = page.label, .door = Door::CommandLine, .paths = {}, .makesJob = page.takes});
}

} // namespace

FilesRun::FilesRun(const ParsedArguments &arguments, const QList<QByteArray> &operands, Console &console,
                   const Page &page)
    : m_console(console), m_isJson(arguments.has(u"json"_s)), m_isQuiet(arguments.has(u"quiet"_s)),
      m_input(findFiles(operands, console, page)), m_files(m_input.intake.accepted)
{
    FileNameCollator::sortPaths(m_files);
    m_files.removeDuplicates();
    for (const QString &line : std::as_const(m_input.refusals))
        tellProblem(line);
    for (const QString &line : std::as_const(m_input.skipped))
        note(line);
}

void FilesRun::tellProblem(const QString &problem)
{
    m_problems.append(problem);
    m_console.writeNote(problem);
    if (m_isJson)
        m_console.writeJson({{u"type"_s, u"problem"_s}, {u"problem"_s, problem}});
}

void FilesRun::fail(const QString &path, const QString &reason)
{
    m_problems.append(u"%1: %2"_s.arg(nameOf(path), reason));
    m_console.writeNote(m_problems.last());
    if (m_isJson)
        m_console.writeJson(
            {{u"type"_s, u"problem"_s}, {u"file"_s, nameOf(path)}, {u"path"_s, path}, {u"problem"_s, reason}});
}

void FilesRun::forFile(const QString &path, const std::function<QJsonObject()> &work)
{
    if (isToEnd()) {
        ++m_leftCount;
        return;
    }
    const auto failFor = [&](const QString &reason) { fail(path, reason.endsWith(u'.') ? reason.chopped(1) : reason); };
    try {
        const QJsonObject object = work();
        ++m_doneCount;
        if (m_journal)
            m_journal->markEnded(path);
        if (m_isJson)
            m_console.writeJson(object);
    } catch (const NurvFailure &failure) {
        failFor(failure.reason());
    } catch (const std::exception &failure) {
        failFor(QString::fromUtf8(failure.what()));
    }
}

void FilesRun::tellDone(const QJsonObject &object)
{
    ++m_doneCount;
    if (m_isJson)
        m_console.writeJson(object);
}

bool FilesRun::isToEnd() const
{
    pollfd signal{.fd = m_signals.descriptor(), .events = POLLIN, .revents = 0};
    return ::poll(&signal, 1, 0) > 0;
}

void FilesRun::note(const QString &line)
{
    if (!m_isQuiet)
        m_console.writeNote(line);
}

void FilesRun::print(const QString &text)
{
    if (!m_isJson)
        m_console.writeOutput(text);
}

QJsonObject FilesRun::tellChanges(const QString &path, const QStringList &changes)
{
    QString text = printableLine(nameOf(path)) + u'\n';
    for (const QString &change : changes.isEmpty() ? QStringList(u"nothing changes"_s) : changes)
        text += u"    "_s + change + u'\n';
    print(text);
    return {{u"type"_s, u"changes"_s},
            {u"file"_s, nameOf(path)},
            {u"path"_s, path},
            {u"changes"_s, QJsonArray::fromStringList(changes)}};
}

ExitStatus FilesRun::finish(const QString &done)
{
    if (m_leftCount > 0) {
        m_problems.append(u"interrupted: %1 %2 not looked at"_s.arg(m_leftCount)
                              .arg(m_leftCount == 1 ? u"file was"_s : u"files were"_s));
        m_console.writeNote(m_problems.last());
    }
    if (m_doneCount == 0 && m_problems.isEmpty()) {
        m_problems.append(u"there is nothing to do: no file was found that can be worked on"_s);
        m_console.writeNote(m_problems.last());
    } else if (!done.isEmpty()) {
        note(u"%1 %2 %3"_s.arg(m_doneCount).arg(m_doneCount == 1 ? u"file"_s : u"files"_s, done));
    }
    const ExitStatus status = m_leftCount > 0        ? ExitStatus::Interrupted
                              : m_problems.isEmpty() ? ExitStatus::Ok
                                                     : ExitStatus::Failed;
    if (m_isJson)
        m_console.writeJson({{u"type"_s, u"batch"_s},
                             {u"files"_s, m_doneCount},
                             {u"problems"_s, QJsonArray::fromStringList(m_problems)},
                             {u"exitStatus"_s, static_cast<int>(status)}});
    return status;
}

} // namespace nurv
