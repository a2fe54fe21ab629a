// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <limits>

namespace nurv {

// Set lists as people write them, and the track names in them. Pure functions: the
// track-names window and the command line use the same ones.

/// The track names of a set list, each followed by "\n", without its number and its length:
///
///     Aula Magna, 08/16/1997
///     1. Intro 2:05            Intro
///     2) Song (4:31)           Song
///     08/16/1997
///     3.                       (blank)
///
/// A line that begins with a date is left out, and so is one that does not begin with a number;
/// until a line begins with the digits of the number 1, all are. A time at the end goes, and the
/// blanks before it stay. A name that is nothing but a time leaves an empty line.
/// The time is linear in the length of the text, whatever it holds. Ends behind `mostNames` names.
[[nodiscard]] QString trackNamesOfSetList(const QString &setList,
                                          qsizetype mostNames = std::numeric_limits<qsizetype>::max());

/// The lines that are not empty, in their order: the names that a text hands on.
[[nodiscard]] QStringList trackNamesIn(const QString &text);

} // namespace nurv
