// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TestProgram.h"

#include <QMutex>

#include <memory>

#include <sys/types.h>

namespace nurv::test {

/// A program of the machine that is loaded once and run many times: the two of FFmpeg need 65 ms for their
/// 200 libraries, and 10 for what tests ask of them. Each run is a process of its own, forked from one that
/// stands before main(). That one is no child of this process, and ends when this process does.
class ResidentProgram {
public:
    /// The one for the program with this path, loaded when it is asked for first; null where that is of no use:
    /// this process is not the one that loaded it, or has another user or other limits, which the run would not have.
    [[nodiscard]] static std::shared_ptr<ResidentProgram> find(const QString &path);

    /// As runProgram. One run at a time.
    [[nodiscard]] ProgramResult run(const QStringList &arguments, const QByteArray &input);

    ~ResidentProgram();
    ResidentProgram(const ResidentProgram &) = delete;
    ResidentProgram &operator=(const ResidentProgram &) = delete;

private:
    explicit ResidentProgram(const QString &path);
    [[nodiscard]] bool send(const QStringList &arguments, const int (&descriptors)[3]);

    QMutex m_mutex;
    QString m_path;
    int m_socket = -1;
};

} // namespace nurv::test
