// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

namespace nurv::bench {

/// Milliseconds of wall time that the work takes.
[[nodiscard]] double millisecondsOf(const std::function<void()> &work);

[[nodiscard]] double median(QList<double> values);

/// Runs a program to its end with `input` as a file on its standard input; its
/// outputs are dropped. Ends the benchmark when it fails.
void runOrDie(const QString &program, const QStringList &arguments, const QByteArray &input = {});

/// Two ways to do the same work, measured in turns (A B A B ...), so that a busy
/// machine slows both. Prints the medians and their ratio beside the goal.
void compare(const QString &title, int rounds, double goal, const std::function<void()> &ours,
             const std::function<void()> &theirs);

} // namespace nurv::bench
