// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/ChecksumFixture.h"
#include "checksum/CreateMD5Task.h"
#include "support/TestProgram.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using Md5sumTest = test::ChecksumFixture;

TEST_F(Md5sumTest, AcceptsTheListsOfOneFolder)
{
    const QStringList files{folder.write(u"b 1.wav"_s, QByteArray(3'000'000, 'q')), folder.write(u"it's.wav"_s, "abc"),
                            folder.write(u"音.wav"_s, ""), folder.write(u"100%.wav"_s, "x")};
    run(std::make_shared<CreateMD5Task>(&queue, files, folder.path(u"md5sum.md5"_s)));
    const test::ProgramResult checked = test::runProgram(
        u"sh"_s, {u"-c"_s, u"cd \"$1\" && LC_ALL=C.UTF-8 exec md5sum -c md5sum.md5"_s, u"sh"_s, folder.path()});
    EXPECT_EQ(checked.exitStatus, 0) << checked.errors.constData();
    EXPECT_EQ(checked.output.count(": OK\n"), 4) << checked.output.constData();
}

} // namespace
} // namespace nurv
