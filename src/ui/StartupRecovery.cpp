// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/StartupRecovery.h"

#include "app/FileArrivals.h"
#include "app/FileIntake.h"
#include "app/NURVController.h"
#include "app/PathNames.h"
#include "app/UserPrompts.h"
#include "base/GuiThread.h"
#include "base/Log.h"
#include "base/WorkerThreads.h"
#include "files/FileNames.h"
#include "journal/UnfinishedWork.h"

#include <QLocale>
#include <QPointer>

#include <algorithm>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qsizetype kExamples = 10;
const QString kKeep = u"Keep"_s;
const QString kRemove = u"Remove"_s;
const QString kNotNow = u"Not Now"_s;
const QString kAddAgain = u"Add Again"_s;

QString counted(qsizetype count, const QString &what)
{
    return u"%1 %2%3"_s.arg(QString::number(count), what, count == 1 ? QString() : u"s"_s);
}

QString examples(const QStringList &lines)
{
    if (lines.size() <= kExamples)
        return lines.join(u'\n');
    return lines.first(kExamples).join(u'\n') + u"\nand %1 more"_s.arg(lines.size() - kExamples);
}

QStringList pathsOf(const QList<Leftover> &leftovers)
{
    QStringList paths;
    for (const Leftover &leftover : leftovers)
        paths.append(displayName(leftover.path));
    return paths;
}

QStringList reasonsOf(const QList<Leftover> &leftovers)
{
    QStringList lines;
    for (const Leftover &leftover : leftovers)
        lines.append(u"%1: %2"_s.arg(displayName(leftover.path), leftover.reason));
    return lines;
}

QString sizeOf(const QList<Leftover> &leftovers)
{
    std::int64_t bytes = 0;
    for (const Leftover &leftover : leftovers)
        bytes += leftover.identity.size;
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

/// What the button does, as a sentence without its subject.
QString actionsOf(const UnfinishedWork &work)
{
    QStringList actions;
    if (const int programs = work.runningPrograms(); programs > 0)
        actions.append(u"ends %1 of that run"_s.arg(counted(programs, u"program"_s)));
    if (const QList<Leftover> removals = work.leftoversTo(Leftover::Plan::Remove); !removals.isEmpty())
        actions.append(u"removes %1 (%2)"_s.arg(counted(removals.size(), u"file"_s), sizeOf(removals)));
    if (const qsizetype count = work.leftoversTo(Leftover::Plan::PutBack).size(); count > 0)
        actions.append(u"puts %1 back that had been moved aside"_s.arg(counted(count, u"file"_s)));
    if (const qsizetype count = work.sources().size(); count > 0)
        actions.append(u"adds %1 that %2 not finished to the list again"_s.arg(counted(count, u"file"_s),
                                                                               count == 1 ? u"was"_s : u"were"_s));
    if (actions.size() < 2)
        return actions.value(0);
    return actions.first(actions.size() - 1).join(u", "_s) + u" and "_s + actions.last();
}

/// Nothing when there is nothing to tell.
std::optional<Alert> questionAbout(const UnfinishedWork &work)
{
    const QList<Leftover> todo = work.leftoversTo(Leftover::Plan::Remove) + work.leftoversTo(Leftover::Plan::PutBack);
    const QList<Leftover> named = work.leftoversTo(Leftover::Plan::Leave);
    QStringList paragraphs;
    if (!todo.isEmpty())
        paragraphs.append(u"It left behind:\n"_s + examples(pathsOf(todo)));
    if (!named.isEmpty())
        paragraphs.append(u"These stay as they are, for you to look at:\n"_s + examples(reasonsOf(named)));
    Alert alert{.title = u"An earlier run was interrupted"_s, .message = {}, .buttons = {u"OK"_s}};
    if (!todo.isEmpty() || work.runningPrograms() > 0) {
        alert.buttons = {kKeep, kRemove};
        paragraphs.append(u"\"%1\" %2. \"%3\" changes nothing, and the next start asks again."_s.arg(
            kRemove, actionsOf(work), kKeep));
    } else if (const QStringList sources = work.sources(); !sources.isEmpty()) {
        alert.buttons = {kNotNow, kAddAgain};
        paragraphs.append(u"Not finished:\n"_s + examples(sources));
        paragraphs.append(u"\"%1\" %2."_s.arg(kAddAgain, actionsOf(work)));
    }
    alert.message = paragraphs.join(u"\n\n"_s);
    return paragraphs.isEmpty() ? std::nullopt : std::optional(alert);
}

/// The page that made the output.
QString labelFor(const QByteArray &output)
{
    const QString format = formatWord(displayName(output));
    const bool isPlain = format == u"WAV" || format == u"AIF" || format == u"AIFF";
    return isPlain ? u"decode"_s : u"encode"_s;
}

} // namespace

