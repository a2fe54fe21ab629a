// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include <sys/types.h>

class QSocketNotifier;
class QTimer;

namespace nurv {

/// The environment of a child: variable to value.
using ChildEnvironment = QMap<QString, QString>;

/// What to start, and how. Arguments are separate words; no shell is involved.
struct ChildCommand {
    QString launchPath; ///< absolute path of the program
    QStringList arguments;
    ChildEnvironment environment; ///< the mark of this process is added to it
    QString workingDirectory; ///< empty: inherited
};

/// How a child ended.
struct ChildExit {
    int status = 0; ///< exit status; meaningless when `signal` is not 0
    int signal = 0; ///< the signal that killed it, or 0

    [[nodiscard]] bool succeeded() const { return status == 0 && signal == 0; }
};

/// The result of `runChild`.
struct ChildResult {
    QByteArray output; ///< standard output and standard error, interleaved as written
    std::optional<ChildExit> exit; ///< nothing when the program could not be started
    QString startError; ///< why it could not be started
    bool wasStopped = false; ///< by a `ChildFollower`, before its output had ended
};

/// What `followChild` asks of its caller, on the caller's thread.
struct ChildFollower {
    /// Takes the bytes of one read, never empty. False: enough, the child is ended.
    std::function<bool(const QByteArray &bytes)> take;
    /// Asked several times a second while there is nothing to read; true ends the child.
    /// Without it the child is waited for as long as it runs.
    std::function<bool()> isUnwanted;
};

/// One running child, driven by the event loop of the GUI thread.
///
///     child ── stdout + stderr ──> one pipe ──> notifier ──> outputRead(bytes)
///                                                    end of output + exit ──> finished()
///
/// The child leads a process group of its own, reads /dev/null, and inherits no
/// descriptor but its three standard ones. It is always reaped.
class ChildProcess : public QObject {
    Q_OBJECT

public:
    explicit ChildProcess(QObject *parent = nullptr);
    /// A child that still runs is killed with its process group and reaped.
    ~ChildProcess() override;

    /// Starts the program. Returns nothing on success, else the reason as text.
    /// No signal is emitted from inside this call.
    [[nodiscard]] std::optional<QString> start(const ChildCommand &command);

    [[nodiscard]] bool isRunning() const;
    /// How the child ended; nothing before `finished`.
    [[nodiscard]] std::optional<ChildExit> exitState() const { return m_exit; }

    /// How many have been started and not emitted `finished` yet: their programs may have ended
    /// before their output does. Any thread.
    [[nodiscard]] static int unfinishedCount();

Q_SIGNALS:
    /// The bytes of one read of the pipe, never empty.
    void outputRead(const QByteArray &bytes);
    /// The output has ended and the child has been reaped. Emitted once.
    void finished();

private:
    void readAvailable();
    void childExited();
    void giveUpHeldPipe();
    void finishWhenDone();
    void closeOutput();
    void countAsFinished();

    pid_t m_pid = -1;
    int m_outputFd = -1;
    int m_pidFd = -1;
    std::unique_ptr<QSocketNotifier> m_outputNotifier;
    std::unique_ptr<QSocketNotifier> m_exitNotifier;
    std::unique_ptr<QTimer> m_heldPipeTimer;
    std::optional<ChildExit> m_exit;
    bool m_isUnfinished = false; ///< from the start of the program to `finished`
};

/// Runs a program to the end of its output on the calling thread. Blocks; meant for
/// worker threads and for quick queries. A program that still runs after `limit`
/// is killed with its process group; without a limit it may take its time.
[[nodiscard]] ChildResult runChild(const ChildCommand &command,
                                   std::optional<std::chrono::milliseconds> limit = std::nullopt);

/// Runs a program on the calling thread and hands its output over as it comes. Blocks
/// until the child has been reaped. A child that is ended early loses its pipe and gets
/// SIGTERM with its process group, then SIGKILL half a second later. What `take` throws
/// ends the child too and goes on to the caller. The result has no output.
[[nodiscard]] ChildResult followChild(const ChildCommand &command, const ChildFollower &follower);

/// The children of this process, of every thread.
namespace children {

/// Sends SIGTERM to every running child's process group, and SIGKILL after
/// `grace` to those that are left. With `refuseNew`, no further child starts.
/// Blocks for at most `grace` and a little.
void terminateAll(std::chrono::milliseconds grace, bool refuseNew);
/// How many children run now.
[[nodiscard]] int runningCount();

} // namespace children

} // namespace nurv
