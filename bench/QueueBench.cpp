// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// 20,000 jobs of a program that ends at once, through the queue in this process,
// against `xargs -P2`; and how long the GUI thread was away meanwhile. The queue is
// watched as the window watches it.
//
//     QueueBench [JOBS]
#include "app/BatchWatch.h"
#include "base/NotificationCenter.h"
#include "desktop/NullDesktopServices.h"
#include "engine/NURVAsyncNSTask.h"
#include "engine/NURVTaskQueue.h"
#include "Measure.h"
#include "support/ProgramFolder.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <memory>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::bench;

namespace {

constexpr int kUsualJobs = 20'000;

/// Measures the longest time between two beats of a timer of one millisecond.
class Heartbeat {
public:
    Heartbeat()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { beat(); });
        m_sinceBeat.start();
        m_timer.start(1);
    }
    void beat()
    {
        m_longestMs = std::max(m_longestMs, static_cast<double>(m_sinceBeat.nsecsElapsed()) / 1e6);
        m_sinceBeat.restart();
    }
    [[nodiscard]] double longestMs() const { return m_longestMs; }

private:
    QTimer m_timer;
    QElapsedTimer m_sinceBeat;
    double m_longestMs = 0.0;
};

double g_longestAdding = 0.0;
double g_longestRunning = 0.0;

void runThroughQueue(const QString &program, int jobs)
{
    NullDesktopServices services;
    NURVTaskQueue queue(services);
    const BatchWatch watch(queue, services);
    NotificationCenter::instance().post(QString::fromUtf16(NURVMaxThreadsChangedNotification), 2);
    QEventLoop loop;
    QObject::connect(&queue, &NURVTaskQueue::taskEnded, &loop, [&] {
        if (queue.taskCount() == 0)
            loop.quit();
    });
    const double addingMs = millisecondsOf([&] {
        for (int i = 0; i < jobs; ++i) {
            const auto task = std::make_shared<NURVAsyncNSTask>(&queue, program, QStringList{u"exit=0"_s});
            // The size of some file is looked up for each.
            task->setSourcePath(program);
            queue.addTask(task);
        }
    });
    Heartbeat heartbeat;
    loop.exec();
    heartbeat.beat();
    g_longestAdding = std::max(g_longestAdding, addingMs);
    g_longestRunning = std::max(g_longestRunning, heartbeat.longestMs());
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QString program = test::fakeProgramPath();
    const QStringList words = QCoreApplication::arguments();
    const int jobs = words.size() > 1 ? words[1].toInt() : kUsualJobs;
    QByteArray lines;
    for (int i = 0; i < jobs; ++i)
        lines += "exit=0\n";
    compare(
        u"%1 jobs that end at once, against xargs"_s.arg(jobs), 3, 1.5, [&] { runThroughQueue(program, jobs); },
        [&] {
            runOrDie(u"xargs"_s, {u"-P2"_s, u"-n1"_s, program}, lines);
        });
    std::printf("longest blocking of the GUI thread: %.1f ms while they run (goal 50 ms), %.1f ms to add them all\n",
                g_longestRunning, g_longestAdding);
    return 0;
}
