// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/LogOutput.h"

#include "base/GuiThread.h"
#include "cli/Console.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QtGlobal>

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

Console *g_console = nullptr;

void writeMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (!QCoreApplication::instance())
        return;
    const QString category = QString::fromUtf8(context.category);
    const QString line = category == u"default" ? message.simplified() : category + u": "_s + message.simplified();
    if (type == QtFatalMsg) {
        g_console->writeNote(line);
        std::abort();
    }
    // Messages of workers come when the GUI thread has time for them.
    if (isGuiThread())
        g_console->writeNote(line);
    else
        postToGuiThread([line] {
            if (g_console)
                g_console->writeNote(line);
        });
}

} // namespace

LogOutput::LogOutput(Console &console)
{
    g_console = &console;
    // The lines and reports of the jobs tell their failures; QT_LOGGING_RULES still wins.
    QLoggingCategory::setFilterRules(u"nurv.engine.jobs=false\nnurv.convert.kept=false\nnurv.files.unread=false"_s);
    qInstallMessageHandler(writeMessage);
}

LogOutput::~LogOutput()
{
    qInstallMessageHandler(nullptr);
    g_console = nullptr;
}

} // namespace nurv
