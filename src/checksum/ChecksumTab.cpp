// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/ChecksumTab.h"

#include "app/NURVController.h"
#include "app/PathNames.h"
#include "base/Version.h"
#include "checksum/ChecksumList.h"
#include "checksum/CheckSummary.h"
#include "checksum/CreateAllListsTask.h"
#include "checksum/CreateMD5Task.h"
#include "checksum/CreateST5Task.h"
#include "checksum/Fingerprint.h"
#include "checksum/VerifyFFPTask.h"
#include "checksum/VerifyFileTask.h"
#include "checksum/VerifyMD5Task.h"
#include "checksum/VerifyST5Task.h"
#include "engine/NURVTaskQueue.h"
#include "engine/NURVTaskResults.h"
#include "files/FileStatus.h"
#include "files/TextFile.h"
#include "process/ResourceFolder.h"
#include "programs/Flac.h"
#include "programs/Metaflac.h"
#include "programs/MonkeysAudio.h"
#include "programs/Shntool.h"
#include "programs/Ttaenc.h"
#include "programs/Wavpack.h"
#include "settings/SettingsStore.h"

#include <QScopeGuard>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

bool isNamedAfterFolder()
{
    return SettingsStore::instance().boolean(u"checksumFileUsesOutputDirName"_s);
}

/// A list of all files of a folder would have itself among them when it is made once more, as it was before.
QStringList without(const QStringList &files, const QStringList &lists)
{
    QStringList others;
    std::copy_if(files.begin(), files.end(), std::back_inserter(others), [&](const QString &file) {
        return !checksumList::kindOfList(file) || std::none_of(lists.begin(), lists.end(), [&](const QString &list) {
            return isSameEntry(file, list);
        });
    });
    return others;
}

} // namespace

ChecksumTab::ChecksumTab(NURVController &controller)
    : BaseTab(controller, u"checksum"_s),
      commandOptions({u"Verify lossless files"_s, u"Create checksum file"_s, u"Verify checksum files"_s}),
      createChecksumOptions({u"MD5"_s, u"ST5"_s, u"FFP"_s, u"All"_s}, 4)
{
    anyListButton.bindToSetting(u"checksumAnyList"_s);
    connect(&commandOptions, &Control::valueChanged, this, &ChecksumTab::changeDisplayOptions);
    displayRelevantOptions();
}

void ChecksumTab::displayRelevantOptions()
{
    const bool creates = commandOptions.selectedRow() == CreateList;
    createChecksumOptions.setEnabled(creates);
    sourceSaveButton.setEnabled(creates);
    anyListButton.setEnabled(commandOptions.selectedRow() == VerifyLists);
}

void ChecksumTab::executeCommand()
{
    m_hasWrittenList = false;
    if (fileNames().isEmpty())
        return;
    if (commandOptions.selectedRow() == CreateList)
        createSelected();
    else
        queueVerifying();
}

NeededPrograms ChecksumTab::neededPrograms() const
{
    NeededPrograms programs;
    if (commandOptions.selectedRow() != CreateList) {
        for (const std::shared_ptr<NURVTask> &job : verifyingJobs(std::make_shared<NURVTaskResults>()))
            programs.add(job->neededPrograms());
        return programs;
    }
    const QString title = createChecksumOptions.selectedTitle();
    if (title == u"All" && !fileNames().isEmpty())
        return CreateAllListsTask(&nurvController().taskQueue(), fileNames(), {}).neededPrograms();
    if (title == u"FFP" && !filesThat(&checksumList::takesFfp).isEmpty())
        programs.add({{metaflac::program().name}, {}});
    if (title == u"ST5" && !fileNames().isEmpty())
        programs.add(NeededPrograms::ofRun(shntool::program().name, shntool::hashListArguments(fileNames())));
    return programs;
}

