// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNtoolTab.h"

#include "app/NURVController.h"
#include "app/Panel.h"
#include "app/PathNames.h"
#include "app/TrackNameInputController.h"
#include "base/Log.h"
#include "base/NotificationCenter.h"
#include "engine/NURVTaskQueue.h"
#include "engine/NURVTaskResults.h"
#include "files/TextFile.h"
#include "process/ResourceFolder.h"
#include "programs/Shntool.h"
#include "programs/ShntoolModes.h"
#include "shntool/EditPreview.h"
#include "shntool/PreviewTask.h"
#include "shntool/SHNToolCompareTask.h"
#include "shntool/SHNToolCueTask.h"
#include "shntool/SHNToolInfoTask.h"
#include "shntool/SHNToolJoinTask.h"
#include "shntool/SHNToolLenTask.h"
#include "shntool/SHNToolPadTask.h"
#include "shntool/SHNToolSplitTask.h"
#include "shntool/SHNToolStripTask.h"
#include "shntool/SHNToolTrimTask.h"
#include "shntool/SplitPoints.h"
#include "shntool/SplitTitles.h"

#include <QMap>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

const QStringList kEdits{u"trim"_s, u"pad"_s, u"strip"_s, u"split"_s, u"join"_s};

QString program()
{
    return programPath(shntool::program().name);
}

QStringList baseNames(const QStringList &paths)
{
    QStringList names;
    for (const QString &path : paths)
        names.append(lastPathComponent(path));
    return names;
}

} // namespace

SHNtoolTab::SHNtoolTab(NURVController &controller)
    : BaseTab(controller, u"shntool"_s),
      shntoolCommandMatrix(
          {u"len"_s, u"info"_s, u"cmp"_s, u"trim"_s, u"pad"_s, u"strip"_s, u"split"_s, u"join"_s, u"cue"_s}, 3),
      shnLenMatrix({SHNToolLenTask::kNormal, SHNToolLenTask::kFileset, SHNToolLenTask::kByDisc}),
      outputFormatText(u"Output format"_s), outputFormatMatrix({u"SHN"_s, u"FLAC"_s, u"AIFF"_s, u"WAV"_s}, 2),
      namesButton(u"Track names..."_s)
{
    shntoolCommandMatrix.bindToSetting(u"shntoolCommandOption"_s);
    shnLenMatrix.bindToSetting(u"shntoolLenOption"_s);
    outputFormatMatrix.bindToSetting(u"shntoolOutputFormat"_s);
    previewButton.bindToSetting(u"shntoolPreview"_s);
    originals.follow(deleteOriginalsButton, sourceEncodeButton);
    for (ChoiceControl *const choice : {&shntoolCommandMatrix, &shnLenMatrix})
        connect(choice, &Control::valueChanged, this, &SHNtoolTab::displayRelevantOptions);
    NotificationCenter::instance().subscribe(
        QString::fromUtf16(NURVTrackNamesEnteredNotification), this,
        [this](const QVariant &names, const QVariantMap &) { trackNamesEntered(names.toStringList()); });
    displayRelevantOptions();
}

void SHNtoolTab::trackNamesEntered(const QStringList &names)
{
    m_names = names.isEmpty() ? std::nullopt : std::optional(names);
}

void SHNtoolTab::showNamesWindow()
{
    nurvController().trackNameInputController().show(static_cast<int>(fileNames().size()));
}

int SHNtoolTab::getMaxTrackNamesLength(const QStringList &names)
{
    qsizetype longest = 0;
    for (const QString &name : names)
        longest = std::max(longest, name.size());
    return static_cast<int>(longest);
}

void SHNtoolTab::displayRelevantOptions()
{
    const QString command = shntoolCommandMatrix.selectedTitle();
    const bool isLen = command == u"len";
    const bool isEdit = kEdits.contains(command);
    shnLenMatrix.setHidden(!isLen);
    namesButton.setHidden(!isLen || shnLenMatrix.selectedTitle() == SHNToolLenTask::kNormal);
    outputFormatText.setHidden(!isEdit);
    outputFormatMatrix.setHidden(!isEdit);
    sourceEncodeButton.setHidden(!isEdit);
    previewButton.setHidden(!isEdit);
    // A split makes many files of one, which stays.
    deleteOriginalsButton.setHidden(!isEdit || command == u"split");
}

void SHNtoolTab::executeCommand()
{
    if (fileNames().isEmpty())
        return;
    const bool deletes = deleteOriginalsButton.isOn() && !deleteOriginalsButton.isHidden() && !previewOnlyButton.isOn();
    if (!confirmDeletingOriginals(deletes))
        return;
    execute(shntoolCommandMatrix.selectedTitle());
    clearFiles();
    if (deletes)
        deleteOriginalsButton.setOn(false);
}

void SHNtoolTab::execute(const QString &command)
{
    if (command == u"len")
        handleSHNtoolLen();
    else if (command == u"info")
        handleSHNtoolInfo();
    else if (command == u"cmp")
        handleSHNtoolCompare();
    else if (command == u"split")
        handleSHNtoolSplit();
    else if (command == u"cue")
        handleSHNtoolCue();
    else if (kEdits.contains(command))
        handleSHNtoolEdit(command);
}

