// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/NurvFailure.h"
#include "cli/Commands.h"
#include "cli/CompletionScript.h"
#include "cli/ManualOptions.h"

#include <QFile>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

QString contentsOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw nurv::NurvFailure(path + u": "_s + file.errorString());
    return QString::fromUtf8(file.readAll());
}

void write(const QString &path, const QString &text)
{
    QFile file(path);
    const QByteArray bytes = text.toUtf8();
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size() || !file.flush())
        throw nurv::NurvFailure(path + u": "_s + file.errorString());
}

} // namespace

/// Writes what is made of the table of commands, for the installation: PAGE is the manual page without its options.
int main(int argc, char **argv)
{
    constexpr int kArguments = 6;
    if (argc != kArguments) {
        std::fprintf(stderr, "usage: %s PAGE MANUAL-PAGE BASH ZSH FISH\n", argv[0]);
        return 2;
    }
    try {
        const nurv::CommandTree &commands = nurv::commands();
        write(QFile::decodeName(argv[2]), nurv::manualPage(contentsOf(QFile::decodeName(argv[1])), commands));
        write(QFile::decodeName(argv[3]), nurv::bashCompletion(commands));
        write(QFile::decodeName(argv[4]), nurv::zshCompletion(commands));
        write(QFile::decodeName(argv[5]), nurv::fishCompletion(commands));
        return 0;
    } catch (const nurv::NurvFailure &failure) {
        std::fprintf(stderr, "%s: %s\n", argv[0], qPrintable(failure.reason()));
        return 1;
    }
}
