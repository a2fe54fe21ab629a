// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/VerifyMD5Task.h"

#include "app/PathNames.h"
#include "base/ParallelLoop.h"
#include "checksum/ForeignList.h"
#include "engine/RowOfFiles.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using State = ListedFile::State;

/// The entry's line says whether the digests are the same text; this says what was seen.
ListedFile foundFor(const checksumList::Entry &entry, const FileDigest &digest)
{
    ListedFile file{.name = entry.name.trimmed(), .state = State::Ok, .detail = digest.failure};
    if (digest.isMissing)
        file.state = State::Missing;
    else if (!digest.failure.isEmpty())
        file.state = State::Unreadable;
    else if (digest.hexadecimal != entry.expected)
        file.state = State::Different;
    return file;
}

} // namespace

VerifyMD5Task::VerifyMD5Task(NURVTaskQueue *queue, const QString &fileName, std::shared_ptr<NURVTaskResults> results)
    : VerifyListTask(queue, fileName, std::move(results))
{
}

QString VerifyMD5Task::openingLine() const
{
    return u"Verify MD5: %1\n"_s.arg(lastPathComponent(fileName()));
}

void VerifyMD5Task::verify()
{
    doCreateMD5();
}

std::vector<checksumList::Entry> VerifyMD5Task::ownEntries(const QString &text) const
{
    return checksumList::md5Entries(checksumList::linesOf(text));
}

std::vector<checksumList::Entry> VerifyMD5Task::entriesOfOthers(const QString &text) const
{
    return foreignList::md5Entries(text);
}

void VerifyMD5Task::doCreateMD5()
{
    const std::vector<checksumList::Entry> entries = entriesOf(text());
    const std::vector<FileDigest> digests = readFiles(entries);
    if (cancelled()) {
        addLines(u"Canceled\n"_s);
        return;
    }
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const checksumList::Entry &entry = entries[i];
        if (!entry.isEntry()) {
            gather(entry.line + u" : Invalid checksum format\n"_s);
            addFile({.name = entry.line, .state = State::NotAnEntry});
            continue;
        }
        const bool isSame = digests[i].hexadecimal == entry.expected;
        gather(lastPathComponent(entry.name.trimmed()) + (isSame ? u" : OK\n"_s : u" : FAILED\n"_s));
        addFile(foundFor(entry, digests[i]));
    }
    reportGathered();
}

std::vector<FileDigest> VerifyMD5Task::readFiles(const std::vector<checksumList::Entry> &entries)
{
    const QString folder = folderOf(fileName());
    foreignList::Files files(folder);
    QStringList paths;
    for (const checksumList::Entry &entry : entries) {
        if (!entry.isEntry())
            paths.append(QString());
        else if (understandsOthers())
            paths.append(files.find(entry.name));
        else
            paths.append(checksumList::listedPath(folder, entry.name.trimmed()));
    }
    std::vector<FileDigest> digests(entries.size());
    RowOfFiles row(*this, paths.size(), [&](qsizetype done) {
        if (done < paths.size() && entries[static_cast<std::size_t>(done)].isEntry())
            setTopTextFieldString(u"Verifying "_s + entries[static_cast<std::size_t>(done)].name);
        setProgressIndicatorValue(static_cast<double>(done) * 100.0 / static_cast<double>(paths.size()));
        updateStatus();
    });
    const auto isStopped = [this] { return cancelled(); };
    runInParallel(paths.size(), MD5Helper::kReaders, isStopped, [&](qsizetype index) {
        const auto place = static_cast<std::size_t>(index);
        if (entries[place].isEntry())
            digests[place] = MD5Helper::digestOf(paths.at(index), MD5Helper::Kind::Regular, isStopped);
        row.markDone(index);
    });
    return digests;
}

} // namespace nurv
