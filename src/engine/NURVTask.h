// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/RowState.h"
#include "engine/TaskOutcome.h"
#include "programs/NeededPrograms.h"

#include <QPointer>
#include <QString>
#include <QStringList>

#include <atomic>
#include <memory>

namespace nurv {

class NURVTaskQueue;
class NURVTaskResults;

/// The flags by which the queue schedules a job. Shared with the result set,
/// which looks at `done` without keeping the job alive.
struct TaskFlags {
    std::atomic<bool> active = false;
    std::atomic<bool> done = false;
    std::atomic<bool> cancelled = false;
    std::atomic<bool> error = false;
};

/// One unit of queued work, with the state of its row in the status list.
///
///     waiting ──> active ──> complete | error
///        └───────────┴─────> cancelled
///
/// Held by `std::shared_ptr`: by the queue while it is listed there and by its
/// worker thread while that runs. Row state changes on the GUI thread only; the
/// operations that paint may be called on any thread and wait for that thread.
/// A job is never started again.
class NURVTask : public std::enable_shared_from_this<NURVTask> {
public:
    /// Makes a waiting job, the only member of a result set of its own.
    explicit NURVTask(NURVTaskQueue *queue);
    virtual ~NURVTask();
    NURVTask(const NURVTask &) = delete;
    NURVTask &operator=(const NURVTask &) = delete;

    /// Shows the job as active. Jobs override it to begin their work.
    virtual void startTask();
    /// Marks the job cancelled and stops it; the cancel button's action.
    virtual void cancelTask();
    /// Marks the job done, releases the follow-up job of its set when it was the
    /// last member to stop, and paints the final state. Whoever finishes the job
    /// tells the queue.
    virtual void stopTask();

    [[nodiscard]] bool isActive() const { return m_flags->active; }
    [[nodiscard]] bool isDone() const { return m_flags->done; }
    [[nodiscard]] bool cancelled() const { return m_flags->cancelled; }
    void setCancelled(bool cancelled) { m_flags->cancelled = cancelled; }
    [[nodiscard]] bool error() const { return m_flags->error; }
    void setError(bool error) { m_flags->error = error; }
    [[nodiscard]] std::shared_ptr<const TaskFlags> flags() const { return m_flags; }

    /// The job's name as its row shows it, usually the input file's name.
    [[nodiscard]] const QString &title() const { return m_title; }
    void setTitle(const QString &title) { m_title = title; }
    /// The file that the job works on, as an absolute path; empty for a job that stands
    /// for no single file.
    [[nodiscard]] const QString &sourcePath() const { return m_sourcePath; }
    void setSourcePath(const QString &path) { m_sourcePath = path; }
    /// All files that the job reads, as far as they are known before it runs.
    [[nodiscard]] virtual QStringList sourcePaths() const;
    /// How many files the job stands for, together or not.
    [[nodiscard]] virtual int sourceCount() const { return m_sourcePath.isEmpty() ? 0 : 1; }
    /// What the log line of a failed job names: the title, or the command line.
    [[nodiscard]] virtual QString description() const { return m_title; }

    /// The programs that the job will start, asked before it runs. A few reads at most.
    [[nodiscard]] virtual NeededPrograms neededPrograms() const { return {}; }

    /// The set the job reports into; nothing once it has been dropped.
    [[nodiscard]] std::shared_ptr<NURVTaskResults> results() const { return m_results; }
    void setResults(std::shared_ptr<NURVTaskResults> results);
    /// Drops the set, and with it what the job has reported, where the queue looks at it.
    void dropResults();
    /// What there is to say about this one job, whatever its set joins and shows:
    /// the text of its own slot, unless the job knows better. GUI thread.
    [[nodiscard]] virtual QString report() const;

    /// What a job that ended well could not do besides, one line each; usually empty.
    /// Read it once the job has ended.
    [[nodiscard]] const QStringList &warnings() const { return m_warnings; }

