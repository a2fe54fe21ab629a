// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/RecoverCommand.h"

#include "app/PathNames.h"
#include "cli/BatchOptions.h"
#include "cli/Console.h"
#include "cli/ConsolePrompts.h"
#include "files/FileNames.h"
#include "journal/UnfinishedWork.h"
#include "process/TerminationSignals.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QLocale>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qsizetype kExamples = 10;
constexpr qsizetype kNoteExamples = 3;

QString counted(qsizetype count, const QString &what)
{
    return u"%1 %2%3"_s.arg(QString::number(count), what, count == 1 ? QString() : u"s"_s);
}

QString pathOf(const Leftover &leftover)
{
    return displayName(leftover.path);
}

/// A line of the list, without what its heading says.
QString lineFor(const Leftover &leftover)
{
    if (leftover.kind == Leftover::Kind::Aside)
        return u"%1, of %2"_s.arg(pathOf(leftover), displayName(leftover.output));
    return pathOf(leftover);
}

QString textOf(const QString &heading, const QStringList &lines)
{
    return lines.isEmpty() ? QString() : u"%1:\n  %2\n"_s.arg(heading, lines.join(u"\n  "_s));
}

QStringList linesFor(const QList<Leftover> &leftovers, bool withReasons)
{
    QStringList lines;
    for (const Leftover &leftover : leftovers)
        lines.append(withReasons ? u"%1: %2"_s.arg(lineFor(leftover), leftover.reason) : lineFor(leftover));
    return lines;
}

QList<Leftover> ofKind(const QList<Leftover> &leftovers, Leftover::Kind kind)
{
    QList<Leftover> found;
    std::copy_if(leftovers.begin(), leftovers.end(), std::back_inserter(found),
                 [kind](const Leftover &leftover) { return leftover.kind == kind; });
    return found;
}

QString listOf(const UnfinishedWork &work)
{
    const QList<Leftover> removals = work.leftoversTo(Leftover::Plan::Remove);
    QString text = textOf(u"Half made"_s, linesFor(ofKind(removals, Leftover::Kind::Output), false));
    text += textOf(u"Temporary"_s, linesFor(ofKind(removals, Leftover::Kind::Temporary), false));
    text += textOf(u"Moved aside, and to go back"_s, linesFor(work.leftoversTo(Leftover::Plan::PutBack), false));
    text += textOf(u"Not touched now"_s, linesFor(work.leftoversTo(Leftover::Plan::Wait), true));
    text += textOf(u"Not touched, for you to look at"_s, linesFor(work.leftoversTo(Leftover::Plan::Leave), true));
    return text + textOf(u"Journals that cannot be used"_s, work.defects());
}

/// What is to be done, as the middle of a question; empty when that is nothing.
QString actionsOf(const UnfinishedWork &work)
{
    QStringList actions;
    if (const int programs = work.runningPrograms(); programs > 0)
        actions.append(u"end %1 of that run"_s.arg(counted(programs, u"program"_s)));
    const QList<Leftover> removals = work.leftoversTo(Leftover::Plan::Remove);
    std::int64_t bytes = 0;
    for (const Leftover &leftover : removals)
        bytes += leftover.identity.size;
    if (!removals.isEmpty()) {
        actions.append(u"remove %1 (%2)"_s.arg(counted(removals.size(), u"file"_s),
                                               QLocale::c().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat)));
    }
    if (const qsizetype count = work.leftoversTo(Leftover::Plan::PutBack).size(); count > 0)
        actions.append(u"put %1 back"_s.arg(counted(count, u"file"_s)));
    return actions.size() < 2 ? actions.value(0)
                              : actions.first(actions.size() - 1).join(u", "_s) + u" and "_s + actions.last();
}

/// The beginning of what is to be done, for somebody who has not seen the list.
QString examplesOf(const UnfinishedWork &work)
{
    QStringList lines =
        linesFor(work.leftoversTo(Leftover::Plan::Remove) + work.leftoversTo(Leftover::Plan::PutBack), false);
    if (lines.size() > kExamples)
        lines = lines.first(kExamples) << u"and %1 more"_s.arg(lines.size() - kExamples);
    return lines.join(u'\n');
}

