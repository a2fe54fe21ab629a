// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QStringList>

#include <sys/types.h>

namespace nurv::test {

/// A program whose three standard streams are one terminal of its own.
class PseudoTerminal {
public:
    PseudoTerminal(int columns, int rows, const QString &program, const QStringList &arguments);
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal &) = delete;
    PseudoTerminal &operator=(const PseudoTerminal &) = delete;

    /// Types on the keyboard; "\x03" is Ctrl-C.
    void type(const QByteArray &keys);
    /// Whether the screen has received the text within 20 seconds.
    [[nodiscard]] bool waitFor(const QByteArray &text);
    /// Reads to the end and returns the exit status; -1 when a signal ended it.
    [[nodiscard]] int finish();
    /// Everything the terminal has received so far.
    [[nodiscard]] const QByteArray &received() const { return m_received; }

private:
    /// False at the end of the output or of the time.
    bool readSome(int limitMs);

    pid_t m_pid = -1;
    int m_fd = -1;
    QByteArray m_received;
};

} // namespace nurv::test
