// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/UtilTab.h"

#include "app/LinesControl.h"
#include "app/NURVController.h"
#include "app/NURVStringGetterPanel.h"
#include "app/Panel.h"
#include "app/PathNames.h"
#include "base/Log.h"
#include "engine/NURVTaskQueue.h"
#include "engine/NURVTaskResults.h"
#include "process/ResourceFolder.h"
#include "programs/Cdda2wav.h"
#include "programs/Metaflac.h"
#include "programs/Sox.h"
#include "util/CDExtractTask.h"
#include "util/CompactDisc.h"
#include "util/DeEmphasisTask.h"
#include "util/DVDAuthorTask.h"
#include "util/FormatScan.h"
#include "util/ReplayGainTask.h"

#include <QScopedValueRollback>
#include <QSet>
#include <QTimer>

#include <algorithm>
#include <exception>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {

const QString UtilTab::kCdExtraction = u"CD Extraction"_s;
const QString UtilTab::kDvdAudioDisc = u"DVD Audio Disc"_s;
const QString UtilTab::kReplayGain = u"Flac Replay Gain"_s;
const QString UtilTab::kDeEmphasis = u"de-emphasis"_s;
const QString UtilTab::kBatchRename = u"Batch Rename"_s;

namespace {

constexpr qsizetype kMostProblemsShown = 10;

QString formatText(const AudioFormatObject &format)
{
    return u"%1 Hz, %2 bits, %3"_s.arg(format.sampleRate)
        .arg(format.bitsPerChannel)
        .arg(format.channels == 1 ? u"1 channel"_s : u"%1 channels"_s.arg(format.channels));
}

} // namespace

UtilTab::UtilTab(NURVController &controller)
    : BaseTab(controller, u"util"_s),
      utilCommandMatrix({kCdExtraction, kDvdAudioDisc, kReplayGain, kDeEmphasis, kBatchRename}, 1, -1),
      replayGainMatrix({u"Add"_s, u"Remove"_s}, 2), totalTimeLabel(u"Total time:"_s), totalSizeLabel(u"Total size:"_s),
      undoRenameButton(u"Undo rename"_s)
{
    renamePreviewButton.bindToSetting(u"utilRenamePreview"_s);
    connect(&utilCommandMatrix, &Control::valueChanged, this, &UtilTab::commandChosen);
    connect(this, &BaseTab::fileNamesChanged, this, &UtilTab::showTotals);
    displayRelevantOptions();
}

QString UtilTab::command() const
{
    return utilCommandMatrix.titles().value(m_command);
}

void UtilTab::setCommand(const QString &title)
{
    m_command = static_cast<int>(utilCommandMatrix.titles().indexOf(title));
    utilCommandMatrix.setSelectedIndex(m_command);
    showFormats(command() == kDvdAudioDisc);
    displayRelevantOptions();
}

void UtilTab::commandChosen()
{
    const int chosen = utilCommandMatrix.selectedIndex();
    if (chosen < 0 || chosen == m_command)
        return;
    if (utilCommandMatrix.selectedTitle() != kDvdAudioDisc) {
        setCommand(utilCommandMatrix.selectedTitle());
        return;
    }
    const Alert question{.title = u"You have chosen \"DVD Audio Disc.\" This will scan the files in the list for format "
                                  u"information. Are you sure you want to continue?"_s,
                         .message = {},
                         .buttons = {u"Yes"_s, u"No"_s}};
    if (nurvController().prompts().ask(question) != u"Yes") {
        revertCommand(m_command);
        return;
    }
    setCommand(kDvdAudioDisc);
    findFormatInfo();
}

void UtilTab::commandClick()
{
    if (command() != kDvdAudioDisc)
        return;
    m_command = -1;
    revertCommand(-1);
}

/// Not at once: the cell is being clicked.
void UtilTab::revertCommand(int index)
{
    const auto revert = [this, index] {
        // The user may have chosen another one meanwhile.
        if (index == m_command)
            utilCommandMatrix.setSelectedIndex(index);
        displayRelevantOptions();
    };
    if (m_revertDelayMs > 0)
        QTimer::singleShot(m_revertDelayMs, this, revert);
    else
        revert();
}

void UtilTab::displayRelevantOptions()
{
    replayGainMatrix.setHidden(command() != kReplayGain);
    oneTrackButton.setHidden(command() != kCdExtraction);
    renamePreviewButton.setHidden(command() != kBatchRename);
    undoRenameButton.setHidden(command() != kBatchRename);
    if (command() == kBatchRename)
        undoRenameButton.setEnabled(batchRename::canUndo());
    for (LabelControl *const label : {&totalTimeLabel, &totalTimeField, &totalSizeLabel, &totalSizeField})
        label->setHidden(!m_showsFormats);
}

