// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace nurv {

/// How far a batch of jobs is, and how long it will still take: arithmetic only, told what happens.
///
///     sizes of sources ──> weights ──> share done
///     weight ended / time worked, per kind of job ──> speeds ──> what waits, dealt to as many jobs as run at once ──>
///     time left
///
/// Each call but `remaining` takes a time that does not depend on the number of jobs, and that one looks at no more
/// than the jobs that run and the last ones that wait. Not for several threads.
class BatchProgress {
public:
    /// Tells a time that never goes back.
    using Clock = std::function<std::chrono::microseconds()>;
    enum class Ending { Done, Failed, Canceled };

    explicit BatchProgress(Clock clock);

    /// A job that waits behind the others. Jobs of one kind work at about the same speed. Returns its number.
    std::size_t add(const std::string &kind);
    /// How many bytes the job works on. Until then it counts for as much as the others on average.
    void learnSize(std::size_t job, qint64 bytes);
    void begin(std::size_t job);
    /// From 0 to 100. What goes back, as at the next stage of a job, changes nothing.
    void advance(std::size_t job, double percent);
    void end(std::size_t job, Ending ending);

    [[nodiscard]] int total() const { return static_cast<int>(m_jobs.size()); }
    [[nodiscard]] int ended() const { return m_ended; }
    [[nodiscard]] int failed() const { return m_failed; }
    [[nodiscard]] int canceled() const { return m_canceled; }
    /// From 0 to 1, by the sizes of the sources.
    [[nodiscard]] double share() const;
    /// Nothing until a speed was measured.
    [[nodiscard]] std::optional<std::chrono::microseconds> remaining() const;
    /// Since the first job was added.
    [[nodiscard]] std::chrono::microseconds elapsed() const;

private:
    enum class State { Waiting, Running, Ended };
    struct Job {
        std::size_t kind = 0;
        State state = State::Waiting;
        bool isMeasured = false; ///< ended well: part of its kind's speed
        double share = 0.0;
        qint64 bytes = 0; ///< 0: not known
        std::chrono::microseconds begun{0};
    };
    /// Some jobs: the bytes of those whose size is known, and how many others.
    struct Load {
        double bytes = 0.0;
        int unknown = 0;

        void add(const Job &job);
        void remove(const Job &job);
    };
    struct Kind {
        Load waiting;
        Load done; ///< without those that failed or were cancelled
        std::chrono::microseconds worked{0};
    };

    [[nodiscard]] double meanSize() const;
    [[nodiscard]] double weight(const Load &load) const;
    [[nodiscard]] double weight(const Job &job) const;
    /// Weight per microsecond of work, one for each kind; empty while nothing was measured.
    [[nodiscard]] std::vector<double> speeds() const;
    /// How long each of the running jobs still takes.
    [[nodiscard]] std::vector<double> timesOfRunning(const std::vector<double> &speeds) const;

    Clock m_clock;
    std::vector<Job> m_jobs; ///< in the order in which they start
    std::vector<std::size_t> m_running;
    std::unordered_map<std::string, std::size_t> m_kindOfName;
    std::vector<Kind> m_kinds;
    Load m_all;
    Load m_allEnded;
    int m_known = 0;
    int m_ended = 0;
    int m_failed = 0;
    int m_canceled = 0;
    std::chrono::microseconds m_since{0};
};

} // namespace nurv
