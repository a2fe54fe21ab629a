// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/TabPage.h"

#include "app/BaseTab.h"
#include "app/FileArrivals.h"
#include "app/Control.h"
#include "app/NURVController.h"
#include "app/PathNames.h"
#include "app/UserPrompts.h"
#include "base/GuiThread.h"
#include "base/WorkerThreads.h"
#include "settings/SettingsStore.h"
#include "text/HumanUnits.h"
#include "text/PrintableText.h"
#include "ui/ElidedLabel.h"
#include "ui/EmptyListPanel.h"
#include "ui/FileFactsReader.h"
#include "ui/FileListView.h"
#include "ui/GivenFiles.h"
#include "ui/OptionArea.h"
#include "ui/ToolTipText.h"

#include <QCoreApplication>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <cmath>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kPageMargin = 12;
constexpr int kSpacing = 10;
constexpr int kBusyBarWidth = 90;

} // namespace

TabPage::TabPage(BaseTab &tab, QWidget *parent) : QWidget(parent), m_tab(tab)
{
    createWidgets();
    layOut();
    connectAll();
    showState();
}

void TabPage::createWidgets()
{
    m_fileList = new FileListView(m_tab, this);
    m_fileList->setObjectName(u"fileList"_s);

    m_addButton = new QPushButton(tr("&Add…"), this);
    m_addButton->setObjectName(u"addButton"_s);
    m_addButton->setAccessibleName(tr("Add files"));
    m_addButton->setToolTip(tr("Choose files for the list"));

    m_clearButton = new QPushButton(tr("Clea&r"), this);
    m_clearButton->setObjectName(u"clearButton"_s);
    m_clearButton->setAccessibleName(tr("Clear the list"));
    m_clearButton->setToolTip(tr("Take every file off the list; the files themselves stay"));

    m_executeButton = new QPushButton(tr("E&xecute"), this);
    m_executeButton->setObjectName(u"executeButton"_s);
    m_executeButton->setAccessibleName(tr("Execute"));
    m_executeButton->setToolTip(tr("Process the files of the list"));
    m_executeButton->setDefault(true);

    m_countLabel = new QLabel(this);
    m_countLabel->setObjectName(u"fileCount"_s);
    m_countLabel->setForegroundRole(QPalette::PlaceholderText);

    m_sumLabel = new QLabel(this);
    m_sumLabel->setObjectName(u"fileSum"_s);
    m_sumLabel->setForegroundRole(QPalette::PlaceholderText);

    m_planLabel = new ElidedLabel(this);
    m_planLabel->setObjectName(u"plan"_s);

    m_elsewhere = new QWidget(this);
    m_elsewhere->setObjectName(u"elsewhere"_s);
    m_elsewhereLabel = new ElidedLabel(m_elsewhere);
    m_elsewhereLabel->setObjectName(u"elsewhereLabel"_s);
    m_elsewhereButton = new QPushButton(m_elsewhere);
    m_elsewhereButton->setObjectName(u"elsewhereButton"_s);
    m_elsewhereButton->setAccessibleName(tr("Take them to the page where they belong"));
    m_elsewhere->hide();

    m_busyBar = new QProgressBar(this);
    m_busyBar->setObjectName(u"addingFilesBar"_s);
    m_busyBar->setAccessibleName(tr("Adding files"));
    m_busyBar->setRange(0, 0);
    m_busyBar->setTextVisible(false);
    m_busyBar->setFixedWidth(kBusyBarWidth);

    m_options = new QWidget(this);
    m_optionColumn = new QVBoxLayout(m_options);
    m_optionColumn->setContentsMargins(0, 0, 0, 0);
    m_optionColumn->setSpacing(kSpacing);
}

void TabPage::layOut()
{
    m_optionArea = new OptionArea(m_options, this);
    m_optionArea->setObjectName(u"options"_s);

    auto *const upper = new QHBoxLayout;
    upper->setSpacing(kPageMargin);
    upper->addWidget(m_fileList, 1);
    upper->addWidget(m_optionArea);

    auto *const buttons = new QHBoxLayout;
    buttons->setSpacing(kSpacing);
    buttons->addWidget(m_addButton);
    buttons->addWidget(m_clearButton);
    buttons->addSpacing(kSpacing);
    buttons->addWidget(m_busyBar);
    buttons->addWidget(m_countLabel);
    buttons->addWidget(m_sumLabel);
    buttons->addStretch(1);
    buttons->addWidget(m_planLabel);
    buttons->addWidget(m_executeButton);

    auto *const elsewhere = new QHBoxLayout(m_elsewhere);
    elsewhere->setContentsMargins(0, 0, 0, 0);
    elsewhere->addWidget(m_elsewhereLabel);
    elsewhere->addWidget(m_elsewhereButton);
    elsewhere->addStretch(1);

    auto *const page = new QVBoxLayout(this);
    page->setContentsMargins(kPageMargin, kPageMargin, kPageMargin, kPageMargin);
    page->setSpacing(kPageMargin);
    page->addLayout(upper, 1);
    page->addWidget(m_elsewhere);
    page->addLayout(buttons);
}

