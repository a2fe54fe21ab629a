// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NURVTask.h"

#include "base/GuiThread.h"
#include "base/Log.h"
#include "engine/NURVTaskQueue.h"
#include "engine/NURVTaskResults.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// What the bar shows of a progress: some programs' parsers count from -1, and a figure
/// can stand behind the end of other digits.
double onTheBar(double progress)
{
    return std::clamp(progress, 0.0, 100.0);
}

/// What a job that ended well did not do all the same.
QString remarkOf(const TaskOutcome &outcome)
{
    if (outcome.original == TaskOutcome::Original::Kept)
        return u"; original kept: "_s + outcome.problem;
    if (!outcome.problem.isEmpty())
        return u"; "_s + outcome.problem;
    return outcome.proof == TaskOutcome::Proof::NotProven ? u"; not proven"_s : QString();
}

} // namespace

NURVTask::NURVTask(NURVTaskQueue *queue)
    : m_queue(queue),
      m_results(std::make_shared<NURVTaskResults>()), m_textField{.text = {}, .font = {.pointSize = 12, .bold = true}},
      m_topTextField{.text = u"Waiting..."_s, .font = {.pointSize = 9, .bold = false}}
{
    m_cancelButton.toolTip = u"Cancel"_s;
    m_cancelButton.action = [this] { cancelTask(); };
    m_results->addTaskInSet(*this);
}

NURVTask::~NURVTask()
{
    // A set that still counts the job must not wait for it.
    m_flags->done = true;
}

QStringList NURVTask::sourcePaths() const
{
    return m_sourcePath.isEmpty() ? QStringList() : QStringList(m_sourcePath);
}

NURVTaskQueue *NURVTask::queue() const
{
    return m_queue.data();
}

void NURVTask::setResults(std::shared_ptr<NURVTaskResults> results)
{
    m_results = std::move(results);
}

void NURVTask::dropResults()
{
    showOnGuiThread([this] { setResults(nullptr); });
}

void NURVTask::dropResultsOfSuccess()
{
    if (!error() && warnings().isEmpty())
        dropResults();
}

QString NURVTask::report() const
{
    return m_results ? m_results->results(*this) : QString();
}

void NURVTask::nameRow(const QString &title)
{
    setTitle(title);
    showMainLine(title);
}

void NURVTask::showMainLine(const QString &text)
{
    setTextFieldString(text);
    setTextFieldValue();
}

void NURVTask::showStatus(const QString &text)
{
    setTopTextFieldString(text);
    setTopTextFieldValue();
}

void NURVTask::startTask()
{
    showOnGuiThread([this] { doStartTaskOnMainThread(); });
}

void NURVTask::doStartTaskOnMainThread()
{
    m_textField.text = m_title;
    becomeActive();
}

void NURVTask::becomeActive()
{
    m_flags->active = true;
    m_flags->done = false;
    paint([this] {
        m_cancelButton.hidden = false;
        m_progressIndicator.hidden = false;
    });
}

void NURVTask::cancelTask()
{
    // The queue may let go of a job that stops, and the caller may only refer to it.
    const std::shared_ptr<NURVTask> self = weak_from_this().lock();
    m_flags->cancelled = true;
    stopTask();
}

void NURVTask::markStopped()
{
    m_flags->active = false;
    m_flags->done = true;
}

void NURVTask::stopTask()
{
    // Before another member can find that all have stopped.
    if (const std::shared_ptr<NURVTaskResults> set = m_results)
        set->noteStop(*this);
    markStopped();
    if (const std::shared_ptr<NURVTaskResults> set = m_results) {
        const std::shared_ptr<NURVTask> next = set->finishIfAllDone();
        if (next && !next->isActive() && !next->isDone()) {
            postToGuiThread([queue = m_queue, next] {
                if (queue)
                    queue->addTask(next);
            });
        }
    }
    setGuiFields();
}

void NURVTask::reportCompletion()
{
    const std::shared_ptr<NURVTask> self = shared_from_this();
    showOnGuiThread([self] {
        if (NURVTaskQueue *const queue = self->queue())
            queue->taskCompleted(self);
    });
}

void NURVTask::reportSettled()
{
    // Not waited for: the worker that tells it has nothing else to do.
    postToGuiThread([self = shared_from_this()] {
        if (NURVTaskQueue *const queue = self->queue())
            Q_EMIT queue->taskSettled(self);
    });
}

void NURVTask::appendResultsForSelf(const QString &text)
{
    if (m_results)
        m_results->appendResults(text, *this);
}

void NURVTask::failWith(const QString &reason)
{
    setError(true);
    appendResultsForSelf(reason);
}

void NURVTask::warn(const QString &text)
{
    m_warnings.append(text);
    appendResultsForSelf(text + u'\n');
    if (m_outcome.problem.isEmpty())
        m_outcome.problem = text;
    qCWarning(failedJobLog).noquote() << text;
}

void NURVTask::appendResults(const QString &text)
{
    if (m_results)
        m_results->appendResults(text);
}

void NURVTask::paint(const std::function<void()> &change)
{
    showOnGuiThread([this, &change] {
        change();
        if (m_queue)
            m_queue->rowStateChanged(*this);
    });
}

void NURVTask::updateStatus()
{
    paint([this] {
        m_topTextField.text = m_topTextFieldString;
        m_progressIndicator.value = onTheBar(m_progressIndicatorValue);
    });
}

void NURVTask::setTopTextFieldValue()
{
    paint([this] { m_topTextField.text = m_topTextFieldString; });
}

void NURVTask::setTextFieldValue()
{
    paint([this] { m_textField.text = m_textFieldString; });
}

void NURVTask::setProgressIndicatorValueInGui()
{
    paint([this] { m_progressIndicator.value = onTheBar(m_progressIndicatorValue); });
}

void NURVTask::startIndeterminateProgressBar()
{
    paint([this] {
        m_progressIndicator.indeterminate = true;
        m_progressIndicator.animated = true;
    });
}

void NURVTask::stopIndeterminateProgressBar()
{
    paint([this] {
        m_progressIndicator.indeterminate = false;
        m_progressIndicator.animated = false;
    });
}

void NURVTask::setGuiFields()
{
    paint([this] {
        if (cancelled()) {
            m_textField.text = u"Canceled"_s;
            m_textField.color = RowColor::SystemRed;
        } else if (error()) {
            m_topTextField.text = u"Error"_s;
            m_textField.color = RowColor::SystemRed;
            m_progressIndicator.animated = false;
            qCWarning(failedJobLog).noquote() << description() << "Error";
        } else {
            m_textField.color = RowColor::DarkGreen;
            m_topTextField.text = u"Complete"_s + remarkOf(m_outcome);
            m_progressIndicator.hidden = true;
        }
        m_cancelButton.hidden = true;
    });
}

void NURVTask::hide()
{
    paint([this] { m_hidden = true; });
}

} // namespace nurv
