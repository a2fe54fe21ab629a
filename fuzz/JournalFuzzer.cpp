// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FileDescriptor.h"
#include "journal/JournalContents.h"
#include "journal/JournalLine.h"

#include <cstdio>
#include <cstdlib>

#include <sys/mman.h>
#include <unistd.h>
#include <zlib.h>

namespace {

using namespace nurv;

void require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

/// Each line with the checksum that it needs, since no fuzzer would find one.
QByteArray withChecksums(const QByteArray &text)
{
    QByteArray lines;
    for (const QByteArray &line : text.split('\n')) {
        const auto sum = static_cast<unsigned>(
            ::crc32_z(0, reinterpret_cast<const Bytef *>(line.constData()), static_cast<z_size_t>(line.size())));
        char digits[11];
        std::snprintf(digits, sizeof digits, " %08x\n", sum);
        lines += line + digits;
    }
    return lines;
}

void checkPlans(const JournalContents &contents)
{
    for (const PlannedOutput &planned : contents.outputs) {
        require(planned.output.startsWith('/') && planned.source.startsWith('/'));
        require(planned.aside.isEmpty() || planned.aside.startsWith('/'));
        require(!planned.output.contains('\0') && !planned.source.contains('\0') && !planned.aside.contains('\0'));
        const NameState former = NameState::fromText(planned.formerOutput.toText());
        require(former.isKnown == planned.formerOutput.isKnown && former.isFree() == planned.formerOutput.isFree());
    }
    for (const QByteArray &temporary : contents.temporaries)
        require(temporary.startsWith('/'));
}

void read(const QByteArray &journal)
{
    const FileDescriptor file(::memfd_create("journal", MFD_CLOEXEC));
    require(file.isOpen());
    require(::write(file.get(), journal.constData(), static_cast<std::size_t>(journal.size())) == journal.size());
    checkPlans(JournalContents::read(file.get()));
}

} // namespace

/// A journal of any bytes, as it stands and with checksums that are right: only absolute paths
/// come out of it. The words of a line come back from it, whatever they are.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    read(bytes);
    read(withChecksums(bytes));
    const QByteArray half = bytes.left(bytes.size() / 2);
    const QByteArray otherHalf = bytes.mid(bytes.size() / 2);
    QByteArray line = journalLine({half, otherHalf});
    line.chop(1);
    require(!line.contains('\n') && journalWords(line) == QList<QByteArray>({half, otherHalf}));
    return 0;
}
