// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/ChecksumList.h"
#include "checksum/CreateFFPTask.h"
#include "checksum/CreateMD5Task.h"
#include "checksum/CreateST5Task.h"
#include "checksum/VerifyFFPTask.h"
#include "checksum/VerifyListFixture.h"
#include "checksum/VerifyMD5Task.h"
#include "checksum/VerifyST5Task.h"
#include "process/ResourceFolder.h"
#include "programs/Shntool.h"
#include "support/TestProgram.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using checksumList::isReadBack;
using checksumList::ListKind;

TEST(ListedNames, AreReadBackUnlessTheReaderTakesSomeOfThemForItsOwn)
{
    struct Case {
        QString name;
        bool md5, st5, ffp;
    };
    for (const Case &one : {Case{u"t01.flac"_s, true, true, true}, Case{u"a b  c.flac"_s, true, true, true},
                            Case{u"-a.flac"_s, true, true, true}, Case{u"*a*.flac"_s, true, true, true},
                            Case{u"a\\b.flac"_s, true, true, true}, Case{u"#1.flac"_s, true, true, true},
                            Case{u"Re\u0301.flac"_s, true, true, true}, Case{u"R\u00e9.flac"_s, true, true, true},
                            Case{u" a.flac"_s, false, true, false}, Case{u"\u3000a.flac"_s, false, true, false},
                            Case{u"a.flac "_s, false, false, false}, Case{u"a *b.flac"_s, false, true, true},
                            Case{u"a: b.flac"_s, true, true, false}, Case{u";a.flac"_s, true, true, false},
                            Case{u"a  [shntool]  b.flac"_s, true, false, true}}) {
        EXPECT_EQ(isReadBack(ListKind::Md5, one.name), one.md5) << qPrintable(one.name);
        EXPECT_EQ(isReadBack(ListKind::St5, one.name), one.st5) << qPrintable(one.name);
        EXPECT_EQ(isReadBack(ListKind::Ffp, one.name), one.ffp) << qPrintable(one.name);
    }
}

/// Names of files of all kinds, in lists of this program and of others.
class NamesInListsTest : public test::VerifyListFixture {
protected:
    NamesInListsTest() { tools.addAllReal(); }

    /// Those that a list of this program gives back.
    [[nodiscard]] static QStringList plainNames()
    {
        return {u"a b  c"_s, u"*star*"_s, u"it's \"it\""_s, u"a\\b\\n"_s, u"100% %1 %s"_s, u"Re\u0301 mineur"_s,
                u"R\u00e9 mineur"_s, u"音楽"_s, u"-x"_s, u"#1"_s, u"\\"_s, u"$(x) `y` & z"_s, u"\x1b[31mred"_s};
    }
    [[nodiscard]] static QStringList oddNames() { return {u"  leading"_s, u"a *b"_s, u"c: d"_s, u";e"_s}; }

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
    std::shared_ptr<CreateST5Task> createSt5(const QStringList &names, const QString &list)
    {
        auto job = std::make_shared<CreateST5Task>(list, &queue, programPath(shntool::program().name),
                                                   shntool::hashListArguments(names));
        job->setDirectory(folder.path());
        run(job);
        return job;
    }
    static std::vector<State> allOk(qsizetype count) { return std::vector<State>(static_cast<std::size_t>(count), State::Ok); }

    test::ProgramFolder tools;
};

TEST_F(NamesInListsTest, OfMd5ComeBackToUsAndToMd5sum)
{
    QStringList files;
    for (const QString &name : plainNames())
        files.append(folder.write(name, name.toUtf8()));
    const auto made = std::make_shared<CreateMD5Task>(&queue, files, folder.path(u"l.md5"_s));
    run(made);
    EXPECT_EQ(made->warnings(), QStringList());
    const auto checked = verify<VerifyMD5Task>(folder.path(u"l.md5"_s));
    EXPECT_EQ(statesOf(*checked), allOk(files.size())) << qPrintable(report);
    EXPECT_EQ(statesOf(*verifyAny<VerifyMD5Task>(folder.path(u"l.md5"_s))), allOk(files.size())) << qPrintable(report);
    // Behind the header, every line is one of md5sum's, and strictly so.
    const auto result = test::runProgram(
        u"bash"_s, {u"-c"_s, u"cd \"$1\" && tail -n +3 l.md5 | md5sum -c --strict --quiet"_s, u"-"_s, folder.path()});
    EXPECT_EQ(result.exitStatus, 0) << result.output.constData() << result.errors.constData();
}

