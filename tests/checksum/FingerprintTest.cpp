// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/Fingerprint.h"

#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

TEST(Fingerprint, JoinsTheBaseNameAndWhatMetaflacSays)
{
    const test::TestFolder folder;
    const QString path = test::writeFlac(folder.path(u"a b.flac"_s));
    const test::ProgramResult said = test::runProgram(u"metaflac"_s, {u"--show-md5sum"_s, path});
    ASSERT_EQ(said.exitStatus, 0);
    ASSERT_EQ(said.output.size(), 33);
    EXPECT_EQ(fingerprint(path), u"a b.flac:"_s + QString::fromLatin1(said.output));
}

TEST(Fingerprint, GivesTheErrorOfAFileThatIsNoFlacWithoutAName)
{
    const test::TestFolder folder;
    const QString text = fingerprint(folder.write(u"a.flac"_s, "no flac"));
    EXPECT_TRUE(text.contains(u"FLAC__METADATA_CHAIN_STATUS_NOT_A_FLAC_FILE"_s)) << qPrintable(text);
    EXPECT_FALSE(text.startsWith(u"a.flac:"_s));
    const test::ProgramResult said = test::runProgram(u"metaflac"_s, {u"--show-md5sum"_s, folder.path(u"a.flac"_s)});
    EXPECT_EQ(text.toUtf8(), said.output + said.errors);
}

TEST(Fingerprint, AsksMetaflacForTheSignatureOfTheFile)
{
    const test::ProgramFolder tools;
    const test::TestFolder folder;
    tools.addFake(u"metaflac"_s, "args");
    EXPECT_EQ(fingerprint(folder.path(u"x:y.flac"_s)),
              u"x:y.flac:arg 1: --show-md5\narg 2: %1\n"_s.arg(folder.path(u"x:y.flac"_s)));
}

TEST(Fingerprint, IsAtFaultUnlessItHoldsTheDigestOfSomeSound)
{
    const QString digest = u"1d189d2441b303c8599e882577ea06e5"_s;
    EXPECT_EQ(faultOfFingerprint(u"a.flac:"_s + digest + u'\n'), std::nullopt);
    EXPECT_EQ(faultOfFingerprint(u"a: b.flac:"_s + digest + u'\n'), std::nullopt);
    EXPECT_EQ(faultOfFingerprint(u"a.flac:"_s + digest.chopped(1) + u'\n'), u"metaflac told none");
    EXPECT_EQ(faultOfFingerprint(u"a.flac:"_s + digest.toUpper() + u'\n'), u"metaflac told none");
    EXPECT_EQ(faultOfFingerprint(QString()), u"metaflac told none");
    EXPECT_EQ(faultOfFingerprint(u"a.flac:"_s + QString(32, u'0') + u'\n'), u"its encoder stored none");
    const QString complaint = u"a.flac: ERROR: reading metadata, status = \"FLAC__METADATA_CHAIN_STATUS_READ_ERROR\""_s;
    EXPECT_EQ(faultOfFingerprint(complaint + u"\nmore\n"_s), complaint);
}

} // namespace
} // namespace nurv