    /// What was made, and what became of the source. Final once the queue tells that the
    /// job is settled. GUI thread.
    [[nodiscard]] const TaskOutcome &outcome() const { return m_outcome; }
    /// For the thread that the job works on, until it is settled.
    [[nodiscard]] TaskOutcome &ownOutcome() { return m_outcome; }

    [[nodiscard]] NURVTaskQueue *queue() const;

    // The next texts and the next progress value: written by the job's thread,
    // shown by the operations below.
    [[nodiscard]] const QString &topTextFieldString() const { return m_topTextFieldString; }
    void setTopTextFieldString(const QString &text) { m_topTextFieldString = text; }
    [[nodiscard]] const QString &textFieldString() const { return m_textFieldString; }
    void setTextFieldString(const QString &text) { m_textFieldString = text; }
    [[nodiscard]] double progressIndicatorValue() const { return m_progressIndicatorValue; }
    void setProgressIndicatorValue(double percent) { m_progressIndicatorValue = percent; }

    /// Gives the job its title, and shows that as the row's main line.
    void nameRow(const QString &title);
    /// Shows the text as the row's main line.
    void showMainLine(const QString &text);
    /// Shows the text as the next status line.
    void showStatus(const QString &text);
    /// Shows the next status line and the next progress value.
    void updateStatus();
    void setTopTextFieldValue();
    void setTextFieldValue();
    void setProgressIndicatorValueInGui();
    /// For jobs that cannot measure their progress.
    void startIndeterminateProgressBar();
    /// The bar stands still and shows the progress again.
    void stopIndeterminateProgressBar();
    /// Paints the final state and hides the cancel button.
    void setGuiFields();
    /// Takes the row out of the view.
    void hide();

    // Row state; read it on the GUI thread.
    [[nodiscard]] const RowProgress &progressIndicator() const { return m_progressIndicator; }
    [[nodiscard]] const RowButton &cancelButton() const { return m_cancelButton; }
    /// The row's main line.
    [[nodiscard]] const RowText &textField() const { return m_textField; }
    /// The row's status line, at the bottom of the row.
    [[nodiscard]] const RowText &topTextField() const { return m_topTextField; }
    [[nodiscard]] bool isHidden() const { return m_hidden; }

protected:
    /// Appends to the job's own slot of its set; nothing once the set is dropped.
    void appendResultsForSelf(const QString &text);
    /// Appends to the first slot of its set; nothing once the set is dropped.
    void appendResults(const QString &text);
    /// Sets the error flag and appends the reason to the job's own slot.
    virtual void failWith(const QString &reason);
    /// Adds to the job's warnings and its report, and tells the log. The job's own thread.
    void warn(const QString &text);
    /// Drops the set of a job that did all and has nothing to add: no output window opens for it.
    void dropResultsOfSuccess();
    /// Sets the active flags and shows the cancel button and the progress bar.
    void becomeActive();
    /// The flags of a job that has stopped.
    void markStopped();
    /// Tells the queue, on the GUI thread, that the job has ended, and waits.
    void reportCompletion();
    /// Tells the queue, on the GUI thread, that nothing of the job is left to do.
    void reportSettled();

private:
    void doStartTaskOnMainThread();
    void paint(const std::function<void()> &change);

    QPointer<NURVTaskQueue> m_queue;
    std::shared_ptr<TaskFlags> m_flags = std::make_shared<TaskFlags>();
    std::shared_ptr<NURVTaskResults> m_results;
    QString m_title;
    QString m_sourcePath;
    QStringList m_warnings;
    TaskOutcome m_outcome;
    QString m_topTextFieldString;
    QString m_textFieldString;
    double m_progressIndicatorValue = 0.0;
    RowProgress m_progressIndicator;
    RowButton m_cancelButton;
    RowText m_textField;
    RowText m_topTextField;
    bool m_hidden = false;
};

} // namespace nurv