TEST_F(NamesInListsTest, OfMd5ThatDoNotComeBackAreListedAndTold)
{
    QStringList files;
    for (const QString &name : oddNames().first(2) + QStringList{u"trailing "_s})
        files.append(folder.write(name, "abc"));
    const auto made = std::make_shared<CreateMD5Task>(&queue, files, folder.path(u"l.md5"_s));
    run(made);
    QStringList warnings;
    for (const QString &file : files)
        warnings.append(file + u" has a name that its list gives back only to 'Understand lists of other programs'"_s);
    EXPECT_EQ(made->warnings(), warnings);
    EXPECT_EQ(outputWindows, QStringList{warnings.join(u'\n') + u"\n\n"_s});
    EXPECT_TRUE(folder.read(u"l.md5"_s).endsWith("72 *  leading\n900150983cd24fb0d6963f7d28e17f72 *a *b\n"
                                                 "900150983cd24fb0d6963f7d28e17f72 *trailing \n"));
    verify<VerifyMD5Task>(folder.path(u"l.md5"_s));
    EXPECT_TRUE(report.contains(u"3 of 3 files are missing\ntry "_s)) << qPrintable(report);
    EXPECT_EQ(statesOf(*verifyAny<VerifyMD5Task>(folder.path(u"l.md5"_s))), allOk(3)) << qPrintable(report);
}

TEST_F(NamesInListsTest, OfMd5sumAreUnderstoodWithAllThatItEscapes)
{
    const QStringList names = plainNames() + oddNames() + QStringList{u"trailing "_s, u"b\nc"_s, u"d\\ne\nf"_s, u"g\rh"_s};
    for (const QString &name : names)
        folder.write(u"in/"_s + name, name.toUtf8());
    for (const QString &option : {u"--text"_s, u"--binary"_s, u"--tag"_s}) {
        const auto made = test::runProgram(
            u"bash"_s, {u"-c"_s, u"cd \"$1\" && md5sum \"$2\" -- *"_s, u"-"_s, folder.path(u"in"_s), option});
        ASSERT_EQ(made.exitStatus, 0) << made.errors.constData();
        folder.write(u"in/l.md5"_s, made.output);
        EXPECT_EQ(statesOf(*verifyAny<VerifyMD5Task>(folder.path(u"in/l.md5"_s))), allOk(names.size()))
            << made.output.constData() << qPrintable(report);
        folder.remove(u"in/l.md5"_s);
    }
}

TEST_F(NamesInListsTest, OfSt5AndFfpComeBack)
{
    QStringList files;
    QStringList names;
    for (const QString &name : plainNames()) {
        names.append(name + u".flac"_s);
        files.append(test::writeFlac(folder.path(names.last()), {.seconds = 0.1}));
    }
    const auto st5 = createSt5(names, folder.path(u"l.st5"_s));
    EXPECT_FALSE(st5->error());
    EXPECT_EQ(st5->warnings(), QStringList());
    EXPECT_EQ(statesOf(*verify<VerifyST5Task>(folder.path(u"l.st5"_s))), allOk(names.size())) << qPrintable(report);
    const auto ffp = std::make_shared<CreateFFPTask>(&queue, QMap<QString, QStringList>{{folder.path(), files}}, u"l.ffp"_s);
    run(ffp);
    EXPECT_EQ(ffp->warnings(), QStringList());
    EXPECT_EQ(statesOf(*verify<VerifyFFPTask>(folder.path(u"l.ffp"_s))), allOk(names.size())) << qPrintable(report);
}

