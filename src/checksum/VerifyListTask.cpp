// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/VerifyListTask.h"

#include "app/PathNames.h"
#include "base/NurvFailure.h"
#include "checksum/ForeignList.h"
#include "engine/NURVTaskResults.h"
#include "files/FileStatus.h"
#include "text/Utf8Text.h"

#include <QSet>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using State = ListedFile::State;

/// How a kind of finding is told of one file, and of several.
struct FindingWords {
    State state;
    QStringView one;
    QStringView several;
    bool isOfLines = false;
};

constexpr std::array kWords = {
    FindingWords{State::Missing, u"is missing", u"are missing"},
    FindingWords{State::Unreadable, u"could not be read", u"could not be read"},
    FindingWords{State::Different, u"is another one", u"are other ones"},
    FindingWords{State::Damaged, u"is damaged", u"are damaged"},
    FindingWords{State::NotAnEntry, u"is no entry", u"are no entries", true},
};

/// How much of a list is looked at for signs of another program.
constexpr qsizetype kSampleCharacters = 65'536;
constexpr std::ptrdiff_t kSampleFiles = 1000;

/// The first lines of a text.
QString sampleOf(const QString &text)
{
    return text.size() <= kSampleCharacters ? text : text.left(text.lastIndexOf(u'\n', kSampleCharacters) + 1);
}

QString hint()
{
    return u"try 'Understand lists of other programs' (--any-list)"_s;
}

} // namespace

QStringList statementsOn(const std::vector<ListedFile> &files)
{
    QStringList statements;
    for (const FindingWords &words : kWords) {
        const auto count = std::count_if(files.begin(), files.end(), [&](const ListedFile &file) { return file.state == words.state; });
        if (count == 0)
            continue;
        const QString things = (words.isOfLines ? u"line"_s : u"file"_s) + (files.size() == 1 ? u""_s : u"s"_s);
        statements.append(u"%1 of %2 %3 %4"_s.arg(QString::number(count), QString::number(files.size()), things,
                                                 count == 1 ? words.one : words.several));
    }
    return statements;
}

VerifyListTask::VerifyListTask(NURVTaskQueue *queue, const QString &fileName, std::shared_ptr<NURVTaskResults> results)
    : NURVInProcessTask(queue)
{
    setResults(std::move(results));
    setSourcePath(fileName);
    nameRow(lastPathComponent(fileName));
}

void VerifyListTask::doStartTask()
{
    showStatus(openingStatus());
    addLines(openingLine());
    showStarted();
    try {
        verify();
    } catch (const NurvFailure &failure) {
        // What was seen until then counts.
        reportGathered();
        ownOutcome().listedFiles = std::exchange(m_files, {});
        failFor(failure.reason());
        return;
    }
    if (!cancelled())
        conclude();
}

void VerifyListTask::failFor(const QString &reason)
{
    QString told = reason;
    if (!understandsOthers() && isOfAnotherProgram())
        told += u", "_s + hint();
    ownOutcome().problem = told.section(u'\n', 0, 0);
    failWith(told + u'\n');
}

QString VerifyListTask::text() const
{
    QString text = understandsOthers() ? foreignList::read(fileName()) : checksumList::readList(fileName());
    // No file has it in its name, and the system takes it for the end of one.
    return text.replace(QChar::Null, QChar::ReplacementCharacter);
}

std::vector<checksumList::Entry> VerifyListTask::entriesOf(const QString &text) const
{
    return understandsOthers() ? entriesOfOthers(text) : ownEntries(text);
}

void VerifyListTask::reportGathered()
{
    addLines(std::exchange(m_gathered, {}));
}

/// Whether it begins with entries that are none, or other ones, for this program. The list is read once more for that.
bool VerifyListTask::isOfAnotherProgram() const
{
    const auto keyOf = [](const checksumList::Entry &entry) { return std::pair(entry.name.trimmed(), entry.expected); };
    try {
        const std::vector<checksumList::Entry> ofOthers = entriesOfOthers(sampleOf(foreignList::read(fileName())));
        QSet<std::pair<QString, QString>> own;
        if (const std::optional<QString> text = fromStrictUtf8(checksumList::readListBytes(fileName()))) {
            for (const checksumList::Entry &entry : ownEntries(sampleOf(*text)))
                own.insert(keyOf(entry));
        }
        return std::any_of(ofOthers.begin(), ofOthers.end(), [&](const checksumList::Entry &entry) {
            return entry.isEntry() && !own.contains(keyOf(entry));
        });
    } catch (const NurvFailure &) {
        // It cannot be read in any way, which the job has told.
        return false;
    }
}

/// Whether a file that was not found, or has another name for this program, is there for those who take names less strictly.
bool VerifyListTask::hasNamesForOthers() const
{
    const QString folder = folderOf(fileName());
    foreignList::Files files(folder);
    // Of a long list the first files tell.
    const auto end = m_files.begin() + std::min<std::ptrdiff_t>(std::ssize(m_files), kSampleFiles);
    return std::any_of(m_files.begin(), end, [&](const ListedFile &file) {
        const bool hasFolder = needsBareNames() && file.state == State::Different && file.name.contains(u'/');
        if (!hasFolder && file.state != State::Missing)
            return false;
        const QString found = files.find(file.name);
        return isThere(found) && (hasFolder || found != checksumList::listedPath(folder, file.name));
    });
}

void VerifyListTask::mark(std::size_t index, State state, const QString &detail)
{
    m_files[index].state = state;
    m_files[index].detail = detail;
}

void VerifyListTask::conclude()
{
    QStringList statements = statementsOn(m_files);
    if (m_files.empty())
        statements.append(u"the list has no entries"_s);
    if (!statements.isEmpty() && !understandsOthers() && (isOfAnotherProgram() || hasNamesForOthers()))
        statements.append(hint());
    ownOutcome().listedFiles = std::exchange(m_files, {});
    if (statements.isEmpty())
        return;
    ownOutcome().problem = statements.join(u", "_s);
    for (const QString &statement : std::as_const(statements))
        addLines(statement + u'\n');
    setError(true);
}

} // namespace nurv
