// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/MD5Helper.h"

#include "support/LogLines.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

TEST(MD5Helper, GivesTheDigestsOfTheAlgorithmsDefinition)
{
    // RFC 1321, appendix A.5.
    const test::TestFolder folder;
    EXPECT_EQ(MD5Helper::getMD5FromFile(folder.write(u"empty"_s, "")), u"d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(MD5Helper::getMD5FromFile(folder.write(u"a"_s, "a")), u"0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(MD5Helper::getMD5FromFile(folder.write(u"abc"_s, "abc")), u"900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(MD5Helper::getMD5FromFile(folder.write(u"md"_s, "message digest")), u"f96b697d7cb7938d525a2f31aaf161d0");
}

TEST(MD5Helper, JoinsTheBlocksOfFilesAroundTheBlockSize)
{
    // Computed with another implementation.
    const test::TestFolder folder;
    EXPECT_EQ(MD5Helper::getMD5FromFile(folder.write(u"one"_s, QByteArray(1'048'576, '\0'))),
              u"b6d81b360a5672d80c27430f39153e2c");
    EXPECT_EQ(MD5Helper::getMD5FromFile(folder.write(u"more"_s, QByteArray(1'048'577, '\0'))),
              u"9587b149ff392ca6887a05d921e73e72");
}

TEST(MD5Helper, ReadsAFileThatIsNotThereAsEmptyAndSaysSoInTheLog)
{
    const test::LogLines log;
    EXPECT_EQ(MD5Helper::getMD5FromFile(u"/nowhere/at all.wav"_s), u"d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(log.with(u"/nowhere/at all.wav"_s).size(), 1);
}

TEST(MD5Helper, StopsBetweenTheBlocksOfAFile)
{
    const test::TestFolder folder;
    const QString path = folder.write(u"three"_s, QByteArray(3 * 1'048'576, '\0'));
    int asked = 0;
    EXPECT_EQ(MD5Helper::getMD5FromFile(path, [&] { return ++asked == 2; }), QString());
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(MD5Helper::getMD5FromFile(folder.write(u"abc"_s, "abc"), [] { return false; }),
              u"900150983cd24fb0d6963f7d28e17f72");
}

TEST(MD5Helper, ReadsAFolderAsEmpty)
{
    const test::LogLines log;
    const test::TestFolder folder;
    EXPECT_EQ(MD5Helper::getMD5FromFile(folder.path()), u"d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(log.with(folder.path()).size(), 1);
}

TEST(MD5Helper, TakesNamesOfAllKinds)
{
    const test::TestFolder folder;
    for (const QString &name : {u"-a b"_s, u"it's \"it\""_s, u"line\nend"_s, u"100%"_s, u"音"_s, QString(255, u'x')})
        EXPECT_EQ(MD5Helper::getMD5FromFile(folder.write(name, "abc")), u"900150983cd24fb0d6963f7d28e17f72");
}

} // namespace
} // namespace nurv
