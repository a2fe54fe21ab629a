// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/VerifyMD5Task.h"

#include "app/PathNames.h"
#include "checksum/ForeignList.h"
#include "checksum/ListEntries.h"
#include "checksum/MD5Helper.h"

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

void VerifyMD5Task::doCreateMD5()
{
    const std::vector<checksumList::Entry> entries =
        understandsOthers() ? foreignList::md5Entries(foreignList::read(fileName()))
                            : checksumList::md5Entries(checksumList::linesOf(checksumList::readList(fileName())));
    const QString folder = folderOf(fileName());
    foreignList::Files files(folder);
    QString gathered;
    std::size_t done = 0;
    for (const checksumList::Entry &entry : entries) {
        const auto isStopped = [this] { return cancelled(); };
        if (isStopped()) {
            addLines(u"Canceled\n"_s);
            return;
        }
        if (entry.isEntry()) {
            setTopTextFieldString(u"Verifying "_s + entry.name);
            const QString name = understandsOthers() ? entry.name : entry.name.trimmed();
            const QString path = understandsOthers() ? files.find(name) : checksumList::listedPath(folder, name);
            const FileDigest digest = MD5Helper::digestOf(path, MD5Helper::Kind::Regular, isStopped);
            if (digest.hexadecimal.isEmpty()) {
                addLines(u"Canceled\n"_s);
                return;
            }
            const bool isSame = digest.hexadecimal == entry.expected;
            gathered += lastPathComponent(name) + (isSame ? u" : OK\n"_s : u" : FAILED\n"_s);
            addFile(foundFor(entry, digest));
        } else {
            gathered += entry.line + u" : Invalid checksum format\n"_s;
            addFile({.name = entry.line, .state = State::NotAnEntry});
        }
        ++done;
        setProgressIndicatorValue(static_cast<double>(done) * 100.0 / static_cast<double>(entries.size()));
        updateStatus();
    }
    addLines(gathered);
}

} // namespace nurv