/// Returns Ok when the answer is yes.
ExitStatus ask(const UnfinishedWork &work, const ParsedArguments &arguments, Console &console, bool hasSeenTheList)
{
    const QString actions = actionsOf(work);
    if (actions.isEmpty())
        return ExitStatus::Ok;
    PromptAnswers answers;
    if (arguments.has(u"yes"_s) || arguments.has(u"no"_s))
        answers.answerAll = arguments.has(u"yes"_s);
    const TerminationSignals signalsToEnd;
    ConsolePrompts prompts(console, answers);
    prompts.setInterruptDescriptor(signalsToEnd.descriptor());
    const QString answer = prompts.ask({.title = u"Shall nurv %1?"_s.arg(actions),
                                        .message = hasSeenTheList ? QString() : examplesOf(work),
                                        .buttons = {u"Yes"_s, u"No"_s}});
    if (prompts.outcome() == ConsolePrompts::Outcome::Interrupted)
        return ExitStatus::Interrupted;
    if (prompts.outcome() == ConsolePrompts::Outcome::Unanswered)
        return ExitStatus::Usage;
    return answer == u"Yes" ? ExitStatus::Ok : ExitStatus::Failed;
}

QString outcomeText(const UnfinishedWork &done)
{
    const qsizetype removed = done.leftoversThatWere(Leftover::Outcome::Removed).size();
    const qsizetype back = done.leftoversThatWere(Leftover::Outcome::PutBack).size();
    QStringList parts;
    if (removed > 0)
        parts.append(u"%1 removed"_s.arg(counted(removed, u"file"_s)));
    if (back > 0)
        parts.append(u"%1 put back"_s.arg(counted(back, u"file"_s)));
    return parts.isEmpty() ? QString() : parts.join(u", "_s) + u".\n"_s;
}

/// What was to be done and was not.
QList<Leftover> failuresOf(const UnfinishedWork &done)
{
    QList<Leftover> failures = done.leftoversThatWere(Leftover::Outcome::Left);
    failures.removeIf([](const Leftover &leftover) { return leftover.plan == Leftover::Plan::Leave; });
    return failures;
}

QString wordFor(const Leftover &leftover)
{
    switch (leftover.outcome) {
    case Leftover::Outcome::Removed: return u"removed"_s;
    case Leftover::Outcome::PutBack: return u"put back"_s;
    case Leftover::Outcome::Open:
    case Leftover::Outcome::Left: break;
    }
    return u"left"_s;
}

QString kindWordFor(Leftover::Kind kind)
{
    switch (kind) {
    case Leftover::Kind::Output: return u"output"_s;
    case Leftover::Kind::Temporary: return u"temporary"_s;
    case Leftover::Kind::Aside: break;
    }
    return u"aside"_s;
}

void printJson(Console &console, const UnfinishedWork &work, ExitStatus status)
{
    for (const UnfinishedRun &run : work.runs()) {
        for (const Leftover &leftover : run.leftovers) {
            QJsonObject object{{u"type"_s, u"leftover"_s},
                               {u"kind"_s, kindWordFor(leftover.kind)},
                               {u"path"_s, pathOf(leftover)},
                               {u"state"_s, wordFor(leftover)}};
            if (leftover.kind == Leftover::Kind::Aside)
                object.insert(u"output"_s, displayName(leftover.output));
            if (!leftover.reason.isEmpty())
                object.insert(u"reason"_s, leftover.reason);
            console.writeJson(object);
        }
    }
    console.writeJson({{u"type"_s, u"recover"_s},
                       {u"sources"_s, QJsonArray::fromStringList(work.sources())},
                       {u"unusableJournals"_s, QJsonArray::fromStringList(work.defects())},
                       {u"runningPrograms"_s, work.runningPrograms()},
                       {u"exitStatus"_s, static_cast<int>(status)}});
}

