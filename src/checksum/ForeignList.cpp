// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/ForeignList.h"

#include "app/PathNames.h"
#include "files/FileStatus.h"
#include "text/DecodeText.h"

#include <QDir>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv::foreignList {

using checksumList::Entry;

namespace {

/// Whether a line that is no entry is none by intention.
bool isComment(QStringView text)
{
    const QStringView line = text.trimmed();
    return line.startsWith(u'#') || line.startsWith(u';') || line.startsWith(u"//"_s);
}

/// The lines that are not blank, as they are: blanks at their ends may belong to a name.
QStringList linesOf(const QString &text)
{
    QStringList lines;
    // A list of another program breaks lines where such programs do: a separator of Unicode may belong to a name.
    static const QRegularExpression kLineEnd(u"\\r\\n|\\n|\\r"_s);
    for (const QString &line : text.split(kLineEnd)) {
        if (!line.trimmed().isEmpty())
            lines.append(line);
    }
    return lines;
}

/// What `md5sum` does to a name with line ends or backslashes, taken back.
QString unescaped(const QString &name)
{
    QString result;
    for (qsizetype i = 0; i < name.size(); ++i) {
        if (name[i] != u'\\' || i + 1 == name.size()) {
            result += name[i];
            continue;
        }
        ++i;
        result += name[i] == u'n' ? u'\n' : name[i] == u'r' ? u'\r' : name[i];
    }
    return result;
}

/// A name of blanks is none, and the line no entry.
Entry entryOf(const QString &line, const QString &digest, const QString &name)
{
    if (name.trimmed().isEmpty())
        return {.line = line.trimmed()};
    return {.line = line.trimmed(), .name = name, .expected = digest.toLower()};
}

/// No system finds a file by more.
constexpr qsizetype kLongestPath = 4096;

QString folded(const QString &name)
{
    return name.normalized(QString::NormalizationForm_C).toCaseFolded();
}

} // namespace

QString read(const QString &path)
{
    QString text = decodeText(checksumList::readListBytes(path));
    checksumList::requireUsualLines(text);
    return text;
}

std::vector<Entry> md5Entries(const QString &text)
{
    static const QRegularExpression kPlain(u"^\\s*(\\\\?)([0-9A-Fa-f]{32}) [ *]?(.+)$"_s);
    static const QRegularExpression kBsd(u"^\\s*(\\\\?)MD5 ?\\((.+)\\) ?= ?([0-9A-Fa-f]{32})\\s*$"_s,
                                         QRegularExpression::CaseInsensitiveOption);
    std::vector<Entry> entries;
    for (const QString &line : linesOf(text)) {
        Entry entry{.line = line.trimmed()};
        if (const auto plain = kPlain.match(line); plain.hasMatch())
            entry = entryOf(line, plain.captured(2),
                            plain.captured(1).isEmpty() ? plain.captured(3) : unescaped(plain.captured(3)));
        else if (const auto bsd = kBsd.match(line); bsd.hasMatch())
            entry = entryOf(line, bsd.captured(3),
                            bsd.captured(1).isEmpty() ? bsd.captured(2) : unescaped(bsd.captured(2)));
        if (entry.isEntry() || !isComment(line))
            entries.push_back(entry);
    }
    return entries;
}

std::vector<Entry> st5Entries(const QString &text)
{
    static const QRegularExpression kLine(u"^\\s*([0-9A-Fa-f]{32,40})\\s+\\[shntool[^\\]]*\\]\\s{1,2}(.+)$"_s);
    std::vector<Entry> entries;
    for (const QString &line : linesOf(text)) {
        const auto match = kLine.match(line);
        if (match.hasMatch())
            entries.push_back(entryOf(line, match.captured(1), match.captured(2)));
        else if (!isComment(line))
            entries.push_back({.line = line.trimmed()});
    }
    return entries;
}

std::vector<Entry> ffpEntries(const QString &text)
{
    static const QRegularExpression kDigest(u"^[0-9A-Fa-f]{32}$"_s);
    std::vector<Entry> entries;
    for (const QString &line : linesOf(text)) {
        const qsizetype colon = line.lastIndexOf(u':');
        const QString name = line.left(std::max<qsizetype>(colon, 0));
        const QString digest = line.sliced(colon + 1).trimmed();
        if (!name.trimmed().isEmpty() && kDigest.match(digest).hasMatch())
            entries.push_back(entryOf(line, digest, name));
        else if (!isComment(line))
            entries.push_back({.line = line.trimmed()});
    }
    return entries;
}

QString Files::find(const QString &name)
{
    const QString exact = findExactly(name);
    if (isThere(exact) || name == name.trimmed())
        return exact;
    // Blanks around a name are more often the list's than the name's.
    return findExactly(name.trimmed());
}

QString Files::findExactly(const QString &name)
{
    const QString asItStands = checksumList::listedPath(m_folder, name);
    if (isThere(asItStands))
        return asItStands;
    const QString slashed = QString(name).replace(u'\\', u'/');
    if (const QString found = walk(slashed); !found.isEmpty())
        return found;
    // A file that is missing from its own folder is not another one of its name.
    const QString folder = slashed.contains(u'/') ? walk(folderOf(slashed)) : QString();
    const QString beside = folder.isEmpty() && slashed.contains(u'/') ? walk(lastPathComponent(slashed)) : QString();
    return beside.isEmpty() ? asItStands : beside;
}

QString Files::walk(const QString &name)
{
    QString path = m_folder;
    for (const QString &part : name.split(u'/', Qt::SkipEmptyParts)) {
        if (part == u".")
            continue;
        if (path.size() > kLongestPath)
            return {};
        const QString next = joinPath(path, part);
        if (part == u".." || isThere(next)) {
            path = next;
            continue;
        }
        const QString same = sameName(path, part);
        if (same.isEmpty())
            return {};
        path = joinPath(path, same);
    }
    return path == m_folder ? QString() : path;
}

QString Files::sameName(const QString &folder, const QString &name)
{
    if (!m_namesOfFolder.contains(folder)) {
        QHash<QString, QStringList> &names = m_namesOfFolder[folder];
        for (const QString &entry : QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
            names[folded(entry)].append(entry);
    }
    const QStringList same = m_namesOfFolder[folder].value(folded(name));
    return same.size() == 1 ? same.first() : QString();
}

} // namespace nurv::foreignList
