// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/VerifyST5Task.h"

#include "app/PathNames.h"
#include "base/NurvFailure.h"
#include "checksum/ForeignList.h"
#include "checksum/ListEntries.h"
#include "engine/ProgramRunSync.h"
#include "files/FileStatus.h"
#include "process/ResourceFolder.h"
#include "programs/ExternalPrograms.h"
#include "programs/Shntool.h"
#include "text/TextNumbers.h"

#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using State = ListedFile::State;

/// Of "digest  [shntool]  name".
QString digestIn(const QString &answer)
{
    return answer.section(checksumList::kSt5Marker.toString(), 0, 0);
}

State stateOf(const QString &path, bool isSame)
{
    if (!isThere(path))
        return State::Missing;
    if (!QFileInfo(path).isReadable())
        return State::Unreadable;
    return isSame ? State::Ok : State::Different;
}

} // namespace

VerifyST5Task::VerifyST5Task(NURVTaskQueue *queue, const QString &fileName, std::shared_ptr<NURVTaskResults> results)
    : VerifyListTask(queue, fileName, std::move(results))
{
}

NeededPrograms VerifyST5Task::neededPrograms() const
{
    return {{shntool::program().name}, {}};
}

QString VerifyST5Task::openingLine() const
{
    return u"Verify ST5: %1\n"_s.arg(lastPathComponent(fileName()));
}

void VerifyST5Task::verify()
{
    requireProgram(shntool::program().name);
    doCreateST5();
}

std::vector<checksumList::Entry> VerifyST5Task::ownEntries(const QString &text) const
{
    return checksumList::st5Entries(checksumList::linesOf(text));
}

std::vector<checksumList::Entry> VerifyST5Task::entriesOfOthers(const QString &text) const
{
    return foreignList::st5Entries(text);
}

void VerifyST5Task::doCreateST5()
{
    const QString folder = folderOf(fileName());
    foreignList::Files files(folder);
    for (const checksumList::Entry &entry : entriesOf(text())) {
        if (entry.isEntry()) {
            check(entry, understandsOthers() ? files.find(entry.name) : checksumList::listedPath(folder, entry.name));
        } else {
            gather(entry.line + u" : Invalid checksum format\n"_s);
            addFile({.name = entry.line, .state = State::NotAnEntry});
        }
    }
    reportGathered();
}

void VerifyST5Task::check(const checksumList::Entry &entry, const QString &path)
{
    const QString name = lastPathComponent(entry.name);
    const Answer answer = st5(path);
    // Who ends the programs of a canceled check wants no others to begin.
    if (!answer.failure.isEmpty() && cancelled())
        throw NurvFailure(answer.failure);
    const bool isWarning = answer.text.contains(u"warning"_s);
    const bool isSame =
        !isWarning && (understandsOthers() ? digestIn(answer.text) == entry.expected : answer.text == entry.line);
    if (isWarning)
        gather(u"%1 : %2\n"_s.arg(name, answer.text));
    else
        gather(name + (isSame ? u" : OK\n"_s : u" : did not match shntool md5 file\n"_s));
    ListedFile file{.name = entry.name,
                    .state = stateOf(path, isSame || answer.text == entry.line),
                    .detail = isWarning ? answer.text : QString()};
    if (!answer.failure.isEmpty())
        file = {.name = entry.name, .state = State::Unreadable, .detail = answer.failure};
    addFile(file);
}

VerifyST5Task::Answer VerifyST5Task::st5(const QString &path)
{
    showMainLine(lastPathComponent(path));
    ProgramRunSync run(programPath(shntool::program().name), shntool::hashArguments(path));
    // A program cannot be started in a folder that a list has made up; the file is not there then.
    if (QFileInfo(folderOf(path)).isDir())
        run.setDirectory(folderOf(path));
    QString written;
    const ProgramRunSync::Ending ending = run.run([&](const QString &chunk) {
        showProgress(chunk);
        written += chunk;
        return true;
    });
    if (!ending.exit)
        throw NurvFailure(ending.startFailure);
    Answer answer{.text = processTaskOutput(written, path).trimmed()};
    if (ending.exit->signal != 0)
        answer.failure = killedProgramText(shntool::program().name, ending.exit->signal, lastPathComponent(path)).trimmed();
    return answer;
}

void VerifyST5Task::showProgress(QStringView chunk)
{
    const QString text = trimBackspaces(chunk);
    const qsizetype percent = text.indexOf(u'%');
    if (percent < 0)
        return;
    const double progress = leadingNumber(QStringView(text).first(percent));
    setTopTextFieldString(u"Verifying: %1%"_s.arg(sixDecimals(progress)));
    setProgressIndicatorValue(progress);
    updateStatus();
}

QString VerifyST5Task::processTaskOutput(QStringView output, const QString &path)
{
    const QString name = lastPathComponent(path);
    QString digest;
    QString warnings;
    for (const QString &ended : checksumList::linesOf(output)) {
        const QString line = trimBackspaces(ended);
        if (const qsizetype marker = line.indexOf(checksumList::kSt5Marker); marker >= 0)
            digest = line.first(marker + checksumList::kSt5Marker.size());
        else if (const qsizetype warning = line.indexOf(u" warning: "_s); warning >= 0)
            warnings = line.sliced(warning);
    }
    const QString answer = warnings.isEmpty() ? digest : warnings;
    return answer.isEmpty() ? QString() : answer + name;
}

} // namespace nurv
