// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BaseTab.h"

#include "app/FileArrivals.h"
#include "app/NURVController.h"
#include "app/PathNames.h"
#include "base/Log.h"
#include "files/FileStatus.h"
#include "process/ResourceFolder.h"
#include "settings/SettingsStore.h"
#include "text/FileNameCollator.h"

#include <QPointer>
#include <QTimer>

#include <algorithm>
#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

BaseTab::BaseTab(NURVController &controller, const QString &label)
    : m_controller(controller), m_label(label), m_pathToCommandLineTools(nurv::pathToCommandLineTools())
{
    m_controller.registerTab(m_label, *this);
}

BaseTab::~BaseTab()
{
    m_controller.unregisterTab(m_label);
}

void BaseTab::addMatchedFiles(const QStringList &paths, const QStringList &bases)
{
    const qsizetype before = m_fileNames.size();
    append(paths, bases);
    if (m_fileNames.size() == before)
        return;
    sortFileNames();
    filesAdded();
}

void BaseTab::addFiles(const QStringList &paths)
{
    addCollected(m_controller.arrivals().search({.label = m_label, .door = Door::List, .paths = paths}));
}

void BaseTab::addCollected(const FileIntake &intake)
{
    m_controller.whenListsMayChange([tab = QPointer<BaseTab>(this), intake] {
        if (tab)
            tab->takeCollected(intake);
    });
}

void BaseTab::takeCollected(const FileIntake &intake)
{
    append(intake.accepted, intake.bases);
    sortFileNames();
    filesAdded();

    QList<Alert> messages;
    const bool tellsSkipped = SettingsStore::instance().boolean(u"warnOnFilesSkipped"_s);
    if (tellsSkipped && !intake.refused.isEmpty()) {
        const QString title = m_fileNames.isEmpty()
                                  ? u"File types not supported by this tab"_s
                                  : u"Some files types were not recognized by this tab and were skipped"_s;
        messages.append({.title = title, .message = {}, .buttons = {u"OK"_s}});
    }
    if (const std::optional<Alert> skipped = skippedAlert(intake, tellsSkipped))
        messages.append(*skipped);
    showBadFileMessages(messages);
}

QString BaseTab::relativeFolderOf(const QString &path) const
{
    return relativeFolder(path, m_bases.value(path));
}

void BaseTab::append(const QStringList &paths, const QStringList &bases)
{
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const QString &path = paths.at(i);
        if (m_bases.contains(path))
            continue;
        m_bases.insert(path, bases.value(i));
        m_fileNames.append(path);
    }
}

void BaseTab::sortFileNames()
{
    FileNameCollator::sortPaths(m_fileNames);
    announceList();
}

void BaseTab::announceList()
{
    m_selectedRows.clear();
    Q_EMIT fileNamesChanged();
    Q_EMIT selectedRowsChanged();
    selectionChanged();
}

QStringList BaseTab::columnTitles() const
{
    return {u"Name"_s};
}

void BaseTab::setSelectedRows(const QList<int> &rows)
{
    QList<int> sorted = rows;
    sorted.removeIf([this](int row) { return row < 0 || row >= m_fileNames.size(); });
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    if (sorted == m_selectedRows)
        return;
    m_selectedRows = sorted;
    Q_EMIT selectedRowsChanged();
    selectionChanged();
}

void BaseTab::showBadFileMessages(const QList<Alert> &messages)
{
    if (messages.isEmpty())
        return;
    const auto show = [&prompts = m_controller.prompts(), messages] {
        for (const Alert &message : messages)
            prompts.ask(message);
    };
    if (m_refusalMessageDelayMs > 0)
        QTimer::singleShot(m_refusalMessageDelayMs, this, show);
    else
        show();
}

void BaseTab::filesAdded()
{
    Q_EMIT filesWereAdded();
}

QStringList BaseTab::chooseFiles()
{
    QStringList extensions;
    for (const QString &extension : m_controller.offeredExtensions(m_label))
        extensions.append(extension.toLower());
    return m_controller.prompts().chooseFiles({.title = u"Choose files for processing"_s,
                                               .buttonText = u"Add Files"_s,
                                               .extensions = extensions,
                                               .offersAllFiles = true});
}

