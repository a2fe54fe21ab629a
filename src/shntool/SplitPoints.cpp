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

/// Whether shntool cannot read the file as it is: letters take more than a byte each (UTF-16, UTF-32), or its lines end
/// in a carriage return alone.
bool needsCopy(const QString &path, const QString &text)
{
    constexpr qint64 kHead = 4096;
    QFile file(path);
    const bool hasWideLetters = file.open(QIODevice::ReadOnly) && file.read(kHead).contains('\0');
    return hasWideLetters || (text.contains(u'\r') && !text.contains(u'\n'));
}

/// The last thing to say of a file that cannot be used.
std::nullopt_t fail(const QString &path, const QString &text, const QString &reason)
{
    qCWarning(unreadTextLog).noquote() << u"Could not open file...%1 %2 %3"_s.arg(path, text, reason);
    return std::nullopt;
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
        logUnreadText(*reason);
        return fail(path, {}, *reason);
    }
    SplitPoints points;
    points.m_text = *text;
    points.m_path = path;
    if (!needsCopy(path, *text))
        return points;
    points.m_copy = std::make_shared<QTemporaryFile>();
    const QByteArray lines = QString(*text).replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n').toUtf8();
    if (!points.m_copy->open() || points.m_copy->write(lines) != lines.size() || !points.m_copy->flush()) {
        *reason = u"its text could not be written for shntool: %1"_s.arg(points.m_copy->errorString());
        return fail(path, {}, *reason);
    }
    points.m_path = points.m_copy->fileName();
    return points;
}

} // namespace nurv