NeededPrograms SHNtoolTab::neededPrograms() const
{
    if (fileNames().isEmpty() || previewOnlyButton.isOn())
        return {};
    const QString command = shntoolCommandMatrix.selectedTitle();
    // Which programs there are does not depend on where the outputs go.
    const QStringList arguments = kEdits.contains(command) ? QStringList{command, u"-o"_s, format()} + fileNames()
                                                           : QStringList{command} + fileNames();
    return NeededPrograms::ofRun(shntool::program().name, arguments);
}

void SHNtoolTab::queue(const std::shared_ptr<NURVTask> &job)
{
    nurvController().taskQueue().addTask(job);
}

QStringList SHNtoolTab::namesForReport() const
{
    const QStringList files = baseNames(fileNames());
    if (!m_names)
        return files;
    // The first file that is added is the one at the last name's own place: it stands twice.
    return m_names->size() < files.size() ? *m_names + files.sliced(m_names->size() - 1) : *m_names;
}

void SHNtoolTab::handleSHNtoolLen()
{
    const QStringList names = namesForReport();
    if (m_names)
        m_names = names;
    const int longest = getMaxTrackNamesLength(names);
    const QString kind = shnLenMatrix.selectedTitle();
    if (kind == SHNToolLenTask::kByDisc) {
        handleSHNtoolLenByDisc(names, longest);
        return;
    }
    auto job = std::make_shared<SHNToolLenTask>(&nurvController().taskQueue(), program(),
                                                shntool::lengthArguments(fileNames()), kind);
    if (kind == SHNToolLenTask::kFileset) {
        job->setTrackNames(names);
        job->setMaxTrackNameLength(longest);
    }
    queue(job);
}

void SHNtoolTab::handleSHNtoolLenByDisc(const QStringList &names, int longestName)
{
    QMap<QString, QStringList> filesOfDisc;
    for (const QString &path : fileNames())
        filesOfDisc[discNumber(path)].append(path);
    QStringList discs = filesOfDisc.keys();
    // As texts: disc 10 comes before disc 2.
    std::stable_sort(discs.begin(), discs.end(), [](const QString &left, const QString &right) {
        return QString::localeAwareCompare(left.toCaseFolded(), right.toCaseFolded()) < 0;
    });
    const auto results = std::make_shared<NURVTaskResults>();
    std::vector<std::shared_ptr<NURVTask>> jobs;
    qsizetype before = 0;
    for (const QString &disc : std::as_const(discs)) {
        const QStringList &files = filesOfDisc[disc];
        auto job = std::make_shared<SHNToolLenTask>(results, &nurvController().taskQueue(), program(),
                                                    shntool::lengthArguments(files), SHNToolLenTask::kByDisc);
        if (names.size() >= before + files.size()) {
            job->setTrackNames(names.sliced(before, files.size()));
            job->setMaxTrackNameLength(longestName);
        }
        job->setDiscNumber(disc);
        before += files.size();
        results->addTaskInSet(*job);
        jobs.push_back(std::move(job));
    }
    if (!jobs.empty())
        nurvController().taskQueue().addTasks(jobs);
}

void SHNtoolTab::handleSHNtoolInfo()
{
    auto job = std::make_shared<SHNToolInfoTask>(&nurvController().taskQueue(), program(),
                                                 shntool::informationArguments(fileNames()));
    job->startIndeterminateProgressBar();
    queue(job);
}

void SHNtoolTab::handleSHNtoolCompare()
{
    auto job = std::make_shared<SHNToolCompareTask>(&nurvController().taskQueue(), program(),
                                                    shntool::comparisonArguments(fileNames()));
    job->setTitle(u"shntool compare"_s);
    job->showStatus(u"Comparing"_s);
    job->showMainLine(u"Comparing"_s);
    job->startIndeterminateProgressBar();
    queue(job);
}

std::optional<QString> SHNtoolTab::outputFolder()
{
    if (sourceEncodeButton.isOn())
        return folderOf(fileNames().first());
    return chooseOutputFolder();
}

std::vector<SHNtoolTab::Edit> SHNtoolTab::editsFor(const QString &command, const QString &folder) const
{
    NURVTaskQueue *const tasks = &nurvController().taskQueue();
    std::vector<Edit> jobs;
    const auto add = [&jobs](const Edit &job, const QString &title) {
        if (!title.isEmpty())
            job->setTitle(title);
        jobs.push_back(job);
    };
    if (command == u"trim")
        add(std::make_shared<SHNToolTrimTask>(tasks, program(), shntool::trimArguments(folder, format(), fileNames())),
            u"Running SHNTool Trim"_s);
    else if (command == u"join")
        add(std::make_shared<SHNToolJoinTask>(tasks, program(), shntool::joinArguments(folder, format(), fileNames())),
            {});
    for (const QString &path : command == u"pad" ? fileNames() : QStringList())
        add(std::make_shared<SHNToolPadTask>(tasks, program(), shntool::padArguments(folder, format(), path)),
            u"Running SHNTool Pad"_s);
    for (const QString &path : command == u"strip" ? fileNames() : QStringList())
        add(std::make_shared<SHNToolStripTask>(tasks, program(), shntool::stripArguments(folder, format(), path)),
            u"Running SHNTool Strip"_s);
    return jobs;
}

