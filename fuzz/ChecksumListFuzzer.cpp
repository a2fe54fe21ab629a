// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/ChecksumList.h"
#include "checksum/ForeignList.h"
#include "checksum/ListEntries.h"
#include "files/FileStatus.h"
#include "FuzzedFolder.h"
#include "text/DecodeText.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

using namespace Qt::StringLiterals;
using nurv::checksumList::Entry;
using nurv::checksumList::ListKind;

namespace {

const QString kDigest(32, u'a');

void require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

std::vector<Entry> entriesOf(ListKind kind, const QStringList &lines)
{
    switch (kind) {
    case ListKind::Md5: return nurv::checksumList::md5Entries(lines);
    case ListKind::St5: return nurv::checksumList::st5Entries(lines);
    case ListKind::Ffp: break;
    }
    return nurv::checksumList::ffpEntries(lines);
}

std::vector<Entry> foreignEntriesOf(ListKind kind, const QString &text)
{
    switch (kind) {
    case ListKind::Md5: return nurv::foreignList::md5Entries(text);
    case ListKind::St5: return nurv::foreignList::st5Entries(text);
    case ListKind::Ffp: break;
    }
    return nurv::foreignList::ffpEntries(text);
}

QString writtenEntry(ListKind kind, const QString &name)
{
    switch (kind) {
    case ListKind::Md5: return nurv::checksumList::md5Entry(kDigest, name);
    case ListKind::St5: return u'\n' + kDigest + nurv::checksumList::kSt5Marker.toString() + name;
    case ListKind::Ffp: break;
    }
    return name + u':' + kDigest + u'\n';
}

bool isDigest(const QString &text)
{
    return text.size() >= 32 && std::all_of(text.begin(), text.end(), [](QChar digit) {
               return (digit >= u'0' && digit <= u'9') || (digit >= u'a' && digit <= u'f');
           });
}

void readAs(ListKind kind, const QString &text)
{
    const QStringList lines = nurv::checksumList::linesOf(text);
    const std::vector<Entry> entries = entriesOf(kind, lines);
    require(entries.size() <= static_cast<std::size_t>(lines.size()));
    // A line of blanks counts as one of a list of ours that is no entry.
    for (const Entry &entry : entries)
        require(std::none_of(entry.line.begin(), entry.line.end(), &nurv::checksumList::endsLine));
    for (const Entry &entry : foreignEntriesOf(kind, text)) {
        require(!entry.line.isEmpty() && entry.line.size() <= text.size());
        require(!entry.isEntry() || (isDigest(entry.expected) && !entry.name.trimmed().isEmpty()));
    }
}

/// What a list that we write says of a file of that name is what its readers find in it.
void writeAndRead(ListKind kind, const QString &name)
{
    const QString entry = writtenEntry(kind, name);
    const std::vector<Entry> foreign = foreignEntriesOf(kind, entry);
    require(foreign.size() == 1 && foreign.front().name == name && foreign.front().expected == kDigest);
    if (!nurv::checksumList::isReadBack(kind, name))
        return;
    const std::vector<Entry> own = entriesOf(kind, nurv::checksumList::linesOf(entry));
    require(own.size() == 1 && own.front().name.trimmed() == name.trimmed());
}

} // namespace

/// A list of any kind and any bytes, and a file that is named by its first line.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text =
        nurv::decodeText(QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    const QString name = text.section(u'\n', 0, 0);
    const bool isName = !name.trimmed().isEmpty() && !name.contains(QChar(u'\0')) && nurv::checksumList::canName(name);
    for (const ListKind kind : {ListKind::Md5, ListKind::St5, ListKind::Ffp}) {
        readAs(kind, text);
        if (isName)
            writeAndRead(kind, name);
    }
    static const QString file = nurv::fuzz::FuzzedFolder::instance().write(u"Song 1.flac"_s, {});
    const QString folder = file.section(u'/', 0, -2);
    nurv::foreignList::Files files(folder);
    const QString found = files.find(name);
    require(found == nurv::checksumList::listedPath(folder, name)
            || found == nurv::checksumList::listedPath(folder, name.trimmed()) || nurv::isThere(found));
    return 0;
}
