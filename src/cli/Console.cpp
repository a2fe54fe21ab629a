// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Console.h"

#include "base/SystemError.h"
#include "cli/ColumnWidth.h"
#include "files/WriteAll.h"
#include "text/PrintableText.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <utility>

#include <errno.h>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

void writeError(const QByteArray &bytes)
{
    // There is nobody left to tell when standard error fails.
    static_cast<void>(writeAll(STDERR_FILENO, bytes));
}

winsize terminalSize()
{
    winsize size{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0)
        size = {};
    return size;
}

} // namespace

Console::Console()
    : m_canRedraw(::isatty(STDERR_FILENO) == 1 && !qEnvironmentVariableIsEmpty("TERM") && qgetenv("TERM") != "dumb"),
      m_outputIsTerminal(::isatty(STDOUT_FILENO) == 1)
{
}

Console::~Console()
{
    eraseLiveLines();
}

bool Console::canAsk()
{
    return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1;
}

int Console::columns()
{
    const int columns = terminalSize().ws_col;
    return columns > 0 ? columns : 80;
}

int Console::rows()
{
    const int rows = terminalSize().ws_row;
    return rows > 0 ? rows : 24;
}

void Console::writeOutput(const QString &text)
{
    if (m_outputFailed)
        return;
    if (m_outputIsTerminal)
        eraseLiveLines();
    const bool isWritten = writeAll(STDOUT_FILENO, (m_outputIsTerminal ? printableText(text) : text).toUtf8());
    const int error = errno;
    if (m_outputIsTerminal)
        drawLiveLines();
    if (isWritten)
        return;
    m_outputFailed = true;
    // Whoever has ended its reading knows it.
    if (error != EPIPE)
        writeNote(u"standard output cannot be written: %1"_s.arg(systemErrorText(error)));
}

void Console::writeJson(const QJsonObject &object)
{
    writeOutput(printableJson(QJsonDocument(object).toJson(QJsonDocument::Compact)) + u'\n');
}

void Console::writeNote(const QString &line)
{
    writeLine(u"nurv: "_s + line);
}

void Console::writeLine(const QString &line)
{
    eraseLiveLines();
    writeError(printableLine(line).toUtf8() + '\n');
    drawLiveLines();
}

void Console::writeQuestion(const QString &text)
{
    eraseLiveLines();
    writeError(printableLine(text).toUtf8());
}

void Console::setLiveLines(const QStringList &lines)
{
    if (!m_canRedraw)
        return;
    eraseLiveLines();
    m_liveLines = lines;
    drawLiveLines();
}

void Console::eraseLiveLines()
{
    if (m_drawnWidths.isEmpty())
        return;
    // A terminal that has become narrower since has wrapped the lines.
    const int width = columns();
    int height = 0;
    for (const int drawn : std::as_const(m_drawnWidths))
        height += drawn <= width ? 1 : (drawn + width - 1) / width;
    m_drawnWidths.clear();
    writeError("\r\033[" + QByteArray::number(height) + "A\033[J");
}

void Console::drawLiveLines()
{
    QByteArray bytes;
    // The last column stays free: terminals differ in when they wrap there.
    const int width = columns() - 1;
    for (const QString &line : std::as_const(m_liveLines)) {
        const QString shown = elideEnd(printableLine(line), width);
        m_drawnWidths.append(displayWidth(shown));
        bytes += shown.toUtf8() + '\n';
    }
    writeError(bytes);
}

} // namespace nurv
