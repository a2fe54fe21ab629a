// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TestFolder.h"

#include <QByteArray>
#include <QFile>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace nurv::test {

/// An empty file whose name is bytes, not text. It removes itself, since nothing
/// that handles names as texts could.
class RawNamedFile {
public:
    RawNamedFile(const TestFolder &folder, const QByteArray &name)
        : m_path(QFile::encodeName(folder.path()) + '/' + name)
    {
        const int file = ::open(m_path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        EXPECT_GE(file, 0);
        ::close(file);
    }
    ~RawNamedFile() { EXPECT_EQ(::unlink(m_path.constData()), 0); }
    RawNamedFile(const RawNamedFile &) = delete;
    RawNamedFile &operator=(const RawNamedFile &) = delete;

private:
    QByteArray m_path;
};

} // namespace nurv::test
