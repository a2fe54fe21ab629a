// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/NURVController.h"

#include "app/AppLog.h"
#include "app/BaseTab.h"
#include "app/PathNames.h"
#include "app/UserPrompts.h"
#include "engine/NURVTaskQueue.h"
#include "platform/CoreAudioHelper.h"
#include "platform/NurvFailure.h"
#include "platform/SettingsStore.h"
#include "platform/Version.h"

#include <algorithm>
#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

const QString kDecode = u"decode"_s;
const QString kEncode = u"encode"_s;
const QString kChecksum = u"checksum"_s;
const QString kShntool = u"shntool"_s;
const QString kFix = u"fix SBE"_s;
const QString kUtil = u"util"_s;
const QString kTags = u"Tags"_s;
const QString kLossy = u"lossy"_s;

constexpr qsizetype kMostKindsTold = 20;

QStringList words(const QString &text)
{
    return text.split(u' ');
}

// The util page takes any file and so has no entry.
QHash<QString, QStringList> makeExtensionMap()
{
    return {
        {kDecode, words(u"FLAC SHN WV M4A TTA APE"_s)},
        {kEncode, words(u"WAV AIF AIFF FLAC SHN WV TTA APE"_s)},
        {kChecksum, words(u"WAV AIFF AIF FLAC SHN MD5 FFP TXT APE WV TTA ST5"_s)},
        {kShntool, words(u"FLAC SHN WAV AIF AIFF TTA WV APE"_s)},
        {kFix, words(u"FLAC SHN WAV AIF AIFF WV TTA"_s)},
        {kLossy, words(u"FLAC SHN WAV AIFF AIF WV TTA"_s)},
        {kTags, words(u"FLAC M4A MP3 WV APE"_s)},
    };
}

} // namespace

const QString NURVController::kAboutLabel = u"about"_s;

void NURVController::registerDefaults()
{
    SettingsStore::instance().registerDefaults({
        {u"shntoolNamesFormat"_s, u"%number. %name %time"_s},
        {u"maxThreads"_s, 2},
        {u"encodeOutputFormat"_s, 2},
        {u"encodeFlacLevel"_s, 5},
        {u"fixOutputFormat"_s, 1},
        {u"fixFlacLevel"_s, 4},
        {u"shntoolCommandOption"_s, 0},
        {u"shntoolLenOption"_s, 0},
        {u"shntoolOutputFormat"_s, 1},
        {u"lossySliderLevel"_s, 3},
        {u"lossyStepperLevel"_s, 88},
        {u"lossyComboLevel"_s, 160},
        {u"opusFrameSizeIndex"_s, 3},
        {u"SUScheduledCheckInterval"_s, 604800},
        {u"trashOrDelete"_s, 0},
        {u"ffpExtension"_s, u"ffp.txt"_s},
        {u"flacVerifyButton"_s, 0},
        {u"flacKeepForeignMetadataButton"_s, 0},
        {u"flacGenerateFFPButton"_s, 0},
        {u"warnOnDelete"_s, true},
        {u"warnOnFilesSkipped"_s, true},
        {u"checksumFileUsesOutputDirName"_s, false},
        {u"encodeToSourceDirectory"_s, 0},
        {u"decodeToSourceDirectory"_s, 0},
        {u"encodeLossyToSourceDirectory"_s, 0},
        {u"incomingSurroundOrder"_s, u"L R C LFE LS RS (STANDARD)"_s},
        {u"proveBeforeDeleting"_s, 1},
        {u"dropMetadata"_s, 0},
        {u"keepFolders"_s, 0},
    });
}

NURVController::NURVController(UserPrompts &prompts, DesktopServices &services)
    : m_prompts(prompts), m_extensionMap(makeExtensionMap()), m_selectedLabel(pageLabels().first())
{
    registerDefaults();
    m_taskQueue = std::make_unique<NURVTaskQueue>(services);
}

NURVController::~NURVController() = default;

const QStringList &NURVController::pageLabels()
{
    static const QStringList labels{kDecode, kEncode, kChecksum, kShntool,   kFix,
                                    kUtil,   kTags,   kLossy,    kAboutLabel};
    return labels;
}

void NURVController::selectTab(const QString &label)
{
    if (label == kAboutLabel || tab(label))
        show(label);
}

void NURVController::selectTab(int index)
{
    if (index >= 0 && index < pageLabels().size())
        selectTab(pageLabels().at(index));
}

void NURVController::show(const QString &label)
{
    const bool isOther = std::exchange(m_selectedLabel, label) != label;
    didSelectTabViewItem();
    if (isOther)
        Q_EMIT pageSelected(label);
}

void NURVController::didSelectTabViewItem()
{
    if (BaseTab *const selected = tab(m_selectedLabel))
        selected->displayRelevantOptions();
}

bool NURVController::isValidFile(const QString &label, const QString &path) const
{
    const QStringList accepted = extensions(label);
    if (accepted.isEmpty() || label == kChecksum)
        return true;
    const QString extension = formatWord(path);
    if (extension.isEmpty())
        return label != kTags;
    if (extension == u"M4A" && (label == kLossy || label == kEncode))
        return CoreAudioHelper::isAppleLossless(path);
    if (accepted.contains(extension))
        return true;
    const bool takesPlainAudio = accepted.contains(u"WAV"_s) || accepted.contains(u"AIF"_s) || accepted.contains(u"AIFF"_s);
    return takesPlainAudio && CoreAudioHelper::isAiffOrWav(path);
}

