// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/TabPage.h"

#include "app/BaseTab.h"
#include "app/FileArrivals.h"
#include "app/NURVController.h"
#include "base/GuiThread.h"
#include "base/WorkerThreads.h"
#include "ui/FileListView.h"
#include "ui/GivenFiles.h"

#include <QEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kPageMargin = 12;
constexpr int kSpacing = 10;
constexpr int kBusyBarWidth = 90;
constexpr int kLeastOptionCharacters = 30;

/// A scroll area that is wide enough for its contents, and scrolls up and down only. What is chosen later may make it wider,
/// never narrower.
class OptionArea final : public QScrollArea {
public:
    using QScrollArea::QScrollArea;

    [[nodiscard]] QSize sizeHint() const override
    {
        const int least = fontMetrics().averageCharWidth() * kLeastOptionCharacters;
        m_widest = std::max({m_widest, least, widget()->sizeHint().width()});
        return {m_widest + verticalScrollBar()->sizeHint().width(), QScrollArea::sizeHint().height()};
    }
    [[nodiscard]] QSize minimumSizeHint() const override { return {sizeHint().width(), 0}; }

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (object == widget() && event->type() == QEvent::LayoutRequest)
            updateGeometry();
        return QScrollArea::eventFilter(object, event);
    }

private:
    mutable int m_widest = 0;
};

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
    auto *const area = new OptionArea(this);
    area->setObjectName(u"options"_s);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidgetResizable(true);
    area->setWidget(m_options);
    area->setFocusPolicy(Qt::NoFocus);
    area->viewport()->setAutoFillBackground(false);
    m_options->setAutoFillBackground(false);
    area->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);

    auto *const upper = new QHBoxLayout;
    upper->setSpacing(kPageMargin);
    upper->addWidget(m_fileList, 1);
    upper->addWidget(area);

    auto *const buttons = new QHBoxLayout;
    buttons->setSpacing(kSpacing);
    buttons->addWidget(m_addButton);
    buttons->addWidget(m_clearButton);
    buttons->addSpacing(kSpacing);
    buttons->addWidget(m_busyBar);
    buttons->addWidget(m_countLabel);
    buttons->addStretch(1);
    buttons->addWidget(m_executeButton);

    auto *const page = new QVBoxLayout(this);
    page->setContentsMargins(kPageMargin, kPageMargin, kPageMargin, kPageMargin);
    page->setSpacing(kPageMargin);
    page->addLayout(upper, 1);
    page->addLayout(buttons);
}

void TabPage::connectAll()
{
    connect(m_addButton, &QPushButton::clicked, this, &TabPage::chooseFiles);
    connect(m_clearButton, &QPushButton::clicked, &m_tab, &BaseTab::clearButtonClick);
    connect(m_executeButton, &QPushButton::clicked, this, [this] { static_cast<void>(m_tab.nurvController().execute(m_tab)); });
    connect(&m_tab, &BaseTab::fileNamesChanged, this, &TabPage::showState);
    connect(m_fileList, &FileListView::filesDropped, this, &TabPage::addFiles);
    const FileArrivals &arrivals = m_tab.nurvController().arrivals();
    connect(&arrivals, &FileArrivals::searchBegan, this, [this](const QString &label) { countSearches(label, 1); });
    connect(&arrivals, &FileArrivals::searchEnded, this, [this](const QString &label) { countSearches(label, -1); });
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
    m_clearButton->setEnabled(count > 0);
    m_executeButton->setEnabled(isReady());
    if (isReady() != m_wasReady) {
        m_wasReady = isReady();
        Q_EMIT readinessChanged(m_wasReady);
    }
}

} // namespace nurv
