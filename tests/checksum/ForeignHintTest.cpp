// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/VerifyFFPTask.h"
#include "checksum/VerifyListFixture.h"
#include "checksum/VerifyMD5Task.h"
#include "checksum/VerifyST5Task.h"
#include "support/TestProgram.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const QByteArray kDigestOfAbc = "900150983cd24fb0d6963f7d28e17f72";
const QByteArray kOtherDigest = "0123456789abcdef0123456789abcdef";

class ForeignHintTest : public test::VerifyListFixture {
protected:
    ForeignHintTest() { tools.addAllReal(); }
    /// Checks the list without the understanding of others; whether the report points to that, in its last line and the
    /// job's reason alike.
    template<typename Task>
    [[nodiscard]] bool hints(const QByteArray &list)
    {
        const auto task = verify<Task>(folder.write(u"list"_s, list));
        const QString hint = u"try 'Understand lists of other programs' (--any-list)"_s;
        EXPECT_TRUE(task->error() || !report.contains(hint));
        EXPECT_EQ(report.endsWith(hint + u'\n'), task->outcome().problem.endsWith(u", "_s + hint)) << qPrintable(report);
        return report.endsWith(hint + u'\n');
    }
    test::ProgramFolder tools;
};

TEST_F(ForeignHintTest, StandsUnderMd5ListsOfOtherPrograms)
{
    folder.write(u"a.wav"_s, "abc");
    folder.write(u"cd1/b.wav"_s, "abc");
    EXPECT_TRUE(hints<VerifyMD5Task>(kDigestOfAbc + "  a.wav\n"));
    EXPECT_TRUE(hints<VerifyMD5Task>(kDigestOfAbc + " *a.wav\n" + kDigestOfAbc + "  gone.wav\n"));
    EXPECT_TRUE(hints<VerifyMD5Task>("MD5 (a.wav) = " + kDigestOfAbc + '\n'));
    EXPECT_TRUE(hints<VerifyMD5Task>(kDigestOfAbc.toUpper() + " *a.wav\n"));
    EXPECT_TRUE(hints<VerifyMD5Task>("\xef\xbb\xbf" + kDigestOfAbc + " *a.wav\n"));
    EXPECT_TRUE(hints<VerifyMD5Task>(kDigestOfAbc + " *R\xe9 mineur.wav\n"));
    EXPECT_TRUE(hints<VerifyMD5Task>(kDigestOfAbc + " *cd1\\b.wav\n"));
    EXPECT_TRUE(hints<VerifyMD5Task>(kDigestOfAbc + " *A.WAV\n"));
    EXPECT_TRUE(hints<VerifyMD5Task>('\\' + kDigestOfAbc + " *c\\nd.wav\n"));
}

TEST_F(ForeignHintTest, StandsUnderSt5AndFfpListsOfOtherPrograms)
{
    const QString flac = test::writeFlac(folder.path(u"cd1/a.flac"_s), {.seconds = 0.2});
    const QByteArray digest = test::runProgram(u"metaflac"_s, {u"--show-md5sum"_s, flac}).output.trimmed();
    EXPECT_TRUE(hints<VerifyST5Task>(digest + " [shntool] cd1/a.flac\n"));
    EXPECT_TRUE(hints<VerifyST5Task>(digest + "  [shntool]  cd1/a.flac\n"));
    EXPECT_TRUE(hints<VerifyFFPTask>("cd1/a.flac:" + digest + '\n'));
    EXPECT_TRUE(hints<VerifyFFPTask>("cd1\\a.flac:" + digest.toUpper() + '\n'));
}

TEST_F(ForeignHintTest, DoesNotStandWhereItWouldHelpNobody)
{
    folder.write(u"a.wav"_s, "abc");
    EXPECT_FALSE(hints<VerifyMD5Task>(kDigestOfAbc + " *a.wav\n"));
    EXPECT_FALSE(hints<VerifyMD5Task>(kOtherDigest + " *a.wav\n"));
    EXPECT_FALSE(hints<VerifyMD5Task>(kDigestOfAbc + " *gone.wav\n"));
    EXPECT_FALSE(hints<VerifyMD5Task>("nothing that any program writes\n"));
    EXPECT_FALSE(hints<VerifyMD5Task>(""));
    EXPECT_FALSE(hints<VerifyMD5Task>(kDigestOfAbc + " *a.wav\r\n" + kOtherDigest + " *a.wav\r\n"));
    EXPECT_FALSE(hints<VerifyST5Task>(kOtherDigest + "  [shntool]  gone.wav\n"));
    EXPECT_FALSE(hints<VerifyFFPTask>("gone.flac:" + kOtherDigest + '\n'));
    // A list that ends in the midst of a sample of it.
    EXPECT_FALSE(hints<VerifyMD5Task>((kDigestOfAbc + " *a.wav\n").repeated(5000) + kOtherDigest + " *a.wav\n"));
}

} // namespace
} // namespace nurv
