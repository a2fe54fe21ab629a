// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SplitPoints.h"

#include "base/Log.h"
#include "files/TextFile.h"

#include <QFile>
#include <QTemporaryFile>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Whether letters take more than a byte each: UTF-16 or UTF-32.
bool hasWideLetters(const QString &path)
{
    constexpr qint64 kHead = 4096;
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(kHead).contains('\0');
}

} // namespace

std::optional<SplitPoints> SplitPoints::read(const QString &path, QString *reason)
{
    std::optional<QString> text = readTextFile(path, reason);
    if (text && text->isEmpty()) {
        *reason = u"it is empty"_s;
        text.reset();
    }
    if (!text) {
        // One reading tries all encodings that there are.
        qCWarning(shntoolLog).noquote() << "error" << *reason;
        qCWarning(shntoolLog) << "Trying to open as unicode...";
        qCWarning(shntoolLog).noquote() << "error" << *reason;
        qCWarning(shntoolLog) << "Last hope: opening using NSASCIIStringEncoding...";
        qCWarning(shntoolLog).noquote() << u"Could not open file...%1"_s.arg(path) << *reason;
        return std::nullopt;
    }
    SplitPoints points;
    points.m_text = *text;
    points.m_path = path;
    if (!hasWideLetters(path))
        return points;
    points.m_copy = std::make_shared<QTemporaryFile>();
    if (!points.m_copy->open() || points.m_copy->write(text->toUtf8()) < 0 || !points.m_copy->flush()) {
        *reason = u"its text could not be written for shntool: %1"_s.arg(points.m_copy->errorString());
        return std::nullopt;
    }
    points.m_path = points.m_copy->fileName();
    return points;
}

} // namespace nurv
