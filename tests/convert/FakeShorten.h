// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/ToolFolder.h"

#include <QByteArray>
#include <QFile>
#include <QString>

namespace nurv::test {

/// A stand-in for `shorten`, which shntool looks up in PATH: encoding makes a file
/// with the magic number and no sound, decoding gives the WAV file it was made with.
class FakeShorten {
public:
    FakeShorten(const ToolFolder &tools, const QString &wavPath)
    {
        // Started by its name alone, it finds its script in the environment only.
        tools.addFake(QStringLiteral("shorten"), "");
        qputenv("NURV_FAKE_shorten", "when-option=-x;cat=" + QFile::encodeName(wavPath)
                                         + ";exit=0;end;create=@-1;append=@-1:ajkg\\x02;read-stdin");
    }
    ~FakeShorten() { qunsetenv("NURV_FAKE_shorten"); }
    FakeShorten(const FakeShorten &) = delete;
    FakeShorten &operator=(const FakeShorten &) = delete;

    /// What a file of the format begins with.
    [[nodiscard]] static QByteArray magic() { return "ajkg\x02"; }
};

} // namespace nurv::test
