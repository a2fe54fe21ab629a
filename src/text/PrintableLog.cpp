// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/PrintableLog.h"

#include "text/PrintableText.h"

#include <QtGlobal>

namespace nurv {

namespace {

QtMessageHandler g_formerHandler = nullptr;

void writePrintably(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    g_formerHandler(type, context, printableText(message));
}

} // namespace

void makeLogPrintable()
{
    g_formerHandler = qInstallMessageHandler(writePrintably);
}

} // namespace nurv