ChecksumTab::Jobs ChecksumTab::verifyingJobs(const std::shared_ptr<NURVTaskResults> &results) const
{
    const bool verifiesLists = commandOptions.selectedRow() == VerifyLists;
    Jobs jobs;
    for (const QString &path : fileNames()) {
        if (auto job = verifiesLists ? jobForList(path, results) : jobForFile(path, results))
            jobs.push_back(std::move(job));
    }
    return jobs;
}

std::shared_ptr<NURVTask> ChecksumTab::jobForFile(const QString &path,
                                                  const std::shared_ptr<NURVTaskResults> &results) const
{
    NURVTaskQueue *const queue = &nurvController().taskQueue();
    const QString format = formatWord(path);
    if (format == u"FLAC")
        return verifyFlac(path, results, queue);
    if (format == u"APE")
        return verifyAPE(path, results, queue);
    if (format == u"WV")
        return verifyWavepack(path, results, queue);
    if (format == u"TTA")
        return verifyTTA(path, results, queue);
    return nullptr;
}

std::shared_ptr<NURVTask> ChecksumTab::jobForList(const QString &path,
                                                  const std::shared_ptr<NURVTaskResults> &results) const
{
    NURVTaskQueue *const queue = &nurvController().taskQueue();
    const std::optional<checksumList::ListKind> kind = checksumList::kindOfList(path);
    std::shared_ptr<VerifyListTask> job;
    if (kind == checksumList::ListKind::Md5)
        job = std::make_shared<VerifyMD5Task>(queue, path, results);
    else if (kind == checksumList::ListKind::St5)
        job = std::make_shared<VerifyST5Task>(queue, path, results);
    else if (kind == checksumList::ListKind::Ffp)
        job = std::make_shared<VerifyFFPTask>(queue, path, results);
    if (job)
        job->setUnderstandsOthers(anyListButton.isOn());
    return job;
}

void ChecksumTab::queueVerifying()
{
    const auto results = std::make_shared<NURVTaskResults>();
    const bool checksLists = commandOptions.selectedRow() == VerifyLists;
    results->setFrame(
        std::make_shared<CheckSummary>(checksLists ? CheckSummary::Kind::Lists : CheckSummary::Kind::Files));
    const Jobs jobs = verifyingJobs(results);
    for (const std::shared_ptr<NURVTask> &job : jobs)
        results->addTaskInSet(*job);
    if (!jobs.empty())
        nurvController().taskQueue().addTasks(jobs);
    clearFiles();
}

std::shared_ptr<NURVAsyncNSTask> ChecksumTab::verifyFlac(const QString &path,
                                                         const std::shared_ptr<NURVTaskResults> &results,
                                                         NURVTaskQueue *queue) const
{
    auto job =
        std::make_shared<VerifyFlacTask>(results, queue, programPath(flac::program().name), flac::testArguments(path));
    job->setTitle(u"Verify FLAC"_s);
    return job;
}

std::shared_ptr<NURVAsyncNSTask> ChecksumTab::verifyAPE(const QString &path,
                                                        const std::shared_ptr<NURVTaskResults> &results,
                                                        NURVTaskQueue *queue) const
{
    return std::make_shared<VerifyApeTask>(results, queue, programPath(monkeysAudio::program().name),
                                           monkeysAudio::testArguments(path));
}

std::shared_ptr<NURVAsyncNSTask> ChecksumTab::verifyWavepack(const QString &path,
                                                             const std::shared_ptr<NURVTaskResults> &results,
                                                             NURVTaskQueue *queue) const
{
    return std::make_shared<VerifyWavepackTask>(results, queue, programPath(wavpack::decoder().name),
                                                wavpack::testArguments(path));
}

std::shared_ptr<NURVAsyncNSTask> ChecksumTab::verifyTTA(const QString &path,
                                                        const std::shared_ptr<NURVTaskResults> &results,
                                                        NURVTaskQueue *queue) const
{
    return std::make_shared<VerifyTTATask>(results, queue, programPath(ttaenc::program().name),
                                           ttaenc::testArguments(path));
}