std::optional<EditPreview> SHNtoolTab::previewBy(
    const std::function<EditPreview(const std::function<bool()> &isUnwanted)> &make)
{
    EditPreview preview;
    const bool isWanted = nurvController().prompts().waitFor(
        u"Looking at what will be made…"_s,
        [&](const std::function<bool()> &isUnwanted) { preview = make(isUnwanted); });
    return isWanted ? std::optional(preview) : std::nullopt;
}

bool SHNtoolTab::mayStart(const EditPreview &preview)
{
    if (previewOnlyButton.isOn()) {
        queue(std::make_shared<PreviewTask>(&nurvController().taskQueue(), preview));
        return false;
    }
    if (!previewButton.isOn())
        return true;
    LinesControl outputs(preview.text());
    outputs.setReadOnly(true);
    return nurvController().prompts().runPanel(
        {.title = u"These files will be made"_s,
         .message = preview.obstacles().isEmpty() ? QString() : u"This would fail, as the end of the list says."_s,
         .fields = {{.name = u"outputs"_s, .control = &outputs}},
         .buttons = {{.title = u"Cancel"_s, .role = PanelButton::Role::Dismiss}, {.title = u"Start"_s}}});
}

void SHNtoolTab::handleSHNtoolEdit(const QString &command)
{
    const std::optional<QString> folder = outputFolder();
    if (!folder || format().isEmpty())
        return;
    if (previewOnlyButton.isOn() || previewButton.isOn()) {
        const std::optional<EditPreview> preview = previewBy([&](const std::function<bool()> &isUnwanted) {
            return EditPreview::ofFiles(command, fileNames(), *folder, format(), isUnwanted);
        });
        if (!preview || !mayStart(*preview))
            return;
    }
    for (const Edit &job : editsFor(command, *folder)) {
        job->setDeleteOriginal(deleteOriginalsButton.isOn());
        job->setDeletionNeeds(originals.proveButton.isOn(), !originals.dropMetadataButton.isOn());
        queue(job);
    }
}

std::optional<QString> SHNtoolTab::chooseSplitPointFile()
{
    return nurvController().prompts().chooseFile(
        {.title = u"Choose file with split point data"_s, .extensions = {u"cue"_s, u"txt"_s}, .option = u"points"_s});
}

void SHNtoolTab::handleSHNtoolSplit()
{
    const std::optional<QString> path = chooseSplitPointFile();
    if (!path)
        return;
    const std::optional<QString> folder = outputFolder();
    if (!folder || format().isEmpty())
        return;
    QString reason;
    const std::optional<SplitPoints> points = SplitPoints::read(*path, &reason);
    if (!points) {
        // Nothing would happen otherwise, and nobody would know why.
        nurvController().prompts().ask({.title = u"The split points cannot be read"_s,
                                        .message = u"%1: %2"_s.arg(*path, reason),
                                        .buttons = {u"OK"_s}});
        return;
    }
    const QString source = fileNames().first();
    const QMap<QString, QString> titles = splitTitles::read(points->text(), format());
    const std::optional<EditPreview> preview = previewBy([&](const std::function<bool()> &) {
        return EditPreview::ofSplit(source, points->text(), titles, *folder, format());
    });
    if (!preview)
        return;
    if (!preview->brokenPoints().isEmpty() && !previewOnlyButton.isOn()) {
        nurvController().prompts().ask({.title = u"The file cannot be split there"_s,
                                        .message = preview->brokenPoints().join(u'\n'),
                                        .buttons = {u"OK"_s}});
        return;
    }
    const bool wantsPreview = previewOnlyButton.isOn() || previewButton.isOn();
    if (wantsPreview && !mayStart(*preview))
        return;
    auto job = std::make_shared<SHNToolSplitTask>(&nurvController().taskQueue(), program(),
                                                  shntool::splitArguments(points->path(), format(), *folder, source));
    job->setPoints(*points);
    job->nameRow(lastPathComponent(source));
    job->setTrackTitleMap(titles);
    job->setOutputPath(*folder);
    queue(job);
}

void SHNtoolTab::handleSHNtoolCue()
{
    const std::optional<QString> path = openSavePanel(u"cuesheet.cue"_s, u"Save CUE sheet as"_s);
    if (!path || !canBeText(*path, fileNames(), u"the cue sheet"_s, u"It is one of the files that it is to tell of."_s))
        return;
    auto job = std::make_shared<SHNToolCueTask>(*path, &nurvController().taskQueue(), program(),
                                                shntool::cueSheetArguments(fileNames()));
    job->setTitle(u"Creating CUE sheet"_s);
    job->setSubTitle(u"Processing"_s);
    queue(job);
}

} // namespace nurv
