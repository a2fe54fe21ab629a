// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/ForeignList.h"

#include "checksum/VerifyFFPTask.h"
#include "checksum/VerifyListFixture.h"
#include "checksum/VerifyMD5Task.h"
#include "checksum/VerifyST5Task.h"
#include "support/TestProgram.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const QString kDigest = u"900150983cd24fb0d6963f7d28e17f72"_s;

/// "name=digest" of each entry; lines that are none in brackets.
QStringList shown(const std::vector<checksumList::Entry> &entries)
{
    QStringList lines;
    for (const checksumList::Entry &entry : entries)
        lines.append(entry.isEntry() ? entry.name + u'=' + entry.expected : u'[' + entry.line + u']');
    return lines;
}

TEST(ForeignList, KnowsTheLinesOfMd5Programs)
{
    const QString text = u"# c\n ; c\r\n// c\r"_s + kDigest + u"  two blanks.wav\n"_s + kDigest + u" *asterisk.wav\n"_s + kDigest
                         + u" one blank.wav\n"_s + kDigest.toUpper() + u" *capitals.wav\n\\"_s + kDigest
                         + u"  back\\\\slash\\nline.wav\nMD5 (bsd (1).wav) = "_s + kDigest + u"\nnothing *at all\n"_s;
    EXPECT_EQ(shown(foreignList::md5Entries(text)),
              (QStringList{u"two blanks.wav="_s + kDigest, u"asterisk.wav="_s + kDigest, u"one blank.wav="_s + kDigest,
                           u"capitals.wav="_s + kDigest, u"back\\slash\nline.wav="_s + kDigest, u"bsd (1).wav="_s + kDigest,
                           u"[nothing *at all]"_s}));
}

TEST(ForeignList, KnowsTheLinesOfShntoolAndMetaflac)
{
    EXPECT_EQ(shown(foreignList::st5Entries(kDigest + u" [shntool] a b.shn\n"_s + kDigest.toUpper() + u"\t[shntool 2.0]  cd1/b.shn\nx"_s)),
              (QStringList{u"a b.shn="_s + kDigest, u"cd1/b.shn="_s + kDigest, u"[x]"_s}));
    EXPECT_EQ(shown(foreignList::ffpEntries(u"cd1/a: b.flac : "_s + kDigest.toUpper() + u"\nb.flac:short\n#1 Hit.flac:"_s + kDigest + u"\n# comment"_s)),
              (QStringList{u"cd1/a: b.flac ="_s + kDigest, u"[b.flac:short]"_s, u"#1 Hit.flac="_s + kDigest}));
}

class ForeignListsTest : public test::VerifyListFixture {
protected:
    ForeignListsTest() { tools.addAllReal(); }
    template<typename Task>
    std::shared_ptr<Task> verifyAny(const QString &list)
    {
        const auto results = std::make_shared<NURVTaskResults>();
        const auto task = std::make_shared<Task>(&queue, list, results);
        task->setUnderstandsOthers(true);
        results->addTaskInSet(*task);
        run(task);
        report = results->results(*task);
        return task;
    }

    test::ProgramFolder tools;
};

TEST_F(ForeignListsTest, AreThoseThatMd5sumWritesInAllItsForms)
{
    folder.write(u"a.wav"_s, "abc");
    folder.write(u"b\nc.wav"_s, "abc");
    folder.write(u"d\\e.wav"_s, "abc");
    for (const QString &option : {u"--text"_s, u"--binary"_s, u"--tag"_s}) {
        const auto made = test::runProgram(
            u"bash"_s, {u"-c"_s, u"cd \"$1\" && md5sum \"$2\" *.wav"_s, u"-"_s, folder.path(), option});
        ASSERT_EQ(made.exitStatus, 0);
        const auto task = verifyAny<VerifyMD5Task>(folder.write(u"l.md5"_s, made.output));
        EXPECT_EQ(statesOf(*task), (std::vector{State::Ok, State::Ok, State::Ok})) << made.output.constData() << qPrintable(report);
    }
}

TEST_F(ForeignListsTest, FindFilesWhoseNamesDifferInFormAlone)
{
    folder.write(u"CD1/Ré mineur.wav"_s, "abc");
    folder.write(u"two.wav"_s, "abc");
    folder.write(u"TWO.wav"_s, "abc");
    const QString digest = kDigest;
    QByteArray list = "\xef\xbb\xbf" + (digest + u" *cd1\\RE\u0301 MINEUR.WAV\r\n"_s + digest + u" *d:\\old\\two.wav\r\n"_s + digest
                                         + u" *Two.wav\r\n"_s).toUtf8();
    const auto task = verifyAny<VerifyMD5Task>(folder.write(u"l.md5"_s, list));
    // Which of the two is meant by the last name nobody knows.
    EXPECT_EQ(statesOf(*task), (std::vector{State::Ok, State::Ok, State::Missing})) << qPrintable(report);
}

TEST_F(ForeignListsTest, MayBeInLatin1)
{
    folder.write(u"Ré mineur.wav"_s, "abc");
    const auto task = verifyAny<VerifyMD5Task>(folder.write(u"l.md5"_s, (kDigest + u"  Ré mineur.wav\n"_s).toLatin1()));
    EXPECT_EQ(statesOf(*task), std::vector{State::Ok}) << qPrintable(report);
}

TEST_F(ForeignListsTest, OfSt5AndFfpMayHaveFoldersAndCapitals)
{
    test::writeFlac(folder.path(u"cd1/t01.flac"_s), {.seconds = 0.3});
    const auto signature = test::runProgram(u"metaflac"_s, {u"--show-md5sum"_s, folder.path(u"cd1/t01.flac"_s)}).output.trimmed();
    EXPECT_EQ(statesOf(*verifyAny<VerifyFFPTask>(folder.write(u"l.ffp"_s, "cd1/t01.flac:" + signature.toUpper() + "\r\n"))),
              std::vector{State::Ok});
    // Of 16 bits both digests are those of the samples.
    EXPECT_EQ(statesOf(*verifyAny<VerifyST5Task>(folder.write(u"l.st5"_s, signature.toUpper() + " [shntool] cd1\\T01.flac\r\n"))),
              std::vector{State::Ok});
    EXPECT_EQ(statesOf(*verifyAny<VerifyST5Task>(folder.write(u"m.st5"_s, QByteArray(32, '0') + " [shntool] cd1/t01.flac\n"))),
              std::vector{State::Different});
}

} // namespace
} // namespace nurv
