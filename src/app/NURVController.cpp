// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/NURVController.h"

#include "app/BaseTab.h"
#include "app/FileArrivals.h"
#include "app/PathNames.h"
#include "app/SettingsTable.h"
#include "app/TrackNameInputController.h"
#include "app/UserPrompts.h"
#include "audio/CoreAudioHelper.h"
#include "base/Log.h"
#include "base/NurvFailure.h"
#include "base/Version.h"
#include "engine/NURVTaskQueue.h"
#include "files/FileStatus.h"
#include "settings/SettingsStore.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

const QString NURVController::kAboutLabel = u"about"_s;

void NURVController::registerDefaults(const std::vector<Tool> &tools)
{
    QVariantMap defaults;
    for (const Setting &setting : settingsTable(tools))
        defaults.insert(setting.key, setting.standard);
    SettingsStore::instance().registerDefaults(defaults);
}

NURVController::NURVController(UserPrompts &prompts, DesktopServices &services, const std::vector<Tool> &tools)
    : m_prompts(prompts), m_desktop(services),
      m_trackNameInputController(std::make_unique<TrackNameInputController>(prompts)), m_tools(tools),
      m_arrivals(std::make_unique<FileArrivals>(*this)), m_selectedLabel(pageLabels().first())
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
        showPage(label);
}

void NURVController::selectTab(int index)
{
    const QStringList labels = pageLabels();
    if (index >= 0 && index < labels.size())
        selectTab(labels.at(index));
}

void NURVController::showPage(const QString &label)
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

QStringList NURVController::offeredExtensions(const QString &label) const
{
    const Tool *const page = tool(label);
    if (page == nullptr)
        return {};
    const QString appleLossless = u"M4A"_s;
    const bool isMissing = page->takesAppleLossless && !page->extensions.contains(appleLossless);
    return isMissing ? page->extensions + QStringList(appleLossless) : page->extensions;
}

QString NURVController::pageFor(const QStringList &paths) const
{
    constexpr qsizetype kMostLookedAt = 20;
    QStringList files;
    for (const QString &path : paths.first(std::min(paths.size(), kMostLookedAt))) {
        if (isPlainFile(path))
            files.append(path);
    }
    const auto takesAny = [&](const QString &label) {
        return std::any_of(files.begin(), files.end(), [&](const QString &path) { return isValidFile(label, path); });
    };
    if (files.isEmpty() || takesAny(m_selectedLabel))
        return m_selectedLabel;
    for (const Tool &page : m_tools) {
        // One that takes any file says nothing.
        if (tab(page.label) && !page.extensions.isEmpty() && takesAny(page.label))
            return page.label;
    }
    return m_selectedLabel;
}

bool NURVController::isValidFile(const QString &label, const QString &path) const
{
    return look(label, path, FileRule::ByContents) == FileVerdict::Taken;
}

FileVerdict NURVController::look(const QString &label, const QString &path, FileRule rule) const
{
    using SoundKind = CoreAudioHelper::SoundKind;
    const auto takenIf = [](bool isTaken) { return isTaken ? FileVerdict::Taken : FileVerdict::OtherKind; };
    const Tool *const page = tool(label);
    if (!page || page->extensions.isEmpty() || page->takesAllFiles)
        return FileVerdict::Taken;
    const bool looksInside = rule == FileRule::ByContents;
    const QStringList &accepted = page->extensions;
    const QString extension = formatWord(path);
    if (extension.isEmpty())
        return takenIf(looksInside && page->takesFilesWithoutExtension);
    if (extension == u"M4A"
        && (rule == FileRule::ByExtension ? page->takesAppleLosslessFromFolders : page->takesAppleLossless)) {
        const SoundKind kind = CoreAudioHelper::soundKind(path);
        if (kind == SoundKind::NotReadable)
            return FileVerdict::NotReadable;
        return kind == SoundKind::None ? FileVerdict::Damaged : takenIf(kind == SoundKind::AppleLossless);
    }
    if (accepted.contains(extension))
        return FileVerdict::Taken;
    const bool takesPlainAudio = accepted.contains(u"WAV"_s) || accepted.contains(u"AIF"_s) || accepted.contains(u"AIFF"_s);
    return takenIf(looksInside && takesPlainAudio && CoreAudioHelper::soundKind(path) == SoundKind::PlainIntegers);
}

void NURVController::openFiles(const QStringList &paths)
{
    m_arrivals->add({.label = m_selectedLabel, .door = Door::Application, .paths = paths});
}

bool NURVController::execute(BaseTab &tab)
{
    if (m_executions++ == 0)
        Q_EMIT executing();
    const bool isDone = runAndTell([this, &tab] {
        const QScopedValueRollback executing(m_executingTab, static_cast<const BaseTab *>(&tab));
        tab.executeCommand();
    });
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