void TabPage::connectAll()
{
    connect(m_addButton, &QPushButton::clicked, this, &TabPage::chooseFiles);
    connect(m_clearButton, &QPushButton::clicked, &m_tab, &BaseTab::clearButtonClick);
    connect(m_executeButton, &QPushButton::clicked, this, [this] { static_cast<void>(m_tab.nurvController().execute(m_tab)); });
    connect(&m_tab, &BaseTab::fileNamesChanged, this, &TabPage::showState);
    connect(&m_tab, &BaseTab::fileNamesChanged, m_elsewhere, &QWidget::hide);
    connect(m_elsewhereButton, &QPushButton::clicked, this, &TabPage::goWhereFilesBelong);
    connect(&m_fileList->facts(), &FileFactsReader::factsChanged, this, &TabPage::showSum);
    connect(m_fileList, &FileListView::filesDropped, this, &TabPage::addFiles);
    const FileArrivals &arrivals = m_tab.nurvController().arrivals();
    connect(&arrivals, &FileArrivals::searchBegan, this, [this](const QString &label) { countSearches(label, 1); });
    connect(&arrivals, &FileArrivals::delivered, this, [this](const QString &label, const FileIntake &found) {
        if (label == m_tab.label())
            tellWhereFilesBelong(found);
    });
    connect(&arrivals, &FileArrivals::searchEnded, this, [this](const QString &label) { countSearches(label, -1); });
}

void TabPage::alignOptions(const QList<TabPage *> &pages)
{
    QList<OptionArea *> areas;
    for (const TabPage *const page : pages)
        areas.append(page->m_optionArea);
    OptionArea::align(areas);
}

QVBoxLayout *TabPage::addOptionGroup(const QString &title, const QString &objectName)
{
    m_lastGroup = new QGroupBox(title, m_options);
    m_lastGroup->setObjectName(objectName);
    auto *const column = new QVBoxLayout(m_lastGroup);
    m_optionColumn->addWidget(m_lastGroup);
    return column;
}

void TabPage::finishOptions()
{
    m_optionColumn->addStretch(1);
    m_optionArea->measure();
    QWidget *before = m_fileList;
    const QList<QWidget *> options = m_options->findChildren<QWidget *>();
    for (QWidget *const option : options) {
        // The list that a box opens is a window of its own.
        if (option->focusPolicy() == Qt::NoFocus || option->window() != window())
            continue;
        setTabOrder(before, option);
        before = option;
    }
    setTabOrder(before, m_addButton);
    setTabOrder(m_addButton, m_clearButton);
    setTabOrder(m_clearButton, m_executeButton);
}

void TabPage::showWork(const QString &what)
{
    showState();
    if (!what.isEmpty())
        m_countLabel->setText(what);
    // No event is handled until the work is done.
    m_countLabel->repaint();
}

void TabPage::showSum()
{
    const FileFactsReader &facts = m_fileList->facts();
    const bool isKnown = facts.isComplete() && !m_tab.fileNames().isEmpty() && !isAddingFiles();
    m_sumLabel->setVisible(isKnown);
    if (!isKnown)
        return;
    const std::chrono::milliseconds length(std::llround(facts.totalSeconds() * 1000.0));
    QStringList parts{QString()};
    if (length.count() > 0)
        parts.append(aboutDurationText(length));
    parts.append(sizeText(facts.totalBytes()));
    m_sumLabel->setText(parts.join(u" · "_s).trimmed());
}

void TabPage::planOf(const QList<Control *> &controls)
{
    for (Control *const control : controls)
        connect(control, &Control::changed, this, &TabPage::showPlan);
    connect(&SettingsStore::instance(), &SettingsStore::changed, this, [this](const QString &key) {
        if (key == m_tab.outputFolderKey() || key == u"trashOrDelete")
            showPlan();
    });
    showPlan();
}

QString TabPage::placeWords(bool isBesideSources) const
{
    if (isBesideSources)
        return tr("beside each source");
    const QString folder = SettingsStore::instance().string(m_tab.outputFolderKey());
    return folder.isEmpty() ? tr("into a folder of your choice")
                            : tr("into %1 or another folder").arg(printableLine(lastPathComponent(folder)));
}

