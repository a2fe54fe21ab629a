// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QFile>
#include <QHash>
#include <QString>

#include <gtest/gtest.h>

#include <utility>

namespace nurv::test {

/// Encodes the sound into "name.format": flac, ape, wv, tta or shn. Returns the path.
inline QString writeLossless(const TestFolder &folder, const ProgramFolder &tools, const QString &name, const QString &format,
                             const SoundShape &shape = {})
{
    using namespace Qt::StringLiterals;
    const QString made = folder.path(name + u'.' + format);
    if (format == u"flac")
        return writeFlac(made, shape);
    const QString wav = writeWav(folder.path(u"sound of it.wav"_s), shape);
    const QHash<QString, std::pair<QString, QStringList>> encoders{
        {u"wv"_s, {u"wavpack"_s, {u"-q"_s, u"-y"_s, wav, u"-o"_s, made}}},
        {u"ape"_s, {u"mac"_s, {wav, made, u"-c2000"_s}}},
        {u"tta"_s, {u"ttaenc"_s, {u"-e"_s, wav, u"-o"_s, made}}},
        {u"shn"_s, {u"shorten"_s, {wav, made}}},
    };
    const auto &[program, arguments] = encoders[format];
    const ProgramResult result = runProgram(tools.path(program), arguments);
    EXPECT_EQ(result.exitStatus, 0) << qPrintable(format) << result.errors.constData();
    folder.remove(u"sound of it.wav"_s);
    return made;
}

/// Changes one bit in the middle of the file.
inline void flipABit(const TestFolder &folder, const QString &name)
{
    QByteArray bytes = folder.read(name);
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 1);
    folder.write(name, bytes);
}

/// Cuts the last third off.
inline void truncate(const TestFolder &folder, const QString &name)
{
    const QByteArray bytes = folder.read(name);
    folder.write(name, bytes.first(bytes.size() * 2 / 3));
}

/// Where the text of a program is cut is the pipe's doing, and shows in a report. From now on that of this one comes whole.
inline void makeWriteAtOnce(const ProgramFolder &tools, const QString &program)
{
    const QByteArray real = QFile::encodeName(QFile::symLinkTarget(tools.path(program)));
    tools.remove(program);
    QFile script(tools.path(program));
    EXPECT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\n'" + real + "' \"$@\" > \"$0.text\" 2>&1; status=$?; cat \"$0.text\"; exit $status\n");
    EXPECT_TRUE(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

/// What the program says, its errors included, when it is run by hand.
[[nodiscard]] inline QString saidByHand(const ProgramFolder &tools, const QString &program, const QStringList &arguments)
{
    const QStringList words{QStringLiteral("-c"), QStringLiteral("\"$@\" 2>&1"), QStringLiteral("sh"), tools.path(program)};
    return QString::fromUtf8(runProgram(QStringLiteral("sh"), words + arguments).output);
}

} // namespace nurv::test