void UtilTab::showFormats(bool isShown)
{
    if (std::exchange(m_showsFormats, isShown) == isShown)
        return;
    m_formatObjects.clear();
    showTotals();
    Q_EMIT columnsChanged();
}

QStringList UtilTab::columnTitles() const
{
    if (!m_showsFormats)
        return BaseTab::columnTitles();
    return {u"fileName"_s, u"length (min)"_s, u"sample rate"_s, u"bit depth"_s};
}

QString UtilTab::columnText(int row, int column) const
{
    const auto format = m_formatObjects.constFind(fileNames().value(row));
    if (format == m_formatObjects.cend())
        return {};
    switch (column) {
    case 1: return parseTimeAsString(format->time());
    case 2: return QString::number(format->sampleRate);
    case 3: return QString::number(format->bitsPerChannel);
    default: return {};
    }
}

void UtilTab::showTotals()
{
    double seconds = 0.0;
    AudioFormatObject reference;
    for (const QString &path : fileNames()) {
        const auto format = m_formatObjects.constFind(path);
        if (format == m_formatObjects.cend())
            continue;
        seconds += format->time();
        reference = *format;
    }
    const bool isKnown = !m_formatObjects.isEmpty() && !fileNames().isEmpty();
    totalTimeField.setText(isKnown ? parseTimeAsString(seconds) : QString());
    totalSizeField.setText(isKnown ? parseSizeFromTimeAsString(seconds, reference.sampleRate, reference.bitsPerChannel,
                                                               reference.channels)
                                   : QString());
}

void UtilTab::findFormatInfo()
{
    // Files may come while the user waits.
    m_mustScanAgain = true;
    if (m_isScanning)
        return;
    const QScopedValueRollback scanning(m_isScanning, true);
    while (std::exchange(m_mustScanAgain, false) && !fileNames().isEmpty()) {
        const QStringList paths = fileNames();
        const FormatScan scan = scanFormats(paths);
        if (!m_mustScanAgain)
            takeFormats(paths, scan);
    }
}

FormatScan UtilTab::scanFormats(const QStringList &paths)
{
    FormatScan scan;
    QString failure;
    static_cast<void>(nurvController().prompts().waitFor(u"Looking at the formats of the files…"_s,
                                                         [&](const std::function<bool()> &isUnwanted) {
                                                             try {
                                                                 scan = FormatScan::of(paths, isUnwanted);
                                                             } catch (const std::exception &reason) {
                                                                 failure = QString::fromUtf8(reason.what());
                                                             }
                                                         }));
    if (!failure.isEmpty()) {
        qCWarning(utilLog).noquote() << "error" << failure;
        scan.ending = FormatScan::Ending::Refused;
    } else if (scan.ending == FormatScan::Ending::Refused) {
        qCWarning(utilLog).noquote() << paths.at(static_cast<qsizetype>(scan.formats.size()))
                                     << "is of a kind that a disc does not take, or its format cannot be read";
    }
    return scan;
}

void UtilTab::takeFormats(const QStringList &paths, const FormatScan &scan)
{
    m_formatObjects.clear();
    for (qsizetype place = 0; place < static_cast<qsizetype>(scan.formats.size()); ++place)
        m_formatObjects.insert(paths.at(place), scan.formats[static_cast<std::size_t>(place)]);
    if (scan.ending == FormatScan::Ending::Mismatch)
        nurvController().prompts().ask(
            {.title = u"The Files in the list must match in sample rate, bit depth and number of channels."_s,
             .message = u"%1: %2. Before it: %3."_s.arg(
                 lastPathComponent(paths.at(static_cast<qsizetype>(scan.formats.size()) - 1)),
                 formatText(scan.formats.back()), formatText(scan.formats.front())),
             .buttons = {u"OK"_s}});
    if (scan.ending != FormatScan::Ending::Complete && scan.ending != FormatScan::Ending::GivenUp)
        dropFiles(paths);
    showTotals();
    Q_EMIT columnTextsChanged();
}

/// All that were there, and none that came while the user read why.
void UtilTab::dropFiles(const QStringList &paths)
{
    if (fileNames() == paths) {
        clearFiles();
        return;
    }
    const QSet<QString> dropped(paths.begin(), paths.end());
    QList<int> rows;
    for (int row = 0; row < fileNames().size(); ++row) {
        if (dropped.contains(fileNames().at(row)))
            rows.append(row);
    }
    deleteSelectedRows(rows);
    m_mustScanAgain = true;
}

void UtilTab::filesAdded()
{
    if (command() == kDvdAudioDisc)
        findFormatInfo();
    BaseTab::filesAdded();
}

