// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ProgressStrip.h"

#include "app/BatchWatch.h"
#include "ui/BatchWords.h"
#include "ui/ProgressLine.h"
#include "ui/ToolTipText.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Text and buttons stand below those of the pages.
constexpr QMargins kMargins{6, 5, 12, 5};
constexpr int kSpacing = 10;

} // namespace

ProgressStrip::ProgressStrip(BatchWatch &batch, QWidget *parent) : QWidget(parent), m_batch(batch)
{
    setObjectName(u"progressStrip"_s);
    createWidgets();
    layOut();
    connectAll();
    showBatch();
}

void ProgressStrip::paintEvent(QPaintEvent * /*event*/)
{
    // Between what belongs to the page and what belongs to all of them.
    QPainter painter(this);
    painter.fillRect(0, 0, width(), 1, palette().color(QPalette::Mid));
}

void ProgressStrip::createWidgets()
{
    m_line = new ProgressLine(this);
    m_line->setObjectName(u"progressLine"_s);
    m_line->setAccessibleName(tr("Progress of the jobs"));

    // Without mnemonics: the strip is there on every page, which has its own.
    m_folderButton = new QPushButton(tr("Open folder"), this);
    m_folderButton->setObjectName(u"openFolderButton"_s);
    m_folderButton->setAccessibleName(tr("Open folder"));

    m_reportButton = new QPushButton(tr("Report"), this);
    m_reportButton->setObjectName(u"lastReportButton"_s);
    m_reportButton->setAccessibleName(tr("Report"));
    m_reportButton->setToolTip(tr("Show the report of these jobs again"));
}

void ProgressStrip::layOut()
{
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(kMargins);
    row->setSpacing(kSpacing);
    row->addWidget(m_line, 1);
    row->addWidget(m_folderButton);
    row->addWidget(m_reportButton);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    keepHeight();
}

void ProgressStrip::keepHeight()
{
    m_line->setMinimumHeight(std::max(m_line->sizeHint().height(), m_folderButton->sizeHint().height()));
}

void ProgressStrip::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        keepHeight();
}

void ProgressStrip::connectAll()
{
    connect(&m_batch, &BatchWatch::changed, this, &ProgressStrip::showBatch);
    connect(m_line, &ProgressLine::clicked, this, &ProgressStrip::clicked);
    connect(m_folderButton, &QPushButton::clicked, this,
            [this] { Q_EMIT folderRequested(m_batch.summary().commonFolder()); });
    connect(m_reportButton, &QPushButton::clicked, &m_batch, &BatchWatch::showReport);
}

void ProgressStrip::showBatch()
{
    const bool isOver = m_batch.state() == BatchWatch::State::Over;
    const QString text = batchWords::line(m_batch);
    m_line->setShare(m_batch.state() == BatchWatch::State::Running ? std::optional(m_batch.progress().share())
                                                                   : std::nullopt);
    m_line->setLine(text.isEmpty() ? tr("No jobs") : text);
    m_line->setForegroundRole(text.isEmpty() ? QPalette::PlaceholderText : QPalette::WindowText);
    const QString folder = isOver ? m_batch.summary().commonFolder() : QString();
    m_folderButton->setToolTip(toolTipText(folder));
    m_folderButton->setVisible(!folder.isEmpty());
    m_reportButton->setVisible(isOver && m_batch.hasReport());
}

} // namespace nurv