StartupRecovery::StartupRecovery(NURVController &controller, QObject *parent)
    : QObject(parent), m_controller(controller)
{
}

/// Does the work on another thread, and what it returns on this one, unless this object
/// has gone by then.
void StartupRecovery::onWorker(const std::function<std::function<void()>()> &work)
{
    workerThreads::startOrRun([self = QPointer<StartupRecovery>(this), work] {
        postToGuiThread([self, next = work()] {
            if (self)
                next();
        });
    });
}

void StartupRecovery::start()
{
    onWorker([this] { return [this, work = UnfinishedWork::find()] { ask(work); }; });
}

void StartupRecovery::ask(const UnfinishedWork &work)
{
    for (const QString &defect : work.defects())
        qCWarning(journalLog).noquote() << "Not used:" << defect;
    const std::optional<Alert> question = questionAbout(work);
    const QPointer<StartupRecovery> self(this);
    const QString answer = question ? m_controller.prompts().ask(*question) : kKeep;
    if (!self)
        return;
    if (answer == kKeep || answer == kNotNow)
        Q_EMIT finished();
    else
        cleanUp(work);
}

void StartupRecovery::cleanUp(const UnfinishedWork &work)
{
    onWorker([this, work] { return [this, done = work.cleanUp()] { tell(done); }; });
}

void StartupRecovery::tell(const UnfinishedWork &done)
{
    QList<Leftover> failures = done.leftoversThatWere(Leftover::Outcome::Left);
    failures.removeIf([](const Leftover &leftover) { return leftover.plan == Leftover::Plan::Leave; });
    const QPointer<StartupRecovery> self(this);
    if (!failures.isEmpty()) {
        m_controller.prompts().ask({.title = u"Some files were not removed"_s,
                                    .message = examples(reasonsOf(failures)),
                                    .buttons = {u"OK"_s}});
    }
    if (!self)
        return;
    QList<Intake> intakes;
    for (const UnfinishedRun &run : done.runs()) {
        for (const UnfinishedSource &unfinished : run.sources) {
            const QString label = labelFor(unfinished.output);
            auto intake = std::find_if(intakes.begin(), intakes.end(),
                                       [&label](const Intake &other) { return other.label == label; });
            if (intake == intakes.end())
                intake = intakes.insert(intakes.end(), {.label = label, .sources = {}});
            if (const std::optional<QString> path = fileNameFromBytes(unfinished.source))
                intake->sources.append(*path);
        }
    }
    offer(intakes);
}

void StartupRecovery::offer(const QList<Intake> &intakes)
{
    onWorker([this, &controller = m_controller, intakes] {
        QList<std::pair<QString, FileIntake>> found;
        for (const Intake &intake : intakes) {
            FileIntake files;
            files.accepted =
                controller.arrivals().search({.label = intake.label, .door = Door::List, .paths = intake.sources}).accepted;
            if (!files.accepted.isEmpty())
                found.append({intake.label, files});
        }
        return [this, found] {
            for (const auto &[label, files] : found) {
                m_controller.arrivals().deliver(label, files);
                m_controller.selectTab(label);
            }
            Q_EMIT finished();
        };
    });
}

} // namespace nurv
