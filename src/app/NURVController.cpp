// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/NURVController.h"

#include "app/BaseTab.h"
#include "app/PathNames.h"
#include "app/UserPrompts.h"
#include "audio/CoreAudioHelper.h"
#include "base/Log.h"
#include "base/NurvFailure.h"
#include "base/Version.h"
#include "engine/NURVTaskQueue.h"
#include "settings/SettingsStore.h"

#include <algorithm>
#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

// The pages that files go to by their extensions.
const QString kDecode = u"decode"_s;
const QString kEncode = u"encode"_s;
const QString kChecksum = u"checksum"_s;

constexpr qsizetype kMostKindsTold = 20;

} // namespace

const QString NURVController::kAboutLabel = u"about"_s;

void NURVController::registerDefaults(const std::vector<Tool> &tools)
{
    SettingsStore &settings = SettingsStore::instance();
    settings.registerDefaults({
        {u"maxThreads"_s, 2},
        {u"SUScheduledCheckInterval"_s, 604800},
        {u"trashOrDelete"_s, 0},
        {u"warnOnDelete"_s, true},
        {u"warnOnFilesSkipped"_s, true},
        {u"proveBeforeDeleting"_s, 1},
        {u"dropMetadata"_s, 0},
        {u"keepFolders"_s, 0},
    });
    for (const Tool &tool : tools)
        settings.registerDefaults(tool.defaults);
}

NURVController::NURVController(UserPrompts &prompts, DesktopServices &services, const std::vector<Tool> &tools)
    : m_prompts(prompts), m_tools(tools), m_selectedLabel(pageLabels().first())
{
    registerDefaults(tools);
    m_taskQueue = std::make_unique<NURVTaskQueue>(services);
}

NURVController::~NURVController() = default;

QStringList NURVController::pageLabels() const
{
    QStringList labels;
    for (const Tool &tool : m_tools)
        labels.append(tool.label);
    return labels << kAboutLabel;
}

const Tool *NURVController::tool(const QString &label) const
{
    const auto found =
        std::find_if(m_tools.begin(), m_tools.end(), [&label](const Tool &tool) { return tool.label == label; });
    return found == m_tools.end() ? nullptr : &*found;
}

QStringList NURVController::extensions(const QString &label) const
{
    const Tool *const page = tool(label);
    return page ? page->extensions : QStringList();
}

void NURVController::selectTab(const QString &label)
{
    if (label == kAboutLabel || tab(label))
        show(label);
}

void NURVController::selectTab(int index)
{
    const QStringList labels = pageLabels();
    if (index >= 0 && index < labels.size())
        selectTab(labels.at(index));
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
    const Tool *const page = tool(label);
    if (!page || page->extensions.isEmpty() || page->takesAllFiles)
        return true;
    const QStringList &accepted = page->extensions;
    const QString extension = formatWord(path);
    if (extension.isEmpty())
        return page->takesFilesWithoutExtension;
    if (extension == u"M4A" && page->takesAppleLossless)
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
    const Tool *const page = tool(label);
    if (!page || page->extensions.isEmpty() || page->takesAllFiles)
        return true;
    const QString extension = formatWord(path);
    if (extension == u"M4A" && page->takesAppleLosslessFromFolders)
        return CoreAudioHelper::isAppleLossless(path);
    return page->extensions.contains(extension);
}

void NURVController::routeByExtension(const FileIntake &found)
{
    static const QStringList compressed{u"FLAC"_s, u"SHN"_s, u"WV"_s, u"TTA"_s, u"M4A"_s, u"APE"_s};
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