QStringList ChecksumTab::filesThat(bool (*isTaken)(const QString &path)) const
{
    QStringList files;
    std::copy_if(fileNames().begin(), fileNames().end(), std::back_inserter(files), isTaken);
    return files;
}

void ChecksumTab::createSelected()
{
    NURVTaskQueue &queue = nurvController().taskQueue();
    const QString title = createChecksumOptions.selectedTitle();
    const bool sourceSave = sourceSaveButton.isOn();
    const auto add = [&queue](const std::shared_ptr<NURVTask> &job) {
        if (job)
            queue.addTask(job);
    };
    if (title == u"MD5") {
        add(createMD5(fileNames(), &queue, sourceSave));
    } else if (title == u"ST5") {
        const QStringList files = filesThat(&checksumList::takesSt5);
        if (!files.isEmpty())
            add(createST5(files, &queue, sourceSave));
    } else if (title == u"FFP") {
        const QStringList files = filesThat(&checksumList::takesFfp);
        // Who gives up the choice of a place keeps the list here, and only here.
        if (!files.isEmpty() && !createFFP(files))
            return;
    } else if (title == u"All") {
        add(createAll(fileNames(), &queue, sourceSave));
    }
    clearFiles();
}

std::shared_ptr<NURVTask> ChecksumTab::createAll(const QStringList &files, NURVTaskQueue *queue, bool sourceSave)
{
    const bool isBeside = sourceSave && checksumList::areAllSameDirectory(files);
    const std::optional<QString> folder = isBeside ? folderOf(files.first()) : chooseOutputFolder();
    if (!folder)
        return nullptr;
    const bool isNamed = isNamedAfterFolder();
    const QString extension = SettingsStore::instance().string(u"ffpExtension"_s);
    const CreateAllListsTask::Lists lists{
        .md5 = joinPath(*folder, checksumList::md5FileName(*folder, isNamed)),
        .st5 = joinPath(*folder, checksumList::st5FileName(*folder, isNamed)),
        .ffp = joinPath(*folder, checksumList::ffpFileName(*folder, extension, isNamed))};
    const QStringList paths{lists.md5, lists.st5, lists.ffp};
    const QStringList listed = without(files, paths);
    const bool canBe =
        std::all_of(paths.begin(), paths.end(), [&](const QString &path) { return canBeList(path, listed); });
    if (!canBe || !mayReplace(paths))
        return nullptr;
    return std::make_shared<CreateAllListsTask>(queue, listed, lists);
}

std::optional<QString> ChecksumTab::listPath(const QStringList &files, bool sourceSave, const QString &nameInFolder,
                                             const QString &suggestedName, const QString &title)
{
    std::optional<QString> path;
    if (sourceSave && checksumList::areAllSameDirectory(files))
        path = joinPath(folderOf(files.first()), nameInFolder);
    else
        path = openSavePanel(suggestedName, title);
    return path && canBeList(*path, without(files, {*path})) ? path : std::nullopt;
}

bool ChecksumTab::canBeList(const QString &path, const QStringList &listed)
{
    return canBeText(path, listed, u"the list"_s, u"It is one of the files that are to be listed."_s);
}

bool ChecksumTab::mayReplace(const QStringList &paths)
{
    QStringList existing;
    for (const QString &path : paths) {
        if (isThere(path))
            existing.append(lastPathComponent(path));
    }
    if (existing.isEmpty() || replaceListsButton.isOn())
        return true;
    const Alert question{.title = u"%1 %2 already.  Do you want to replace %3?"_s.arg(
                             existing.join(u", "_s), existing.size() == 1 ? u"exists"_s : u"exist"_s,
                             existing.size() == 1 ? u"it"_s : u"them"_s),
                         .message = {},
                         .buttons = {u"No"_s, u"Yes"_s}};
    return nurvController().prompts().ask(question) == u"Yes";
}