void UtilTab::clearFiles()
{
    m_formatObjects.clear();
    BaseTab::clearFiles();
}

void UtilTab::executeCommand()
{
    if (fileNames().isEmpty() || m_command < 0)
        return;
    if (command() == kCdExtraction)
        handleCDExtraction();
    else if (command() == kDvdAudioDisc)
        handleDVDAudioDisc();
    else if (command() == kReplayGain)
        handleReplayGain();
    else if (command() == kDeEmphasis)
        handleDeEmphasis();
    else if (command() == kBatchRename)
        handleBatchRename();
    else
        clearFiles();
}

NeededPrograms UtilTab::neededPrograms() const
{
    if (fileNames().isEmpty())
        return {};
    if (command() == kDvdAudioDisc)
        return DVDAuthorTask::programsFor(fileNames());
    if (command() == kCdExtraction)
        return {{cdda2wav::program().name}, {}};
    if (command() == kReplayGain)
        return {{metaflac::program().name}, {}};
    if (command() == kDeEmphasis)
        return {{sox::program().name}, {}};
    return {};
}

void UtilTab::queue(const std::shared_ptr<NURVTask> &job)
{
    nurvController().taskQueue().addTask(job);
}

void UtilTab::showError(const QString &message)
{
    nurvController().prompts().ask({.title = u"Error"_s, .message = message, .buttons = {u"OK"_s}});
}

QStringList UtilTab::filesOf(const QStringList &formatWords, const QString &messageForNone)
{
    QStringList files;
    for (const QString &path : fileNames()) {
        if (formatWords.contains(formatWord(path)))
            files.append(path);
    }
    if (files.isEmpty()) {
        showError(messageForNone);
        clearFiles();
    }
    return files;
}

void UtilTab::handleCDExtraction()
{
    const std::optional<QString> folder = chooseOutputFolder();
    if (!folder)
        return;
    const QString volume = folderOf(fileNames().first());
    const QString device = discIdForVolumePath(volume, m_discSystem.mountTable);
    const QString address =
        CDExtractSCSIProviderHelper(device, m_discSystem.rootFolder, m_discSystem.isDrive).runTask();
    if (address.isEmpty()) {
        showError(u"No drive is known that holds the disc of \"%1\". Add the tracks of an audio CD, from the folder in which "
                  u"the desktop shows them."_s.arg(volume));
        return;
    }
    const QString range = getTrackNumberForExtract(reNumberCdTracks(fileNames()));
    if (!cdda2wav::trackRange(range)) {
        showError(u"The names of the files do not begin with numbers of tracks. Add the tracks of an audio CD, from "
                  u"the folder "
                  u"in which the desktop shows them."_s);
        return;
    }
    if (isDriveBusy(address)) {
        showError(u"The drive is reading this disc, or is going to. Wait until that has ended."_s);
        return;
    }
    const DiscMount mount = discMount(volume);
    const bool isWanted = runDiscProgram(u"Unmounting the disc…"_s, [&](const std::function<bool()> &isUnwanted) {
        return unMountDisc(device, mount, m_discSystem.programFolder, isUnwanted);
    });
    if (isWanted)
        queueCDExtraction(*folder, range, address);
    static_cast<void>(runDiscProgram(u"Mounting the disc…"_s, [&](const std::function<bool()> &isUnwanted) {
        return mountDisc(device, mount, m_discSystem.programFolder, isUnwanted);
    }));
}

bool UtilTab::isDriveBusy(const QString &address)
{
    const auto &jobs = nurvController().taskQueue().panelArray();
    return std::any_of(jobs.begin(), jobs.end(), [&](const auto &job) {
        const auto *const extraction = dynamic_cast<const CDExtractTask *>(job.get());
        return extraction != nullptr && !extraction->isDone() && extraction->address() == address;
    });
}

void UtilTab::queueCDExtraction(const QString &folder, const QString &range, const QString &address)
{
    try {
        auto job = std::make_shared<CDExtractTask>(&nurvController().taskQueue(), programPath(cdda2wav::program().name),
                                                   cdda2wav::extractionArguments(range, oneTrack(), address));
        job->setTrackString(range);
        job->setOneTrack(oneTrack());
        job->setFileNames(fileNames());
        job->setTitle(u"CD Tracks %1 - %2"_s.arg(range.section(u'+', 0, 0), range.section(u'+', 1)));
        job->setDiscName(lastPathComponent(folderOf(fileNames().first())));
        job->setDirectory(folder);
        queue(job);
    } catch (const std::exception &failure) {
        qCWarning(utilLog).noquote() << "Error" << failure.what();
    }
}

