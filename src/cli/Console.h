// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class QJsonObject;

namespace nurv {

/// Standard output and standard error of the command line, and the live lines at
/// the bottom of a terminal.
///
///     text, notes ──> above the live lines
///     live lines ───> redrawn in place on standard error, gone at the end
///
/// GUI thread. Writes block. After a failed write to standard output everything for it
/// is dropped; of a reader that has gone away only `outputFailed` tells.
class Console {
public:
    Console();
    /// Takes the live lines away.
    ~Console();
    Console(const Console &) = delete;
    Console &operator=(const Console &) = delete;

    /// Whether lines can be redrawn in place on standard error.
    [[nodiscard]] bool canRedraw() const { return m_canRedraw; }
    /// Whether a question reaches somebody who can answer it.
    [[nodiscard]] static bool canAsk();
    /// The columns of the terminal of standard error; 80 when it does not tell.
    [[nodiscard]] static int columns();
    [[nodiscard]] static int rows();

    /// Writes text to standard output, as it stands unless that is a terminal.
    void writeOutput(const QString &text);
    /// Writes the object as one line to standard output, with nothing in it that a terminal
    /// obeys.
    void writeJson(const QJsonObject &object);
    /// Writes "nurv: <line>" to standard error.
    void writeNote(const QString &line);
    /// Writes the line to standard error.
    void writeLine(const QString &line);
    /// Writes text without a line end to standard error, for a question.
    void writeQuestion(const QString &text);

    void setLiveLines(const QStringList &lines);

    /// Whether standard output did not take everything.
    [[nodiscard]] bool outputFailed() const { return m_outputFailed; }

private:
    void eraseLiveLines();
    void drawLiveLines();

    bool m_canRedraw;
    bool m_outputIsTerminal;
    bool m_outputFailed = false;
    QStringList m_liveLines;
    QList<int> m_drawnWidths; ///< columns of the lines that stand on the terminal now
};

} // namespace nurv
