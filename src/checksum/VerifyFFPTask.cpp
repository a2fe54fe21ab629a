// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/VerifyFFPTask.h"

#include "app/PathNames.h"
#include "base/NurvFailure.h"
#include "checksum/Fingerprint.h"
#include "checksum/ForeignList.h"
#include "checksum/ListEntries.h"
#include "engine/ProgramRunSync.h"
#include "files/FileStatus.h"
#include "process/ResourceFolder.h"
#include "programs/ExternalPrograms.h"
#include "programs/Flac.h"
#include "programs/Metaflac.h"
#include "programs/TestOutput.h"
#include "text/TextNumbers.h"

#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using State = ListedFile::State;

} // namespace

VerifyFFPTask::VerifyFFPTask(NURVTaskQueue *queue, const QString &fileName, std::shared_ptr<NURVTaskResults> results)
    : VerifyListTask(queue, fileName, std::move(results))
{
}

NeededPrograms VerifyFFPTask::neededPrograms() const
{
    return {{metaflac::program().name, flac::program().name}, {}};
}

QString VerifyFFPTask::openingLine() const
{
    return u"Verify FFP: %1\n"_s.arg(lastPathComponent(fileName()));
}

void VerifyFFPTask::verify()
{
    requireProgram(metaflac::program().name);
    requireProgram(flac::program().name);
    const QStringList paths = doVerifyFPP();
    if (paths.isEmpty())
        return;
    addLines(u"\nVerify Flac Files in %1\n"_s.arg(lastPathComponent(fileName())));
    verifyFlacFilesSync(paths);
}

std::vector<checksumList::Entry> VerifyFFPTask::ownEntries(const QString &text) const
{
    return checksumList::ffpEntries(checksumList::linesOf(text));
}

std::vector<checksumList::Entry> VerifyFFPTask::entriesOfOthers(const QString &text) const
{
    return foreignList::ffpEntries(text);
}

QStringList VerifyFFPTask::doVerifyFPP()
{
    const QString list = text();
    if (list.isEmpty())
        throw NurvFailure(u"the list is empty"_s);
    const auto lineCount = static_cast<double>(checksumList::linesOf(list).size());
    const QString folder = folderOf(fileName());
    foreignList::Files files(folder);
    QStringList kept;
    double done = 0;
    for (const checksumList::Entry &entry : entriesOf(list)) {
        if (entry.isEntry()) {
            setTopTextFieldString(u"Verifying "_s + entry.name);
            setProgressIndicatorValue(done * 100.0 / lineCount);
            updateStatus();
            const QString path =
                understandsOthers() ? files.find(entry.name) : checksumList::listedPath(folder, entry.name);
            if (check(entry, path))
                kept.append(path);
        } else {
            gather(entry.line + u" : Invalid checksum format\n"_s);
            addFile({.name = entry.line, .state = State::NotAnEntry});
        }
        ++done;
    }
    setProgressIndicatorValue(done * 100.0 / lineCount);
    updateStatus();
    reportGathered();
    kept.sort();
    return kept;
}

/// Returns whether the fingerprint fits.
bool VerifyFFPTask::check(const checksumList::Entry &entry, const QString &path)
{
    // A list may name a pipe, which would keep the program waiting.
    const QFileInfo named(path);
    const bool isOdd = named.exists() && !named.isFile();
    const QString computed = isOdd ? QString() : fingerprint(path).trimmed();
    ListedFile file{.name = entry.name, .state = State::Different};
    const bool isSame = understandsOthers() ? computed.section(u':', -1) == entry.expected
                                            : computed == entry.name + u':' + entry.expected;
    if (metaflac::tellsOfError(computed)) {
        gather(u"%1 : %2\n"_s.arg(computed, entry.name.trimmed()));
        file.state = isThere(path) ? State::Unreadable : State::Missing;
        file.detail = computed.section(u'\n', 0, 0);
    } else if (isSame) {
        gather(entry.name.trimmed() + u" : OK\n"_s);
        const std::optional<QString> fault = faultOfFingerprint(computed);
        file.state = fault ? State::Unreadable : State::Ok;
        file.detail = fault.value_or(QString());
        m_filesOfPath.emplace(path, fileCount());
    } else {
        gather(entry.name.trimmed() + u" : did not match fingerprint file\n"_s);
        if (!isThere(path))
            file.state = State::Missing;
        else if (isOdd)
            file.state = State::Unreadable;
    }
    addFile(file);
    return isSame;
}

void VerifyFFPTask::verifyFlacFilesSync(const QStringList &paths)
{
    for (qsizetype i = 0; i < paths.size(); ++i) {
        if (cancelled()) {
            addLines(u"canceled before %1 of %2 files were decoded\n"_s.arg(paths.size() - i).arg(paths.size()));
            return;
        }
        verifyFlacFile(paths.at(i));
    }
}

void VerifyFFPTask::verifyFlacFile(const QString &path)
{
    showStatus(u"Verifying FLAC File"_s);
    const QString name = lastPathComponent(path);
    QString log;
    ProgramRunSync run(programPath(flac::program().name), flac::testArguments(path));
    const ProgramRunSync::Ending ending = run.run([&](const QString &chunk) {
        const QString text = processFlacFileOutput(chunk, path);
        if (text == u"ok")
            log += testOutput::wholeLine(name);
        log += u"%1: %2\n"_s.arg(name, text);
        return true;
    });
    if (!ending.exit)
        throw NurvFailure(ending.startFailure);
    addLines(testOutput::tailOf(log));
    if (ending.succeeded())
        return;
    const bool wasEnded = ending.exit->signal != 0;
    const QString why = wasEnded ? killedProgramText(flac::program().name, ending.exit->signal, name).trimmed()
                                 : u"flac could not decode it to its end"_s;
    const auto [begin, end] = m_filesOfPath.equal_range(path);
    for (auto place = begin; place != end; ++place)
        mark(place->second, wasEnded ? State::Unreadable : State::Damaged, why);
}

QString VerifyFFPTask::processFlacFileOutput(QStringView chunk, const QString &path)
{
    const QString text = trimWhitespaceAndNewlines(trimBackspaces(chunk));
    if (text.contains(u'%') && text.contains(u", "_s)) {
        const double progress = leadingNumber(text.section(u", "_s, 1, 1).section(u'%', 0, 0));
        setTopTextFieldString(u"Verifying %1: %2%"_s.arg(lastPathComponent(path), sixDecimals(progress)));
        setProgressIndicatorValue(progress);
        updateStatus();
    }
    return text;
}

} // namespace nurv
