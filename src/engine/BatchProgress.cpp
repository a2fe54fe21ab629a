// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/BatchProgress.h"

#include <algorithm>
#include <cmath>
#include <queue>
#include <utility>

namespace nurv {

namespace {

using Microseconds = std::chrono::microseconds;

/// How many of the last jobs are dealt out one by one: those before them keep all slots busy whatever their sizes are.
constexpr std::size_t kDealtOut = 512;
/// A job that runs tells a speed after that long.
constexpr Microseconds kFirstLook = std::chrono::seconds(1);

/// Deals work that can be cut anywhere to the slots that are free the earliest.
void pour(double amount, std::vector<double> &freeAt)
{
    std::sort(freeAt.begin(), freeAt.end());
    double level = freeAt.front();
    std::size_t filled = 1;
    for (; filled < freeAt.size(); ++filled) {
        const double needed = (freeAt[filled] - level) * static_cast<double>(filled);
        if (needed >= amount)
            break;
        amount -= needed;
        level = freeAt[filled];
    }
    level += amount / static_cast<double>(filled);
    std::fill(freeAt.begin(), freeAt.begin() + static_cast<std::ptrdiff_t>(filled), level);
}

} // namespace

void BatchProgress::Load::add(const Job &job)
{
    bytes += static_cast<double>(job.bytes);
    unknown += job.bytes > 0 ? 0 : 1;
}

void BatchProgress::Load::remove(const Job &job)
{
    bytes -= static_cast<double>(job.bytes);
    unknown -= job.bytes > 0 ? 0 : 1;
}

BatchProgress::BatchProgress(Clock clock) : m_clock(std::move(clock)) {}

std::size_t BatchProgress::add(const std::string &kind)
{
    if (m_jobs.empty())
        m_since = m_clock();
    const auto [place, isNew] = m_kindOfName.try_emplace(kind, m_kinds.size());
    if (isNew)
        m_kinds.emplace_back();
    Job job;
    job.kind = place->second;
    m_kinds[job.kind].waiting.add(job);
    m_all.add(job);
    m_jobs.push_back(job);
    return m_jobs.size() - 1;
}

void BatchProgress::learnSize(std::size_t number, qint64 bytes)
{
    Job &job = m_jobs[number];
    if (bytes <= 0 || job.bytes > 0)
        return;
    Kind &kind = m_kinds[job.kind];
    std::vector<Load *> loads{&m_all};
    if (job.state == State::Waiting)
        loads.push_back(&kind.waiting);
    if (job.state == State::Ended)
        loads.push_back(&m_allEnded);
    if (job.isMeasured)
        loads.push_back(&kind.done);
    for (Load *const load : loads)
        load->remove(job);
    job.bytes = bytes;
    for (Load *const load : loads)
        load->add(job);
    ++m_known;
}

void BatchProgress::begin(std::size_t number)
{
    Job &job = m_jobs[number];
    if (job.state != State::Waiting)
        return;
    job.state = State::Running;
    job.begun = m_clock();
    m_kinds[job.kind].waiting.remove(job);
    m_running.push_back(number);
}

void BatchProgress::advance(std::size_t number, double percent)
{
    Job &job = m_jobs[number];
    if (std::isfinite(percent))
        job.share = std::max(job.share, std::clamp(percent / 100.0, 0.0, 1.0));
}

void BatchProgress::end(std::size_t number, Ending ending)
{
    Job &job = m_jobs[number];
    if (job.state == State::Ended)
        return;
    Kind &kind = m_kinds[job.kind];
    const bool hasRun = job.state == State::Running;
    if (hasRun)
        std::erase(m_running, number);
    else
        kind.waiting.remove(job);
    job.state = State::Ended;
    m_allEnded.add(job);
    ++m_ended;
    m_failed += ending == Ending::Failed ? 1 : 0;
    m_canceled += ending == Ending::Canceled ? 1 : 0;
    // One that failed may have done none of its work.
    if (!hasRun || ending != Ending::Done)
        return;
    job.isMeasured = true;
    kind.done.add(job);
    kind.worked += m_clock() - job.begun;
}

double BatchProgress::meanSize() const
{
    return m_known > 0 ? m_all.bytes / m_known : 1.0;
}

double BatchProgress::weight(const Load &load) const
{
    return load.bytes + load.unknown * meanSize();
}

double BatchProgress::weight(const Job &job) const
{
    return job.bytes > 0 ? static_cast<double>(job.bytes) : meanSize();
}

double BatchProgress::share() const
{
    if (m_ended == total())
        return m_jobs.empty() ? 0.0 : 1.0;
    double done = weight(m_allEnded);
    for (const std::size_t number : m_running)
        done += weight(m_jobs[number]) * m_jobs[number].share;
    return std::clamp(done / weight(m_all), 0.0, 1.0);
}

std::vector<double> BatchProgress::speeds() const
{
    std::vector<double> done;
    std::vector<double> worked;
    for (const Kind &kind : m_kinds) {
        done.push_back(weight(kind.done));
        worked.push_back(static_cast<double>(kind.worked.count()));
    }
    const Microseconds now = m_clock();
    for (const std::size_t number : m_running) {
        const Job &job = m_jobs[number];
        // One at 100 has other work to do, of which nothing is known.
        if (job.share <= 0.0 || job.share >= 1.0 || now - job.begun < kFirstLook)
            continue;
        done[job.kind] += weight(job) * job.share;
        worked[job.kind] += static_cast<double>((now - job.begun).count());
    }
    double allDone = 0.0;
    double allWorked = 0.0;
    for (std::size_t kind = 0; kind < done.size(); ++kind) {
        allDone += done[kind];
        allWorked += worked[kind];
    }
    if (allDone <= 0.0 || allWorked <= 0.0)
        return {};
    std::vector<double> speeds;
    for (std::size_t kind = 0; kind < done.size(); ++kind) {
        const bool isMeasured = done[kind] > 0.0 && worked[kind] > 0.0;
        speeds.push_back(isMeasured ? done[kind] / worked[kind] : allDone / allWorked);
    }
    return speeds;
}

std::vector<double> BatchProgress::timesOfRunning(const std::vector<double> &speeds) const
{
    const Microseconds now = m_clock();
    std::vector<double> times;
    for (const std::size_t number : m_running) {
        const Job &job = m_jobs[number];
        const double whole = weight(job) / speeds[job.kind];
        const auto worked = static_cast<double>((now - job.begun).count());
        times.push_back(job.share > 0.0 ? whole * (1.0 - job.share) : std::max(whole - worked, 0.0));
    }
    return times;
}

std::optional<Microseconds> BatchProgress::remaining() const
{
    const std::vector<double> speedOf = speeds();
    if (speedOf.empty())
        return std::nullopt;
    std::vector<double> freeAt = timesOfRunning(speedOf);
    if (freeAt.empty())
        freeAt.push_back(0.0);
    double poured = 0.0;
    for (std::size_t kind = 0; kind < m_kinds.size(); ++kind)
        poured += weight(m_kinds[kind].waiting) / speedOf[kind];
    std::vector<double> dealt;
    for (std::size_t number = m_jobs.size() - std::min(m_jobs.size(), kDealtOut); number < m_jobs.size(); ++number) {
        const Job &job = m_jobs[number];
        if (job.state != State::Waiting)
            continue;
        dealt.push_back(weight(job) / speedOf[job.kind]);
        poured -= dealt.back();
    }
    pour(std::max(poured, 0.0), freeAt);
    std::priority_queue<double, std::vector<double>, std::greater<>> slots(std::greater<>(), std::move(freeAt));
    double last = 0.0;
    for (const double time : dealt) {
        const double end = slots.top() + time;
        slots.pop();
        slots.push(end);
    }
    for (; !slots.empty(); slots.pop())
        last = std::max(last, slots.top());
    return Microseconds(std::llround(last));
}

Microseconds BatchProgress::elapsed() const
{
    return m_jobs.empty() ? Microseconds(0) : m_clock() - m_since;
}

} // namespace nurv
