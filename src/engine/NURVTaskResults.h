// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace nurv {

class NURVTask;
class ReportFrame;
struct TaskFlags;

/// The report texts of one batch: one slot per member, joined in the order in
/// which the members joined, whatever order they end in.
///
/// Owned by its members and by whoever made the batch. Keeps only the flags of
/// its members, not the members: a job that is gone has left its flags as done.
/// Any thread may call.
class NURVTaskResults {
public:
    NURVTaskResults();
    ~NURVTaskResults();
    NURVTaskResults(const NURVTaskResults &) = delete;
    NURVTaskResults &operator=(const NURVTaskResults &) = delete;

    /// Makes the job a member with an empty slot. A job that is added twice
    /// keeps the place of its first entry, and that slot becomes empty.
    void addTaskInSet(const NURVTask &task);
    [[nodiscard]] int memberCount() const;

    /// Appends to the slot of the job; nothing for a job that is no member.
    void appendResults(const QString &text, const NURVTask &task);
    /// Replaces the slot of the job; nothing for a job that is no member.
    void setResults(const QString &text, const NURVTask &task);
    /// Appends to the first member's slot.
    void appendResults(const QString &text);
    /// Replaces the first member's slot.
    void setResults(const QString &text);

    /// Every member's text in the order of the members, each followed by one
    /// line feed.
    [[nodiscard]] QString results() const;

    /// What stands around the reports in a window; null at first. Set it before the jobs start.
    void setFrame(std::shared_ptr<ReportFrame> frame);
    [[nodiscard]] std::shared_ptr<ReportFrame> frame() const;
    /// Tells the frame that the job has stopped.
    void noteStop(const NURVTask &task) const;
    /// `results` in its frame.
    [[nodiscard]] QString windowText() const;
    /// The place of the job among the members; -1 for a job that is no member.
    [[nodiscard]] int placeOf(const NURVTask &task) const;

    /// The text of the job's own slot; empty for a job that is no member.
    [[nodiscard]] QString results(const NURVTask &task) const;

    [[nodiscard]] bool allTasksDone() const;
    [[nodiscard]] bool taskSetDone() const;
    void setTaskSetDone(bool done);

    /// The job to queue once every member has stopped, or nothing.
    [[nodiscard]] std::shared_ptr<NURVTask> taskAfterSetDone() const;
    void setTaskAfterSetDone(std::shared_ptr<NURVTask> task);

    /// Whether the report of a finished set is to be shown now: true once, to the
    /// first caller after the set is done.
    [[nodiscard]] bool takeReport();

    /// When every member is done: marks the set done and returns the follow-up
    /// job, to one caller only. Returns nothing otherwise.
    [[nodiscard]] std::shared_ptr<NURVTask> finishIfAllDone();

private:
    [[nodiscard]] int slotOf(const NURVTask &task) const;
    [[nodiscard]] bool allDoneLocked() const;

    mutable std::mutex m_lock;
    std::vector<std::shared_ptr<const TaskFlags>> m_tasksInSet;
    std::unordered_map<const TaskFlags *, int> m_slotOfTask;
    std::map<int, QString> m_resultsBySlot;
    /// Members before it are done; a job that is done stays so.
    mutable std::size_t m_firstNotDone = 0;
    bool m_taskSetDone = false;
    bool m_isReportTaken = false;
    bool m_followUpReleased = false;
    std::shared_ptr<NURVTask> m_taskAfterSetDone;
    std::shared_ptr<ReportFrame> m_frame;
};

} // namespace nurv
