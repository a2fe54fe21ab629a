// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TrackNameInputController.h"

#include "app/PathNames.h"
#include "app/TrackNames.h"
#include "app/TrackNamesFile.h"
#include "app/UserPrompts.h"
#include "base/NotificationCenter.h"
#include "text/PrintableText.h"

#include <QLocale>
#include <QScopedValueRollback>
#include <QStringView>
#include <QTextBoundaryFinder>

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// "1 name", "1,200 names".
QString counted(qsizetype number, const QString &noun)
{
    return QLocale().toString(number) + u' ' + noun + (number == 1 ? QString() : u"s"_s);
}

/// Where the line ends that loses `number` characters, as a reader counts them: an accent belongs
/// to its letter. Nothing when the line has fewer.
std::optional<qsizetype> placeOfCharacter(const QString &line, int number, bool fromEnd)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, line);
    if (fromEnd)
        finder.toEnd();
    for (int count = 0; count < number; ++count) {
        if ((fromEnd ? finder.toPreviousBoundary() : finder.toNextBoundary()) < 0)
            return std::nullopt;
    }
    return finder.position();
}

/// The lines without those characters, each with a line feed behind it; shorter ones are dropped.
QString trimmedLines(const QString &lines, const TrimCharsObject &trim)
{
    const bool fromEnd = trim.position != 0;
    QString trimmed;
    for (const QString &line : lines.split(u'\n')) {
        if (const std::optional<qsizetype> place = placeOfCharacter(line, trim.number, fromEnd))
            trimmed += (fromEnd ? line.first(*place) : line.sliced(*place)) + u'\n';
    }
    return trimmed;
}

} // namespace

TrackNameInputController::TrackNameInputController(UserPrompts &prompts) : m_prompts(prompts), m_trimPanel(prompts)
{
    connect(&inputText, &Control::valueChanged, this, &TrackNameInputController::noteStep);
}

void TrackNameInputController::show(std::optional<int> fileCount)
{
    m_fileCount = fileCount;
    m_isVisible = true;
    Q_EMIT stateChanged();
    Q_EMIT shown();
}

void TrackNameInputController::hide()
{
    m_isVisible = false;
    note.setText({});
    Q_EMIT hidden();
}

void TrackNameInputController::inputOK()
{
    hide();
    NotificationCenter::instance().post(QString::fromUtf16(NURVTrackNamesEnteredNotification), inputText.lines());
}

void TrackNameInputController::inputCancel()
{
    hide();
}

void TrackNameInputController::setNames(const QString &text)
{
    change(text, u"Set Track Name Text"_s);
}

void TrackNameInputController::setInputTextString(const QString &text)
{
    change(text, u"Trim Text"_s);
}

void TrackNameInputController::clear()
{
    change({}, u"Clear"_s);
}

void TrackNameInputController::change(const QString &text, const QString &stepName)
{
    const QScopedValueRollback name(m_stepName, std::optional(stepName));
    inputText.setText(text);
}

void TrackNameInputController::noteStep()
{
    const TextChange change = changeBetween(m_knownText, namesText());
    m_knownText = namesText();
    if (m_stepName)
        m_history.add(*m_stepName, change);
    else if (!m_isMoving)
        m_history.addTyping(u"Typing"_s, change);
    note.setText({});
    Q_EMIT stateChanged();
}

void TrackNameInputController::undo()
{
    if (undoName())
        move(m_history.undo());
}

void TrackNameInputController::redo()
{
    if (redoName())
        move(m_history.redo());
}

void TrackNameInputController::move(const TextChange &change)
{
    const QScopedValueRollback moving(m_isMoving, true);
    inputText.setText(change.appliedTo(namesText()));
}

QString TrackNameInputController::countText() const
{
    const qsizetype names = inputText.lines().size();
    const QString text = counted(names, u"name"_s);
    if (!m_fileCount)
        return text;
    const QString both = u"%1 for %2"_s.arg(text, counted(*m_fileCount, u"file"_s));
    const qsizetype missing = *m_fileCount - names;
    if (names == 0 || missing == 0)
        return both;
    return both + u": "_s + QLocale().toString(qAbs(missing)) + (missing > 0 ? u" missing"_s : u" too many"_s);
}

std::optional<QString> TrackNameInputController::chooseTrackNamesFile()
{
    return m_prompts.chooseFile({.title = u"Choose file with track names"_s, .option = u"names"_s});
}

void TrackNameInputController::loadTrackNamesFromFile()
{
    if (const std::optional<QString> path = chooseTrackNamesFile())
        loadTrackNames(*path);
}

void TrackNameInputController::loadTrackNames(const QString &path)
{
    const TrackNamesFile file = readTrackNamesFile(path);
    const QString name = u'“' + printableLine(lastPathComponent(path)) + u'”';
    if (!file.names) {
        m_prompts.ask({.title = u"The track names in %1 could not be loaded."_s.arg(name),
                       .message = file.problem,
                       .buttons = {u"OK"_s}});
        return;
    }
    setNames(*file.names);
    note.setText(file.names->isEmpty() ? u"No names: no line of %1 begins with the number 1."_s.arg(name)
                                       : u"Loaded from %1."_s.arg(name));
}

void TrackNameInputController::removeCharactersFromText()
{
    const std::optional<TrimCharsObject> trim = m_trimPanel.runPanel();
    const qsizetype length = inputText.selectionLength();
    if (!trim || trim->number <= 0 || length == 0)
        return;
    const QStringView text = namesText();
    const qsizetype start = inputText.selectionStart();
    QStringView behind = text.sliced(start + length);
    // The new lines end in one already.
    if (behind.startsWith(u'\n'))
        behind = behind.sliced(1);
    setInputTextString(text.first(start).toString() + trimmedLines(text.sliced(start, length).toString(), *trim)
                       + behind.toString());
}

} // namespace nurv
