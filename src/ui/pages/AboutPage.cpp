// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/AboutPage.h"

#include "app/NURVController.h"
#include "base/GuiThread.h"
#include "base/WorkerThreads.h"
#include "programs/ExternalPrograms.h"
#include "text/PrintableText.h"
#include "ui/ApplicationIcon.h"
#include "ui/StatusQueueCell.h"
#include "ui/ToolTipText.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPointer>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kMargin = 20;
constexpr int kLogoSize = 72;
constexpr double kTitleFactor = 1.7;

enum Column { Name, Found, Version, Package, Path, ColumnCount };

} // namespace

AboutPage::AboutPage(QWidget *parent) : QWidget(parent)
{
    setObjectName(u"aboutPage"_s);
    createWidgets();
    layOut();
}

void AboutPage::createWidgets()
{
    m_logo = new QLabel(this);
    m_logo->setPixmap(applicationIcon().pixmap(QSize(kLogoSize, kLogoSize), devicePixelRatioF()));

    m_titleLabel = new QLabel(NURVController::titleText(), this);
    m_titleLabel->setObjectName(u"NurvTitleTextField"_s);
    QFont titleFont = m_titleLabel->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * kTitleFactor);
    titleFont.setBold(true);
    m_titleLabel->setFont(titleFont);

    m_buildLabel = new QLabel(NURVController::buildText(), this);
    m_buildLabel->setObjectName(u"buildTextField"_s);
    m_buildLabel->setForegroundRole(QPalette::PlaceholderText);

    m_licenseLabel = new QLabel(tr("Free software under the GNU General Public License, version 3 or later."), this);
    m_licenseLabel->setObjectName(u"licenseLabel"_s);
    m_licenseLabel->setWordWrap(true);

    m_summary = new QLabel(this);
    m_summary->setObjectName(u"programSummary"_s);

    m_programs = new QTreeWidget(this);
    m_programs->setObjectName(u"externalPrograms"_s);
    m_programs->setAccessibleName(tr("External programs"));
    m_programs->setColumnCount(ColumnCount);
    m_programs->setHeaderLabels({tr("Program"), tr("Status"), tr("Version"), tr("Package"), tr("Where")});
    m_programs->setRootIsDecorated(false);
    m_programs->setUniformRowHeights(true);
    m_programs->setAlternatingRowColors(true);
    m_programs->setTextElideMode(Qt::ElideMiddle);
    m_programs->setAllColumnsShowFocus(true);
    const auto packageText = [](const ExternalProgram &program) {
        if (!program.isBundled)
            return program.package;
        if (!isPartOfThisBuild(program))
            return tr("not included yet");
        return program.package.isEmpty() ? tr("included") : tr("included, needs %1").arg(program.package);
    };
    for (const ExternalProgram &program : externalPrograms()) {
        auto *const item = new QTreeWidgetItem(m_programs, {program.name});
        item->setToolTip(Name, toolTipText(program.purpose));
        item->setText(Package, packageText(program));
    }
    m_programs->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_programs->header()->setStretchLastSection(true);
}

void AboutPage::layOut()
{
    auto *const titles = new QVBoxLayout;
    titles->setSpacing(4);
    titles->addStretch(1);
    titles->addWidget(m_titleLabel);
    titles->addWidget(m_buildLabel);
    titles->addWidget(m_licenseLabel);
    titles->addStretch(1);
    auto *const head = new QHBoxLayout;
    head->setSpacing(kMargin);
    head->addWidget(m_logo, 0, Qt::AlignTop);
    head->addLayout(titles, 1);

    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kMargin / 2);
    column->addLayout(head);
    column->addSpacing(kMargin / 2);
    column->addWidget(m_summary);
    column->addWidget(m_programs, 1);
}

void AboutPage::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!m_wasShown)
        checkPrograms();
    m_wasShown = true;
}

void AboutPage::checkPrograms()
{
    if (m_isChecking)
        return;
    m_isChecking = true;
    m_missing = 0;
    m_summary->setText(tr("Looking for the external programs…"));
    workerThreads::startOrRun([page = QPointer<AboutPage>(this)] {
        const std::vector<ExternalProgram> &programs = externalPrograms();
        for (std::size_t row = 0; row < programs.size(); ++row) {
            const ProgramStatus status = checkProgram(programs[row]);
            postToGuiThread([page, row, status] {
                if (page)
                    page->showStatus(static_cast<int>(row), status);
            });
        }
        postToGuiThread([page] {
            if (page)
                page->finishCheck();
        });
    });
}

void AboutPage::showStatus(int row, const ProgramStatus &status)
{
    QTreeWidgetItem *const item = m_programs->topLevelItem(row);
    const bool isFound = status.state == ProgramStatus::State::Found;
    m_missing += isFound ? 0 : 1;
    switch (status.state) {
    case ProgramStatus::State::Found: item->setText(Found, tr("found")); break;
    case ProgramStatus::State::NotFound: item->setText(Found, tr("not found")); break;
    case ProgramStatus::State::NotExecutable: item->setText(Found, tr("not executable")); break;
    }
    item->setForeground(Found,
                        isFound ? palette().brush(QPalette::Text) : QBrush(StatusQueueCell::systemRed(palette())));
    item->setText(Version, status.version);
    item->setText(Path, printableLine(status.path));
    item->setToolTip(Path, toolTipText(status.path));
}

void AboutPage::finishCheck()
{
    m_isChecking = false;
    const int missing = m_missing;
    if (missing == 0)
        m_summary->setText(tr("All external programs have been found."));
    else if (missing == 1)
        m_summary->setText(tr("One external program is missing; what needs it cannot run."));
    else
        m_summary->setText(
            tr("%1 external programs are missing; what needs them cannot run.").arg(missing));
    Q_EMIT programsChecked();
}

} // namespace nurv