void TabPage::showPlan()
{
    const QString words = isReady() ? plan() : QString();
    m_planLabel->setVisible(!words.isEmpty());
    m_planLabel->setLine(words.isEmpty() ? QString() : u"→ "_s + words);
    m_executeButton->setToolTip(words.isEmpty() ? tr("Process the files of the list")
                                                : toolTipText(m_countLabel->text() + u" → "_s + words));
}

void TabPage::tellWhereFilesBelong(const FileIntake &found)
{
    if (!found.accepted.isEmpty() || found.refused.isEmpty())
        return;
    QStringList refused;
    for (const RefusedFile &file : found.refused)
        refused.append(file.path);
    NURVController &controller = m_tab.nurvController();
    const auto &tools = controller.tools();
    const QString other = controller.pageFor(refused);
    const auto tool = std::find_if(tools.begin(), tools.end(), [&](const Tool &each) { return each.label == other; });
    if (other == m_tab.label() || tool == tools.end())
        return;
    // That a page takes any file does not make it theirs.
    if (tool->takesAllFiles && std::none_of(refused.begin(), refused.end(), [tool](const QString &path) {
            return tool->extensions.contains(formatWord(path));
        }))
        return;
    m_otherPage = other;
    m_filesOfOtherPage.clear();
    for (const GivenPath &given : found.given)
        m_filesOfOtherPage.append(given.path);
    const QString title = QCoreApplication::translate("Tool", tool->title).remove(u'&');
    m_elsewhereLabel->setLine(refused.size() == 1
                                  ? tr("%1 belongs on the page “%2”.").arg(printableLine(lastPathComponent(refused.first())), title)
                                  : tr("These %1 files belong on the page “%2”.").arg(QLocale().toString(refused.size()), title));
    m_elsewhereButton->setText(tr("Take Them to %1").arg(title));
    m_elsewhere->show();
}

void TabPage::goWhereFilesBelong()
{
    m_elsewhere->hide();
    NURVController &controller = m_tab.nurvController();
    controller.selectTab(m_otherPage);
    controller.arrivals().receive({.label = m_otherPage, .door = Door::List, .paths = m_filesOfOtherPage});
}

void TabPage::offerRecentFolders(const RecentFolders &folders)
{
    auto *const panel = new EmptyListPanel(m_fileList, folders);
    connect(panel, &EmptyListPanel::filesWanted, this, &TabPage::chooseFiles);
    connect(panel, &EmptyListPanel::folderWanted, this, &TabPage::chooseFolder);
    connect(panel, &EmptyListPanel::recentFolderChosen, this, [this](const QString &path) { addPaths({path}); });
    QWidget *before = m_fileList;
    for (QWidget *const button : panel->buttons()) {
        setTabOrder(before, button);
        before = button;
    }
}

void TabPage::chooseFolder()
{
    const std::optional<QString> folder = m_tab.nurvController().prompts().chooseFolder(
        {.title = tr("Choose a folder to add"), .buttonText = tr("Add Folder")});
    if (folder)
        addPaths({*folder});
}

void TabPage::chooseFiles()
{
    addPaths(m_tab.chooseFiles());
}

void TabPage::addPaths(const QStringList &paths)
{
    addFiles({.paths = paths, .refused = {}});
}

void TabPage::addFiles(const GivenFiles &files)
{
    m_tab.nurvController().arrivals().receive(
        {.label = m_tab.label(), .door = Door::List, .paths = files.paths, .refusedNames = files.refused});
}

void TabPage::countSearches(const QString &label, int change)
{
    if (label != m_tab.label())
        return;
    m_searchesRunning += change;
    showState();
}

bool TabPage::isReady() const
{
    return !isAddingFiles() && !m_tab.fileNames().isEmpty() && canExecute();
}

void TabPage::execute()
{
    m_executeButton->click();
}

void TabPage::showState()
{
    const bool isAdding = isAddingFiles();
    const auto count = m_tab.fileNames().size();
    m_busyBar->setVisible(isAdding);
    if (isAdding)
        m_countLabel->setText(tr("Adding files…"));
    else if (count == 0)
        m_countLabel->clear();
    else if (count == 1)
        m_countLabel->setText(tr("1 file"));
    else
        m_countLabel->setText(tr("%1 files").arg(QLocale().toString(count)));
    showSum();
    showPlan();
    m_clearButton->setEnabled(count > 0);
    m_executeButton->setEnabled(isReady());
    if (isReady() != m_wasReady) {
        m_wasReady = isReady();
        Q_EMIT readinessChanged(m_wasReady);
    }
}

} // namespace nurv
