// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/ListEntries.h"

#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "text/Utf8Text.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace nurv::checksumList {

namespace {

constexpr qint64 kLargestList = 128 * 1024 * 1024;
constexpr qsizetype kMostLines = 2'000'000;
constexpr qsizetype kLongestLine = 64 * 1024;

/// The first two pieces at the marker; no name without a second one.
Entry splitAt(const QString &line, QStringView marker)
{
    Entry entry{.line = line};
    const qsizetype first = line.indexOf(marker);
    if (first < 0)
        return entry;
    const qsizetype behind = first + marker.size();
    const qsizetype next = line.indexOf(marker, behind);
    entry.hasMark = true;
    entry.expected = line.first(first).trimmed();
    entry.name = line.sliced(behind, (next < 0 ? line.size() : next) - behind);
    return entry;
}

} // namespace

bool endsLine(QChar character)
{
    return (character >= u'\n' && character <= u'\r') || character == u'\u0085' || character == u'\u2028'
           || character == u'\u2029';
}

QByteArray readListBytes(const QString &path)
{
    // A pipe would keep the reader waiting.
    if (const QFileInfo info(path); info.exists() && !info.isFile())
        throw NurvFailure(u"the list is no regular file"_s);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw NurvFailure(u"the list cannot be read: %1"_s.arg(file.errorString()));
    if (file.size() > kLargestList)
        throw NurvFailure(u"the list has more than 128 MiB"_s);
    const QByteArray bytes = file.read(kLargestList + 1);
    if (file.error() != QFileDevice::NoError)
        throw NurvFailure(u"the list cannot be read: %1"_s.arg(file.errorString()));
    if (bytes.size() > kLargestList)
        throw NurvFailure(u"the list has more than 128 MiB"_s);
    return bytes;
}

void requireUsualLines(QStringView text)
{
    qsizetype begin = 0;
    qsizetype lines = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i < text.size() && !endsLine(text[i]))
            continue;
        if (i - begin > kLongestLine)
            throw NurvFailure(u"the list has a line of more than %1 characters"_s.arg(kLongestLine));
        begin = i + 1;
        if (++lines > kMostLines)
            throw NurvFailure(u"the list has more than %1 lines"_s.arg(kMostLines));
    }
}

QString readList(const QString &path)
{
    const std::optional<QString> text = fromStrictUtf8(readListBytes(path));
    if (!text)
        throw NurvFailure(u"the list is no UTF-8 text"_s);
    requireUsualLines(*text);
    return *text;
}

QStringList linesOf(QStringView text)
{
    QStringList lines;
    qsizetype begin = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!endsLine(text[i]))
            continue;
        lines.append(text.sliced(begin, i - begin).toString());
        begin = i + 1;
    }
    lines.append(text.sliced(begin).toString());
    return lines;
}

std::vector<Entry> md5Entries(const QStringList &lines)
{
    std::vector<Entry> entries;
    for (const QString &line : lines) {
        if (line.isEmpty() || line.startsWith(u'#') || line.startsWith(u';'))
            continue;
        entries.push_back(splitAt(line.trimmed(), u" *"));
    }
    return entries;
}

std::vector<Entry> st5Entries(const QStringList &lines)
{
    std::vector<Entry> entries;
    for (const QString &line : lines) {
        const QString trimmed = line.trimmed();
        if (!trimmed.isEmpty() && !trimmed.startsWith(u';'))
            entries.push_back(splitAt(trimmed, kSt5Marker));
    }
    return entries;
}

std::vector<Entry> ffpEntries(const QStringList &lines)
{
    std::vector<Entry> entries;
    for (const QString &line : lines) {
        const QString trimmed = line.trimmed();
        if (trimmed.isEmpty() || trimmed.startsWith(u';'))
            continue;
        // The name stands first here.
        const Entry split = splitAt(trimmed, u":");
        entries.push_back(
            {.line = trimmed, .name = split.expected, .expected = split.name.trimmed(), .hasMark = split.hasMark});
    }
    return entries;
}

QString listedPath(const QString &listFolder, const QString &name)
{
    return name.startsWith(u'/') || listFolder.endsWith(u'/') ? listFolder + name : listFolder + u'/' + name;
}

} // namespace nurv::checksumList
