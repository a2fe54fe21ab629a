// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/PathNames.h"

#include <QStringList>

#include <QStringView>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

QStringView withoutSlashesAtEnd(QStringView path)
{
    while (path.endsWith(u'/'))
        path.chop(1);
    return path;
}

QStringView lastComponentView(QStringView path)
{
    path = withoutSlashesAtEnd(path);
    return path.sliced(path.lastIndexOf(u'/') + 1);
}

// Where the point of the extension stands in the name, or -1.
qsizetype extensionPoint(QStringView name)
{
    const qsizetype point = name.lastIndexOf(u'.');
    return point > 0 && point < name.size() - 1 ? point : -1;
}

} // namespace

QString lastPathComponent(const QString &path)
{
    return lastComponentView(path).toString();
}

QString folderOf(const QString &path)
{
    const QStringView whole = withoutSlashesAtEnd(path);
    const qsizetype slash = whole.lastIndexOf(u'/');
    if (slash < 0)
        return path.startsWith(u'/') ? QString(u'/') : QString();
    const QStringView folder = withoutSlashesAtEnd(whole.first(slash));
    return folder.isEmpty() ? QString(u'/') : folder.toString();
}

QString pathExtension(const QString &path)
{
    const QStringView name = lastComponentView(path);
    const qsizetype point = extensionPoint(name);
    return point < 0 ? QString() : name.sliced(point + 1).toString();
}

QString formatWord(const QString &path)
{
    return pathExtension(path).toUpper();
}

bool isAiff(const QString &format)
{
    return format == u"AIFF" || format == u"AIF";
}

bool isSoundName(const QString &path)
{
    static const QStringList words{u"FLAC"_s, u"WAV"_s, u"AIFF"_s, u"AIF"_s, u"SHN"_s,  u"APE"_s,
                                   u"WV"_s,   u"TTA"_s, u"M4A"_s,  u"MP3"_s, u"OPUS"_s, u"OGG"_s};
    return words.contains(formatWord(path));
}

QString nameWithoutExtension(const QString &path)
{
    const QStringView name = lastComponentView(path);
    const qsizetype point = extensionPoint(name);
    return (point < 0 ? name : name.first(point)).toString();
}

QString joinPath(const QString &folder, const QString &name)
{
    return folder.isEmpty() || folder.endsWith(u'/') ? folder + name : folder + u'/' + name;
}

QString outputPath(const QString &folder, const QString &source, const QString &extension)
{
    return joinPath(folder, nameWithoutExtension(source) + u'.' + extension);
}

QString discNumber(const QString &path)
{
    return path.section(u'd', -1).section(u't', 0, 0);
}

} // namespace nurv
