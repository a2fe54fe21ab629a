// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Transcript.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

QByteArray unescaped(QByteArray text)
{
    return text.replace("\\n", "\n").replace("\\r", "\r").replace("\\b", "\b").replace("\\e", "\x1b");
}

} // namespace

QString transcriptPath(const QString &name)
{
    return QString::fromLocal8Bit(NURV_TRANSCRIPTS) + u'/' + name + u".txt"_s;
}

QList<QByteArray> transcriptChunks(const QString &name)
{
    QFile file(transcriptPath(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(file.fileName());
    QList<QByteArray> chunks;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.isEmpty())
            continue;
        EXPECT_TRUE(line.startsWith("out ")) << line.constData();
        chunks.append(unescaped(line.sliced(4)));
    }
    return chunks;
}

} // namespace nurv::test