/// What the program has told goes to the log. False: the user has given it up.
bool UtilTab::runDiscProgram(const QString &what,
                             const std::function<QString(const std::function<bool()> &isUnwanted)> &run)
{
    QString told;
    const bool isWanted = nurvController().prompts().waitFor(
        what, [&](const std::function<bool()> &isUnwanted) { told = run(isUnwanted).trimmed(); });
    if (!told.isEmpty())
        qCInfo(utilLog).noquote() << told;
    return isWanted;
}

void UtilTab::handleDVDAudioDisc()
{
    const std::optional<QString> folder = chooseOutputFolder();
    if (!folder)
        return;
    queue(std::make_shared<DVDAuthorTask>(&nurvController().taskQueue(), fileNames(), *folder));
    clearFiles();
}

void UtilTab::handleReplayGain()
{
    const QStringList files = filesOf({u"FLAC"_s}, u"No Flac files in file list"_s);
    if (files.isEmpty())
        return;
    queue(std::make_shared<ReplayGainTask>(&nurvController().taskQueue(), programPath(metaflac::program().name),
                                           replayGainMatrix.selectedTitle() == u"Add", files));
    clearFiles();
}

void UtilTab::handleDeEmphasis()
{
    const std::optional<QString> folder = chooseOutputFolder();
    if (!folder)
        return;
    const QStringList files = filesOf({u"AIF"_s, u"AIFF"_s, u"WAV"_s}, u"No Wav/Aiff files in file list"_s);
    if (files.isEmpty())
        return;
    const auto results = std::make_shared<NURVTaskResults>();
    std::vector<std::shared_ptr<NURVTask>> jobs;
    for (const QString &path : files) {
        const QString output =
            joinPath(*folder, u"%1-deemph.%2"_s.arg(nameWithoutExtension(path), pathExtension(path)));
        auto job = std::make_shared<DeEmphasisTask>(&nurvController().taskQueue(), programPath(sox::program().name),
                                                    sox::deEmphasisArguments(path, output), results);
        results->addTaskInSet(*job);
        jobs.push_back(std::move(job));
    }
    nurvController().taskQueue().addTasks(jobs);
    clearFiles();
}

std::optional<QString> UtilTab::promptForBatchNameInput()
{
    NURVStringGetterPanel panel(nurvController().prompts(), u"prefix"_s);
    panel.setTitle(kBatchRename);
    return panel.runPanel(kBatchRename, u"Enter the Prefix that you want the files to start with:"_s, QString());
}

bool UtilTab::mayRename(const QList<Renaming> &plan)
{
    if (!renamePreviewButton.isOn())
        return true;
    LinesControl names(batchRename::text(plan));
    names.setReadOnly(true);
    return nurvController().prompts().runPanel(
        {.title = u"These files will be renamed"_s,
         .message = {},
         .fields = {{.name = u"names"_s, .control = &names}},
         .buttons = {{.title = u"Cancel"_s, .role = PanelButton::Role::Dismiss}, {.title = u"Rename"_s}}});
}

bool UtilTab::isNameTaken(const QList<Renaming> &plan)
{
    const std::optional<QString> taken = batchRename::takenPath(plan);
    if (taken)
        showError(u"File at \"%1\" already exists"_s.arg(*taken));
    return taken.has_value();
}

void UtilTab::handleBatchRename()
{
    const std::optional<QString> prefix = promptForBatchNameInput();
    if (!prefix || prefix->isEmpty()) {
        clearFiles();
        return;
    }
    const QList<Renaming> plan = batchRename::plan(fileNames(), *prefix);
    if (const std::optional<QString> objection = batchRename::objection(plan)) {
        showError(*objection);
        return;
    }
    // Again when the user has looked at the names: that may have taken a while.
    if (isNameTaken(plan) || !mayRename(plan) || isNameTaken(plan))
        return;
    const batchRename::Outcome outcome = batchRename::rename(plan);
    if (!outcome.isRefused)
        clearFiles();
    displayRelevantOptions();
    tellOutcome(u"Some files were not renamed"_s, outcome.problems);
}

void UtilTab::undoRename()
{
    const batchRename::Outcome outcome = batchRename::undo();
    displayRelevantOptions();
    tellOutcome(u"Some files did not get their former names"_s, outcome.problems);
}

void UtilTab::tellOutcome(const QString &title, const QStringList &problems)
{
    if (problems.isEmpty())
        return;
    QStringList shown = problems.first(std::min(problems.size(), kMostProblemsShown));
    if (problems.size() > shown.size())
        shown.append(u"and %1 more"_s.arg(problems.size() - shown.size()));
    nurvController().prompts().ask({.title = title, .message = shown.join(u'\n'), .buttons = {u"OK"_s}});
}

} // namespace nurv