TEST_F(NamesInListsTest, OfSt5AndFfpThatDoNotComeBackAreToldAndUnderstoodAsThoseOfOthers)
{
    QStringList files;
    QStringList names;
    for (const QString &name : oddNames() + QStringList{u"x  [shntool]  y"_s}) {
        names.append(name + u".flac"_s);
        files.append(test::writeFlac(folder.path(names.last()), {.seconds = 0.1}));
    }
    const auto st5 = createSt5(names, folder.path(u"l.st5"_s));
    EXPECT_FALSE(st5->error());
    EXPECT_EQ(st5->warnings(), QStringList{checksumList::misreadText(names.last())});
    EXPECT_EQ(outputWindows.value(0), checksumList::misreadText(names.last()) + u"\n\n"_s);
    EXPECT_EQ(statesOf(*verifyAny<VerifyST5Task>(folder.path(u"l.st5"_s))), allOk(names.size())) << qPrintable(report);
    const auto ffp = std::make_shared<CreateFFPTask>(&queue, QMap<QString, QStringList>{{folder.path(), files}}, u"l.ffp"_s);
    run(ffp);
    EXPECT_EQ(ffp->warnings(), (QStringList{checksumList::misreadText(files[0]), checksumList::misreadText(files[2]),
                                            checksumList::misreadText(files[3])}));
    EXPECT_EQ(statesOf(*verifyAny<VerifyFFPTask>(folder.path(u"l.ffp"_s))), allOk(names.size())) << qPrintable(report);
}

TEST_F(NamesInListsTest, InEitherFormOfUnicodeAreOtherNames)
{
    folder.write(u"Re\u0301.wav"_s, "abc");
    const QByteArray digest = "900150983cd24fb0d6963f7d28e17f72";
    const QString list = folder.write(u"l.md5"_s, digest + " *" + u"R\u00e9.wav\n"_s.toUtf8());
    EXPECT_EQ(statesOf(*verify<VerifyMD5Task>(list)), std::vector{State::Missing});
    EXPECT_EQ(statesOf(*verifyAny<VerifyMD5Task>(list)), std::vector{State::Ok});
}

TEST_F(NamesInListsTest, AndDigestsOf24BitsAreThoseOfShntoolAndMetaflac)
{
    // The distribution's shntool reads plain headers only: of a FLAC of the same sound it would see another one.
    const test::SoundShape shape{.bits = 24, .seconds = 0.5};
    test::writeWav(folder.path(u"a.wav"_s), shape);
    const QString flac = test::writeFlac(folder.path(u"b.flac"_s), shape);
    const auto reference =
        test::runProgram(u"bash"_s, {u"-c"_s, u"cd \"$1\" && exec /usr/bin/shntool hash -m a.wav"_s, u"-"_s, folder.path()});
    ASSERT_EQ(reference.exitStatus, 0) << reference.errors.constData();
    const QByteArray digest = reference.output.first(32);
    createSt5({u"a.wav"_s, u"b.flac"_s}, folder.path(u"l.st5"_s));
    EXPECT_TRUE(folder.read(u"l.st5"_s).endsWith("\n" + reference.output + digest + "  [shntool]  b.flac\n"))
        << folder.read(u"l.st5"_s).constData();
    // The signature is that of the samples as well.
    EXPECT_EQ(test::runProgram(u"metaflac"_s, {u"--show-md5sum"_s, flac}).output, digest + '\n');
    run(std::make_shared<CreateFFPTask>(&queue, QMap<QString, QStringList>{{folder.path(), {flac}}}, u"l.ffp"_s));
    EXPECT_TRUE(folder.read(u"l.ffp"_s).endsWith("\nb.flac:" + digest + '\n'));
    EXPECT_EQ(statesOf(*verify<VerifyST5Task>(folder.path(u"l.st5"_s))), allOk(2)) << qPrintable(report);
    EXPECT_EQ(statesOf(*verify<VerifyFFPTask>(folder.path(u"l.ffp"_s))), allOk(1)) << qPrintable(report);
}

} // namespace
} // namespace nurv
