// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/GuiThread.h"
#include "base/WorkerThreads.h"

#include <QObject>
#include <QPointer>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace nurv {

/// What a worker finds out for the GUI thread, which is given it there once, when it is done or when it is waited for.
///
///     begin ──> work on a worker ──> posted ──────────┐
///        └────> waitFor, on the GUI thread ───────────┴──> take(result)
///
/// Once it is given up, or its context is gone, nothing is given any more, and `work` should end soon.
template<typename Result>
class PendingResult {
public:
    /// Asked by the work now and then.
    using IsUnwanted = std::function<bool()>;
    using Work = std::function<Result(const IsUnwanted &isUnwanted)>;
    using Take = std::function<void(Result)>;

    PendingResult() = default;
    ~PendingResult() { giveUp(); }
    PendingResult(const PendingResult &) = delete;
    PendingResult &operator=(const PendingResult &) = delete;

    /// Gives up what was begun before. GUI thread; `work` must not throw.
    void begin(QObject *context, const Work &work, Take take)
    {
        giveUp();
        m_state = std::make_shared<State>();
        m_state->take = std::move(take);
        workerThreads::startOrRun([state = m_state, guard = QPointer<QObject>(context), work] {
            Result result = work([&state] { return state->isUnwanted.load(); });
            {
                const std::lock_guard lock(state->mutex);
                state->result = std::move(result);
            }
            state->isDone.notify_all();
            postToGuiThread([state, guard] {
                if (guard)
                    give(*state);
            });
        });
    }
    /// Whether there is a result that was not given yet.
    [[nodiscard]] bool isPending() const { return m_state && m_state->take; }
    /// Waits for the result and gives it. False when it was not there in time.
    bool waitFor(std::optional<std::chrono::milliseconds> limit = std::nullopt)
    {
        if (!isPending())
            return true;
        const std::shared_ptr<State> state = m_state;
        {
            std::unique_lock lock(state->mutex);
            const auto isThere = [&state] { return state->result.has_value(); };
            if (!limit)
                state->isDone.wait(lock, isThere);
            else if (!state->isDone.wait_for(lock, *limit, isThere))
                return false;
        }
        give(*state);
        return true;
    }
    void giveUp()
    {
        if (!m_state)
            return;
        m_state->isUnwanted = true;
        m_state->take = nullptr;
        m_state.reset();
    }

private:
    struct State {
        std::mutex mutex;
        std::condition_variable isDone;
        std::optional<Result> result;
        std::atomic<bool> isUnwanted = false;
        Take take; ///< GUI thread only; empty once it is given or given up
    };

    static void give(State &state)
    {
        if (!state.take)
            return;
        const Take take = std::exchange(state.take, nullptr);
        Result result;
        {
            const std::lock_guard lock(state.mutex);
            result = *std::move(state.result);
        }
        take(std::move(result));
    }

    std::shared_ptr<State> m_state;
};

} // namespace nurv
