// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/StatusPanelController.h"

#include "text/PrintableText.h"

#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kMargin = 18;
constexpr int kSpacing = 10;
constexpr int kWidth = 380;
/// The bar's own values are whole numbers.
constexpr int kSteps = 1000;

} // namespace

StatusPanelController::StatusPanelController(QWidget *parent)
    : QWidget(parent, Qt::Dialog), m_textField(new QLabel(this)), m_progressBar(new QProgressBar(this))
{
    setObjectName(u"statusPanel"_s);
    setWindowTitle(tr("Status"));
    m_textField->setObjectName(u"statusPanelText"_s);
    m_textField->setTextFormat(Qt::PlainText);
    m_textField->setWordWrap(true);
    m_progressBar->setObjectName(u"statusPanelBar"_s);
    m_progressBar->setAccessibleName(tr("Progress"));
    m_progressBar->setTextVisible(false);
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kSpacing);
    column->addWidget(m_textField);
    column->addWidget(m_progressBar);
    setMinimumWidth(kWidth);
    showProgress();
}

void StatusPanelController::setText(const QString &text)
{
    m_textField->setText(printableLine(text));
}

void StatusPanelController::setDeterminate(double minimum, double maximum)
{
    m_isDeterminate = true;
    m_minimum = minimum;
    m_maximum = maximum;
    setProgress(m_value);
}

void StatusPanelController::setInDeterminate()
{
    m_isDeterminate = false;
    showProgress();
}

void StatusPanelController::startAnimation()
{
    m_isAnimated = true;
    showProgress();
}

void StatusPanelController::stopAnimation()
{
    m_isAnimated = false;
    showProgress();
}

void StatusPanelController::setProgress(double value)
{
    // What is no number would stay for ever.
    m_value = std::isfinite(value) ? std::max(m_minimum, std::min(value, m_maximum)) : m_minimum;
    showProgress();
}

void StatusPanelController::incrementProgress(double step)
{
    setProgress(m_value + step);
}

void StatusPanelController::showProgress()
{
    // A bar without a range moves by itself.
    m_progressBar->setRange(0, !m_isDeterminate && m_isAnimated ? 0 : kSteps);
    const double length = m_maximum - m_minimum;
    const bool hasShare = m_isDeterminate && std::isfinite(length) && length > 0.0;
    m_progressBar->setValue(hasShare ? static_cast<int>(std::lround((m_value - m_minimum) / length * kSteps)) : 0);
}

} // namespace nurv
