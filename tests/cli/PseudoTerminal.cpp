// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "PseudoTerminal.h"

#include <QElapsedTimer>
#include <QFile>

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace nurv::test {

namespace {

constexpr int kLimitMs = 20'000;

} // namespace

PseudoTerminal::PseudoTerminal(int columns, int rows, const QString &program, const QStringList &arguments)
{
    std::vector<QByteArray> words{QFile::encodeName(program)};
    for (const QString &argument : arguments)
        words.push_back(QFile::encodeName(argument));
    std::vector<char *> pointers;
    for (QByteArray &word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);

    const winsize size{static_cast<unsigned short>(rows), static_cast<unsigned short>(columns), 0, 0};
    m_pid = ::forkpty(&m_fd, nullptr, nullptr, &size);
    if (m_pid == 0) {
        // Ctrl-C would throw away what has not been read yet, and the line feeds in it.
        termios settings{};
        ::tcgetattr(0, &settings);
        settings.c_lflag |= NOFLSH;
        ::tcsetattr(0, TCSANOW, &settings);
        ::setenv("TERM", "xterm", 1);
        ::execv(pointers[0], pointers.data());
        ::_exit(127);
    }
    EXPECT_GT(m_pid, 0);
}

PseudoTerminal::~PseudoTerminal()
{
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
    ::close(m_fd);
}

void PseudoTerminal::type(const QByteArray &keys)
{
    EXPECT_EQ(::write(m_fd, keys.constData(), static_cast<std::size_t>(keys.size())), keys.size());
}

bool PseudoTerminal::readSome(int limitMs)
{
    pollfd waiting{m_fd, POLLIN, 0};
    if (::poll(&waiting, 1, limitMs) <= 0)
        return false;
    std::array<char, 4096> buffer{};
    const ssize_t count = ::read(m_fd, buffer.data(), buffer.size());
    if (count <= 0)
        return false;
    m_received.append(buffer.data(), count);
    return true;
}

bool PseudoTerminal::waitFor(const QByteArray &text)
{
    QElapsedTimer timer;
    timer.start();
    while (!m_received.contains(text)) {
        const qint64 left = kLimitMs - timer.elapsed();
        if (left <= 0 || !readSome(static_cast<int>(left)))
            return m_received.contains(text);
    }
    return true;
}

int PseudoTerminal::finish()
{
    while (readSome(kLimitMs)) {
    }
    int status = 0;
    EXPECT_EQ(::waitpid(m_pid, &status, 0), m_pid);
    m_pid = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace nurv::test