std::shared_ptr<NURVTask> ChecksumTab::createMD5(const QStringList &files, NURVTaskQueue *queue, bool sourceSave)
{
    const std::optional<QString> path =
        listPath(files, sourceSave, checksumList::md5FileName(folderOf(files.value(0)), isNamedAfterFolder()),
                 checksumList::md5FileName({}, false), u"Save md5 as..."_s);
    if (!path)
        return nullptr;
    auto job = std::make_shared<CreateMD5Task>(queue, without(files, {*path}), *path);
    job->setTitle(u"Creating MD5"_s);
    return job;
}

std::shared_ptr<NURVTask> ChecksumTab::createST5(const QStringList &files, NURVTaskQueue *queue, bool sourceSave)
{
    const std::optional<QString> path =
        listPath(files, sourceSave, checksumList::st5FileName(folderOf(files.value(0)), isNamedAfterFolder()),
                 checksumList::st5FileName({}, false), u"Save st5 as..."_s);
    if (!path)
        return nullptr;
    QStringList names;
    QStringList strangers;
    for (const QString &file : files) {
        const QString name = lastPathComponent(file);
        const bool canBeListed = checksumList::canName(name);
        if (canBeListed)
            names.append(name);
        if (folderOf(file) != folderOf(files.last()) || !canBeListed)
            strangers.append(file);
    }
    auto job = std::make_shared<CreateST5Task>(*path, queue, programPath(shntool::program().name),
                                               shntool::hashListArguments(names));
    job->setStrangers(strangers);
    job->setDirectory(folderOf(files.last()));
    job->nameRow(u"Create ST5"_s);
    return job;
}

bool ChecksumTab::createFFP(const QStringList &files)
{
    const QString extension = SettingsStore::instance().string(u"ffpExtension"_s);
    const QString folder = folderOf(files.first());
    const std::optional<QString> path =
        sourceSaveButton.isOn()
            ? joinPath(folder, checksumList::ffpFileName(folder, extension, isNamedAfterFolder()))
            : openSavePanel(checksumList::ffpFileName({}, extension, false), u"Save fingerprint as..."_s);
    if (!path || !canBeList(*path, files))
        return false;
    Q_EMIT longWorkBegan(u"Creating FFP checksum file"_s);
    const auto end = qScopeGuard([this] { Q_EMIT longWorkEnded(); });
    writeFFP(files, *path);
    return true;
}

void ChecksumTab::writeFFP(const QStringList &files, const QString &listPath)
{
    QString list = checksumList::ffpHeader(shortVersionString(), QDateTime::currentDateTime());
    QStringList problems;
    for (const QString &path : files) {
        if (!checksumList::canName(lastPathComponent(path))) {
            problems.append(u"%1 is not in the list: its name holds a line break"_s.arg(path));
            continue;
        }
        if (!checksumList::isReadBack(checksumList::ListKind::Ffp, lastPathComponent(path)))
            problems.append(checksumList::misreadText(path));
        const QString entry = fingerprint(path);
        list += entry;
        if (const std::optional<QString> fault = faultOfFingerprint(entry))
            problems.append(u"%1 has no fingerprint: %2"_s.arg(path, *fault));
    }
    QString reason;
    if (!writeTextFileAtomically(listPath, list, &reason, LinkAtName::Replaced))
        problems = {u"Unable to write %1: %2"_s.arg(listPath, reason)};
    const bool isWhole = problems.isEmpty();
    if (!checksumList::areAllSameDirectory(files))
        problems.append(u"%1: %2"_s.arg(lastPathComponent(listPath), checksumList::bareNamesText()));
    m_hasWrittenList = problems.isEmpty();
    if (!problems.isEmpty())
        nurvController().prompts().ask(
            {.title = isWhole ? u"The fingerprint list does not tell folders"_s : u"The fingerprint list is not whole"_s,
             .message = problems.join(u'\n'),
             .buttons = {u"OK"_s}});
}

} // namespace nurv