void BaseTab::addButtonClick()
{
    if (const QStringList paths = chooseFiles(); !paths.isEmpty())
        addFiles(paths);
}

void BaseTab::clearFiles()
{
    m_fileNames.clear();
    remember(std::exchange(m_bases, {}));
    announceList();
}

QStringList BaseTab::listedExtensions() const
{
    QSet<QString> distinct;
    for (const QString &path : m_fileNames) {
        const QString extension = pathExtension(path);
        if (!extension.isEmpty())
            distinct.insert(extension);
    }
    QStringList extensions = distinct.values();
    extensions.sort();
    return extensions;
}

void BaseTab::removeIf(const std::function<bool(const QString &path)> &isUnwanted)
{
    Removal removal;
    m_fileNames.removeIf([&](const QString &path) {
        const bool unwanted = isUnwanted(path);
        if (unwanted)
            removal.insert(path, m_bases.take(path));
        return unwanted;
    });
    remember(std::move(removal));
}

void BaseTab::remember(Removal removal)
{
    constexpr std::size_t kMostSteps = 50;
    if (removal.isEmpty())
        return;
    m_removals.push_back(std::move(removal));
    if (m_removals.size() > kMostSteps)
        m_removals.pop_front();
}

void BaseTab::undoRemoval()
{
    m_controller.whenListsMayChange([tab = QPointer<BaseTab>(this)] {
        if (!tab || tab->m_removals.empty())
            return;
        const Removal removal = std::move(tab->m_removals.back());
        tab->m_removals.pop_back();
        const qsizetype before = tab->m_fileNames.size();
        tab->addMatchedFiles(removal.keys(), removal.values());
        // They were all there again; what can be undone is another removal now.
        if (tab->m_fileNames.size() == before)
            tab->announceList();
    });
}

void BaseTab::filterGivenExtension(const QString &extension)
{
    removeIf([&](const QString &path) { return pathExtension(path) == extension; });
    announceList();
}

void BaseTab::deleteSelectedRows(const QList<int> &rows)
{
    QSet<QString> selected;
    for (const int row : rows) {
        if (row >= 0 && row < m_fileNames.size())
            selected.insert(m_fileNames.at(row));
    }
    removeIf([&](const QString &path) { return selected.contains(path); });
    sortFileNames();
}

std::optional<QString> BaseTab::chooseOutputFolder()
{
    try {
        return m_controller.prompts().chooseFolder({.title = u"Choose output directory"_s,
                                                    .option = u"output-dir"_s,
                                                    .folderKey = outputFolderKey()});
    } catch (const std::exception &failure) {
        qCWarning(appLog) << "The output folder could not be chosen:" << failure.what();
        return std::nullopt;
    }
}

std::optional<QString> BaseTab::openSavePanel(const QString &suggestedName, const std::optional<QString> &title)
{
    return m_controller.prompts().chooseSavePath(
        {.title = title.value_or(QString()), .suggestedName = suggestedName, .option = u"output"_s});
}

bool BaseTab::canBeText(const QString &path, const QStringList &sources, const QString &what, const QString &reason)
{
    const bool isSource = sources.isEmpty() || std::any_of(sources.begin(), sources.end(), [&](const QString &source) {
                              return isSameEntry(source, path);
                          });
    if (!isSource && !isSoundName(path))
        return true;
    m_controller.prompts().ask({.title = u"%1 cannot be %2"_s.arg(lastPathComponent(path), what),
                                .message = isSource ? reason : u"Its name is that of a sound file."_s,
                                .buttons = {u"OK"_s}});
    return false;
}

bool BaseTab::confirmDeletingOriginals(bool deleteOriginals)
{
    if (!deleteOriginals || !SettingsStore::instance().boolean(u"warnOnDelete"_s))
        return true;
    const bool goesToTrash = SettingsStore::instance().integer(u"trashOrDelete"_s) != 0;
    const Alert question{
        .title = u"You have chosen to delete the original files.  Are you sure you want to continue?"_s,
        .message = goesToTrash ? u"They will be moved to the trash."_s : u"They will be deleted for good."_s,
        .buttons = {u"Yes"_s, u"No"_s},
        .isWarning = true};
    return m_controller.prompts().ask(question) == u"Yes";
}

} // namespace nurv
