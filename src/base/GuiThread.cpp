// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/GuiThread.h"

#include "base/Log.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>

#include <condition_variable>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <utility>

namespace nurv {

namespace {

struct Request {
    std::function<void()> work;
    bool isFinished = false; ///< has run, or was dropped
    HandOver result = HandOver::Refused;
};

class Gate final : public QObject {
public:
    // Never destroyed: a worker that outlives the wait at quit still asks here.
    static Gate &instance()
    {
        static Gate *const gate = new Gate;
        return *gate;
    }

    HandOver ask(const std::function<void()> &work)
    {
        const auto request = std::make_shared<Request>();
        request->work = work;
        std::unique_lock lock(m_lock);
        if (!enqueue(request))
            return HandOver::Refused;
        m_finished.wait(lock, [&] { return request->isFinished; });
        return request->result;
    }

    void post(std::function<void()> work)
    {
        const auto request = std::make_shared<Request>();
        request->work = std::move(work);
        const std::scoped_lock lock(m_lock);
        enqueue(request);
    }

    void close()
    {
        std::deque<std::shared_ptr<Request>> dropped;
        {
            const std::scoped_lock lock(m_lock);
            m_isClosed = true;
            dropped.swap(m_requests);
            for (const auto &request : dropped)
                request->isFinished = true;
        }
        m_finished.notify_all();
    }

    void open()
    {
        const std::scoped_lock lock(m_lock);
        m_isClosed = false;
    }

protected:
    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        runRequests();
        return true;
    }

private:
    Gate()
    {
        if (const QCoreApplication *const application = QCoreApplication::instance())
            moveToThread(application->thread());
    }

    static HandOver runWork(Request &request)
    {
        try {
            request.work();
            request.work = nullptr;
            return HandOver::Done;
        } catch (const std::exception &failure) {
            qCCritical(baseLog, "Work for the GUI thread failed: %s", failure.what());
            return HandOver::Failed;
        }
    }

    /// With the lock held.
    bool enqueue(const std::shared_ptr<Request> &request)
    {
        QCoreApplication *const application = QCoreApplication::instance();
        if (m_isClosed || !application)
            return false;
        m_requests.push_back(request);
        if (!std::exchange(m_isWakeUpPosted, true))
            QCoreApplication::postEvent(this, new QEvent(QEvent::User));
        return true;
    }

    void runRequests()
    {
        // Only what is queued now: a flood of requests must not starve the rest
        // of the event loop.
        std::unique_lock lock(m_lock);
        m_isWakeUpPosted = false;
        for (std::size_t left = m_requests.size(); left > 0 && !m_requests.empty(); --left) {
            const std::shared_ptr<Request> request = std::move(m_requests.front());
            m_requests.pop_front();
            lock.unlock();
            const HandOver result = runWork(*request);
            lock.lock();
            request->result = result;
            request->isFinished = true;
            m_finished.notify_all();
        }
        if (!m_requests.empty() && !std::exchange(m_isWakeUpPosted, true))
            QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    }

    std::mutex m_lock;
    std::condition_variable m_finished;
    std::deque<std::shared_ptr<Request>> m_requests;
    bool m_isWakeUpPosted = false;
    bool m_isClosed = false;
};

} // namespace

bool isGuiThread()
{
    const QCoreApplication *const application = QCoreApplication::instance();
    return application && QThread::currentThread() == application->thread();
}

HandOver runOnGuiThread(const std::function<void()> &work)
{
    if (isGuiThread()) {
        work();
        return HandOver::Done;
    }
    return Gate::instance().ask(work);
}

void showOnGuiThread(const std::function<void()> &work)
{
    // The log has the reason of a failure, and at the end of the application nobody looks any more.
    static_cast<void>(runOnGuiThread(work));
}

void postToGuiThread(std::function<void()> work)
{
    Gate::instance().post(std::move(work));
}

void guiThreadGate::close()
{
    Gate::instance().close();
}

void guiThreadGate::open()
{
    Gate::instance().open();
}

} // namespace nurv
