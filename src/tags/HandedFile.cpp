// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/HandedFile.h"

#include <utility>

#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

HandedFile *current = nullptr;

} // namespace

HandedFile::HandedFile(FileDescriptor file) : m_file(std::move(file))
{
    current = this;
}

HandedFile::~HandedFile()
{
    current = nullptr;
}

QString HandedFile::name()
{
    // A slash at the end of a name that is no folder's.
    return u"//handed over/"_s;
}

FileDescriptor HandedFile::open(const QString &path)
{
    if (current == nullptr || path != name())
        return {};
    return FileDescriptor(::fcntl(current->m_file.get(), F_DUPFD_CLOEXEC, 3));
}

const TagEditStream::Edits *HandedFile::leftEdits()
{
    return current != nullptr && current->m_edits.isEdited ? &current->m_edits : nullptr;
}

void HandedFile::leaveEdits(TagEditStream::Edits edits)
{
    if (current != nullptr)
        current->m_edits = std::move(edits);
}

} // namespace nurv