bool isEverythingDone(const UnfinishedWork &done)
{
    return done.leftoversThatWere(Leftover::Outcome::Left).isEmpty() && done.defects().isEmpty()
           && done.runningPrograms() == 0;
}

CommandSpec makeSpec()
{
    return {.name = u"recover"_s,
            .summary = u"remove what runs that were killed left half made"_s,
            .synopsis = u"[OPTION]..."_s,
            .details = u"After a crash or a power cut: lists the outputs that were left half made, temporary\n"
                       "files, and files that were moved aside; after one question it removes the former\n"
                       "and puts the latter back. What may be complete is only named. Then it lists the\n"
                       "sources that were not finished. Programs of such a run that still work are ended."_s,
            .takesPaths = false,
            .options = joined(
                joined({{.name = u"dry-run"_s,
                         .summary = u"list only"_s,
                         .manual = u"Lists what there is to do, and changes nothing."_s},
                        {.name = u"json"_s, .summary = u"print one JSON object per file and one for the whole"_s},
                        {.name = u"quiet"_s, .summary = u"print nothing but the question and warnings"_s},
                        {.name = u"yes"_s, .summary = u"answer the question with \"Yes\""_s, .excluded = {u"no"_s}},
                        {.name = u"no"_s, .summary = u"answer the question with \"No\""_s}},
                       unusedOptions()),
                standingOptions())};
}

} // namespace

const CommandSpec &RecoverCommand::spec() const
{
    static const CommandSpec spec = makeSpec();
    return spec;
}

ExitStatus RecoverCommand::run(const ParsedArguments &arguments, Console &console) const
{
    const bool json = arguments.has(u"json"_s);
    const bool prints = !json && !arguments.has(u"quiet"_s);
    UnfinishedWork work = UnfinishedWork::find();
    ExitStatus status = work.isEmpty() ? ExitStatus::Ok : ExitStatus::Failed;
    if (prints)
        console.writeOutput(work.isEmpty() ? u"Nothing was left behind.\n"_s : listOf(work));
    if (!work.isEmpty() && !arguments.has(u"dry-run"_s)) {
        status = ask(work, arguments, console, prints);
        if (status == ExitStatus::Ok) {
            work = work.cleanUp();
            status = isEverythingDone(work) ? ExitStatus::Ok : ExitStatus::Failed;
            if (prints)
                console.writeOutput(outcomeText(work));
            for (const QString &line : linesFor(failuresOf(work), true))
                console.writeNote(u"left: "_s + line);
        }
    }
    if (json)
        printJson(console, work, status);
    else if (prints)
        console.writeOutput(textOf(u"These sources were not finished"_s, work.sources()));
    return status;
}

bool tellOfUnfinishedWork(Console &console)
{
    const UnfinishedWork work = UnfinishedWork::find();
    for (const QString &defect : work.defects())
        console.writeNote(u"what an earlier run noted cannot be used: "_s + defect);
    QStringList names;
    for (const Leftover::Plan plan : {Leftover::Plan::Remove, Leftover::Plan::PutBack, Leftover::Plan::Wait}) {
        for (const Leftover &leftover : work.leftoversTo(plan))
            names.append(lastPathComponent(displayName(leftover.path)));
    }
    if (names.isEmpty()) {
        if (const qsizetype count = work.leftoversTo(Leftover::Plan::Leave).size(); count > 0) {
            console.writeNote(u"an earlier run was interrupted; \"nurv recover\" names %1 to look at"_s.arg(
                counted(count, u"file"_s)));
        }
        return false;
    }
    const QString examples = names.first(std::min(names.size(), kNoteExamples)).join(u", "_s)
                             + (names.size() > kNoteExamples ? u", ..."_s : QString());
    console.writeNote(u"an earlier run left %1 (%2); \"nurv recover\" clears that up"_s.arg(
        counted(names.size(), u"unfinished file"_s), examples));
    return true;
}

} // namespace nurv