FileIntake NURVController::collect(const QString &label, const QStringList &paths) const
{
    const FileTest isAny = [](const QString &) { return true; };
    FileIntake found;
    for (const QString &path : paths)
        collectFiles(path, isAny, found, [this] { return mustStopSearching(); });
    if (!tab(label))
        return found;
    const FileIntake all = std::exchange(found, {});
    for (qsizetype i = 0; i < all.accepted.size() && !mustStopSearching(); ++i) {
        const QString &path = all.accepted.at(i);
        if (!takesFromFolder(label, path))
            continue;
        if (isValidFile(label, path))
            found.accept(path, all.bases.value(i));
        else
            found.badExtensions.insert(pathExtension(path));
    }
    found.unreadableNames = all.unreadableNames;
    found.unreadableFolders = all.unreadableFolders;
    found.unreachableFiles = all.unreachableFiles;
    found.linkedFolders = all.linkedFolders;
    for (const QString &path : all.temporaryFiles) {
        if (takesFromFolder(label, path))
            found.temporaryFiles.append(path);
    }
    return found;
}

void NURVController::addCollected(const QString &label, const FileIntake &found)
{
    if (label == kAboutLabel)
        whenListsMayChange([this, found] { routeByExtension(found); });
    else if (BaseTab *const page = tab(label))
        page->addCollected(found);
}

bool NURVController::takesFromFolder(const QString &label, const QString &path) const
{
    const QStringList accepted = extensions(label);
    if (accepted.isEmpty() || label == kChecksum)
        return true;
    const QString extension = formatWord(path);
    if (label == kEncode && extension == u"M4A")
        return CoreAudioHelper::isAppleLossless(path);
    return accepted.contains(extension);
}

void NURVController::routeByExtension(const FileIntake &found)
{
    static const QStringList compressed = words(u"FLAC SHN WV TTA M4A APE"_s);
    QMap<QString, FileIntake> filesOfPage;
    // Of all the pages that the files select one after the other only the last
    // stays, so only that one is shown.
    QString lastPage;
    QSet<QString> unknownKinds;
    for (qsizetype i = 0; i < found.accepted.size(); ++i) {
        const QString &path = found.accepted.at(i);
        const QString extension = formatWord(path);
        QString page;
        if (compressed.contains(extension))
            page = kDecode;
        else if (extensions(kEncode).contains(extension))
            page = kEncode;
        else if (extensions(kDecode).contains(extension))
            page = kDecode;
        else if (extensions(kChecksum).contains(extension))
            page = kChecksum;

        // A folder may well hold covers and notes.
        if (!tab(page) && found.bases.value(i).isEmpty())
            unknownKinds.insert(extension.isEmpty() ? lastPathComponent(path) : extension);
        if (page.isEmpty()) {
            lastPage = kEncode;
        } else if (tab(page)) {
            filesOfPage[page].accept(path, found.bases.value(i));
            lastPage = page;
        }
    }
    for (auto it = filesOfPage.cbegin(); it != filesOfPage.cend(); ++it)
        tab(it.key())->addMatchedFiles(it.value().accepted, it.value().bases);
    if (!lastPage.isEmpty())
        show(lastPage);
    if (!unknownKinds.isEmpty() && SettingsStore::instance().boolean(u"warnOnFilesSkipped"_s)) {
        QStringList kinds = unknownKinds.values();
        kinds.sort();
        m_prompts.ask({.title = u"Some files are of kinds that no tab takes and were skipped"_s,
                       .message = kinds.first(std::min(kinds.size(), kMostKindsTold)).join(u", "_s),
                       .buttons = {u"OK"_s}});
    }
    if (const std::optional<Alert> unreadable = unreadableAlert(found))
        m_prompts.ask(*unreadable);
}

bool NURVController::execute(BaseTab &tab)
{
    ++m_executions;
    const bool isDone = runAndTell([&tab] { tab.executeCommand(); });
    if (--m_executions > 0)
        return isDone;
    bool isAllDone = isDone;
    for (const std::function<void()> &change : std::exchange(m_waitingChanges, {}))
        isAllDone = runAndTell(change) && isAllDone;
    return isAllDone;
}

/// No exception leaves the handler of an event.
bool NURVController::runAndTell(const std::function<void()> &action)
{
    QString reason;
    try {
        action();
        return true;
    } catch (const NurvFailure &failure) {
        reason = failure.reason();
    } catch (const std::exception &failure) {
        reason = QString::fromUtf8(failure.what());
    }
    qCCritical(appLog).noquote() << "A command was not carried out:" << reason;
    m_prompts.ask(
        {.title = u"The command could not be carried out."_s, .message = reason.trimmed(), .buttons = {u"OK"_s}});
    return false;
}

void NURVController::whenListsMayChange(const std::function<void()> &change)
{
    if (m_executions > 0)
        m_waitingChanges.append(change);
    else
        change();
}

bool NURVController::applicationShouldTerminate()
{
    const int count = m_taskQueue->taskCount();
    if (count == 0)
        return true;
    const QString message =
        u"There are %1 tasks in the queue.  Are you sure you want to quit?"_s.arg(count);
    return m_prompts.ask({.title = u"Tasks in Progress"_s, .message = message, .buttons = {u"No"_s, u"Yes"_s}})
        == u"Yes";
}

bool NURVController::windowShouldClose()
{
    return m_prompts.ask({.title = u"Are you sure you want to quit?"_s, .message = {}, .buttons = {u"No"_s, u"Yes"_s}})
        == u"Yes";
}

void NURVController::applicationWillTerminate()
{
    m_mustStopSearching = true;
    m_taskQueue->killAllTasks();
    m_taskQueue->allowSleep();
}

QString NURVController::titleText()
{
    return u"Nurv Audio Workbench "_s + shortVersionString();
}

QString NURVController::buildText()
{
    return u"(Build "_s + buildVersion() + u')';
}

} // namespace nurv
