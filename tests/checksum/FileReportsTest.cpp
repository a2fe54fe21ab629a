// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/PathNames.h"
#include "app/ScriptedPrompts.h"
#include "checksum/ChecksumFixture.h"
#include "checksum/ChecksumTab.h"
#include "checksum/LosslessFiles.h"
#include "engine/NURVTaskResults.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

/// The reports of tests of good and bad files, by the real programs.
class FileReportsTest : public ::testing::Test {
protected:
    FileReportsTest()
    {
        NURVController::registerDefaults(toolbox());
        tools.addAllReal();
        tab.commandOptions.setSelectedIndex(ChecksumTab::VerifyLossless);
        QObject::connect(&controller.taskQueue(), &NURVTaskQueue::taskEnded, &controller,
                         [this](const std::shared_ptr<NURVTask> &task) { ended.push_back(task); });
        QObject::connect(&controller.taskQueue(), &NURVTaskQueue::outputWindowRequested, &controller,
                         [this](const QString &text, const QString &) { windows.append(text); });
    }

    /// Runs the tab over the file; returns the reports.
    QString verify(const QString &path)
    {
        ended.clear();
        windows.clear();
        tab.addMatchedFiles({path});
        tab.executeCommand();
        EXPECT_TRUE(tab.fileNames().isEmpty());
        EXPECT_TRUE(test::waitUntil([this] { return controller.taskQueue().taskCount() == 0; }));
        EXPECT_EQ(windows.size(), 1);
        const QString reports = ended.at(0)->results()->results();
        const bool isGood = !ended.at(0)->error();
        const QString head = isGood ? QString() : lastPathComponent(path) + u": not good\n\n"_s;
        EXPECT_EQ(windows.value(0), head + reports + (isGood ? u"1 of 1 file good\n"_s : u"0 of 1 file good\n"_s));
        return withoutTime(reports);
    }

    void makeProgramsWriteAtOnce()
    {
        for (const auto &call : calls())
            test::makeWriteAtOnce(tools, call.first);
    }

    /// What the program itself says of the file, run by hand.
    [[nodiscard]] QString saidOf(const QString &format, const QString &path) const
    {
        const auto [program, arguments] = calls().value(format);
        return withoutTime(test::saidByHand(tools, program, QStringList(arguments).replaceInStrings(u"@"_s, path)));
    }

    /// Program and arguments of the test of each format; "@" is the file.
    [[nodiscard]] static QHash<QString, std::pair<QString, QStringList>> calls()
    {
        return {{u"flac"_s, {u"flac"_s, {u"-t"_s, u"@"_s}}},
                {u"ape"_s, {u"mac"_s, {u"@"_s, u"-v"_s}}},
                {u"wv"_s, {u"wvunpack"_s, {u"-v"_s, u"@"_s}}},
                {u"tta"_s, {u"ttaenc"_s, {u"-t"_s, u"@"_s}}}};
    }

    /// How long a program took, and how often it told how far it was, depends on the machine.
    [[nodiscard]] static QString withoutTime(QString text)
    {
        static const QRegularExpression kSeconds(u" in \\d+\\.\\d+ secs"_s);
        static const QRegularExpression kProgress(u"(Progress: [\\d.]+% \\([^)]*\\) +\\r)+"_s);
        return text.replace(kSeconds, u" in N secs"_s).replace(kProgress, u"Progress: N%\r"_s);
    }

    test::TestFolder folder;
    test::ProgramFolder tools;
    test::ScriptedPrompts prompts;
    NullDesktopServices services;
    NURVController controller{prompts, services, toolbox()};
    ChecksumTab tab{controller};
    std::vector<std::shared_ptr<NURVTask>> ended;
    QStringList windows;
};

TEST_F(FileReportsTest, AreThoseOfGoodFiles)
{
    makeProgramsWriteAtOnce();
    const QHash<QString, QString> reports{
        {u"flac"_s, u"a.flac: testing, 100% complete\na.flac: ok\n"_s},
        {u"ape"_s, u"a.ape\nProgress: N%\r\nSuccess...\n\n"_s},
        {u"tta"_s, u" 100% done...\n%1: OK\n"_s.arg(folder.path(u"a.tta"_s))},
    };
    for (const QString &format : {u"flac"_s, u"ape"_s, u"wv"_s, u"tta"_s}) {
        const QString path = test::writeLossless(folder, tools, u"a"_s, format);
        const QString report = verify(path);
        EXPECT_EQ(report, (format == u"wv" ? saidOf(format, path) : reports[format]) + u'\n') << qPrintable(format);
        EXPECT_FALSE(ended.at(0)->error()) << qPrintable(format);
    }
    // But for the version of the program and the time that it took.
    EXPECT_TRUE(verify(folder.path(u"a.wv"_s)).contains(u"a.wv in N secs (lossless, "_s)) << qPrintable(windows.value(0));
}

TEST_F(FileReportsTest, OfDamagedCutMissingAndMisnamedFilesAreTheWordsOfTheirPrograms)
{
    makeProgramsWriteAtOnce();
    // "@" is the path, "{said}" what the program says when it is run by hand; versions of flac and WavPack differ in words.
    struct Case {
        QString fault;
        QString format;
        QString report;
        QString said; ///< which must hold this
    };
    const QString flacReport = u"\na.flac: {said, trimmed}\n"_s;
    const std::vector<Case> cases{
        {u"damaged"_s, u"flac"_s, flacReport, u"a.flac: ERROR while decoding data\n"_s},
        {u"damaged"_s, u"ape"_s,
         u"a.ape\nProgress: N%\r\n"
         "mac: @: frame 1 of 1: its coded samples are damaged\nError: 1010\n\n"_s, {}},
        {u"damaged"_s, u"wv"_s, u"{said}"_s, u"missing data or crc errors detected in 1 block(s)!"_s},
        {u"damaged"_s, u"tta"_s, u" 100% done...\n@: frame 1 of 1 (at 0.00 s) is damaged: its CRC does not match\n"_s, {}},
        {u"cut"_s, u"flac"_s, flacReport, u"a.flac: ERROR "_s},
        {u"cut"_s, u"ape"_s, u"mac: @: the file ends too early\nError: 1000\n\n"_s, {}},
        {u"cut"_s, u"wv"_s, u"{said}"_s, u"file is missing "_s},
        {u"cut"_s, u"tta"_s, u" 100% done...\n@: frame 1 of 1 (at 0.00 s) is missing: the file is truncated\n"_s, {}},
        {u"missing"_s, u"flac"_s, flacReport, u"input file"_s},
        {u"missing"_s, u"ape"_s, u"mac: cannot read @: No such file or directory\nError: 1000\n\n"_s, {}},
        {u"missing"_s, u"wv"_s, u"{said}"_s, u"can't open file"_s},
        {u"missing"_s, u"tta"_s, u"ttaenc: cannot read @: No such file or directory\n"_s, {}},
        {u"misnamed"_s, u"flac"_s, flacReport, u"The input file is either not a FLAC file or is corrupted."_s},
        {u"misnamed"_s, u"ape"_s, u"mac: @: this is no Monkey's Audio file\nError: 1002\n\n"_s, {}},
        {u"misnamed"_s, u"wv"_s, u"{said}"_s, u" WavPack file "_s},
        {u"misnamed"_s, u"tta"_s, u"ttaenc: @: not a TTA1 file\n"_s, {}},
    };
    for (const Case &one : cases) {
        const QString name = u"a."_s + one.format;
        const QString path = folder.path(name);
        if (one.fault == u"misnamed")
            test::writeWav(path);
        else
            test::writeLossless(folder, tools, u"a"_s, one.format);
        if (one.fault == u"damaged")
            test::flipABit(folder, name);
        else if (one.fault == u"cut")
            test::truncate(folder, name);
        else if (one.fault == u"missing")
            folder.remove(name);
        const QString said = saidOf(one.format, path);
        EXPECT_TRUE(said.contains(one.said)) << qPrintable(said);
        QString expected = QString(one.report).replace(u"{said, trimmed}"_s, said.trimmed());
        expected.replace(u"{said}"_s, said).replace(u'@', path);
        EXPECT_EQ(verify(path), expected + u'\n') << qPrintable(one.fault) << ' ' << qPrintable(one.format);
        EXPECT_TRUE(ended.at(0)->error()) << qPrintable(one.fault) << ' ' << qPrintable(one.format);
    }
}

TEST_F(FileReportsTest, NameAFileAsItIsCalledNow)
{
    makeProgramsWriteAtOnce();
    const QString renamed = folder.path(u"01: 100% [take *].flac"_s);
    ASSERT_TRUE(QFile::rename(test::writeLossless(folder, tools, u"a"_s, u"flac"_s), renamed));
    // flac's words hold the name, and with it the sign that figures are known by: they come with no figure, and as they are.
    const QString report = verify(renamed);
    EXPECT_TRUE(report.endsWith(u"01: 100% [take *].flac: testing, 100% complete\n01: 100% [take *].flac: ok\n\n"_s))
        << qPrintable(report);
    EXPECT_FALSE(ended.at(0)->error());
    const QString tta = folder.path(u"ré mineur.tta"_s);
    ASSERT_TRUE(QFile::rename(test::writeLossless(folder, tools, u"a"_s, u"tta"_s), tta));
    EXPECT_EQ(verify(tta), u" 100% done...\n%1: OK\n\n"_s.arg(tta));
}

TEST_F(FileReportsTest, HoldAllThatTheProgramsWroteHoweverItWasCut)
{
    const auto withoutBackspaces = [](QString text) { return text.remove(u'\b'); };
    for (const QString &format : {u"wv"_s, u"tta"_s}) {
        const QString path = test::writeLossless(folder, tools, u"a"_s, format, {.seconds = 3.0});
        EXPECT_EQ(withoutBackspaces(verify(path)), withoutBackspaces(saidOf(format, path)) + u'\n') << qPrintable(format);
        test::flipABit(folder, u"a."_s + format);
        EXPECT_EQ(withoutBackspaces(verify(path)), withoutBackspaces(saidOf(format, path)) + u'\n') << qPrintable(format);
    }
}

TEST_F(FileReportsTest, BeginWithTheLastFigureBeforeTheErrorsOfFlac)
{
    tools.remove(u"flac"_s);
    tools.addFake(u"flac"_s, "out=\\nflac 1.4.2\\n\\n;until-read;out=a.flac: testing, 12% complete;until-read;"
                             "out=\\b\\b\\b\\b\\b\\b\\b\\b\\b\\b\\b\\b\\b\\b\\b\\b\\b\\b\\b\\b\\b\\b\\btesting, 37% complete;until-read;"
                             "out=\\na.flac: *** Got error code 2:FLAC__STREAM_DECODER_ERROR_STATUS_FRAME_CRC_MISMATCH\\n;until-read;"
                             "out=\\n\\na.flac: ERROR while decoding data\\n        state = FLAC__STREAM_DECODER_ABORTED\\n;exit=1");
    EXPECT_EQ(verify(folder.write(u"a.flac"_s, "x")),
              u"a.flac: testing, 37.000000% complete\n"
              "a.flac: a.flac: *** Got error code 2:FLAC__STREAM_DECODER_ERROR_STATUS_FRAME_CRC_MISMATCH\n"
              "a.flac: a.flac: ERROR while decoding data\n        state = FLAC__STREAM_DECODER_ABORTED\n\n");
    EXPECT_TRUE(ended.at(0)->error());
}

TEST_F(FileReportsTest, ThereAreNoneOfShortenWhichNoProgramTests)
{
    // A Shorten file has no check sums: all that can be done is to decode it, which is what an ST5 list is for.
    tab.addMatchedFiles({test::writeLossless(folder, tools, u"a"_s, u"shn"_s)});
    tab.executeCommand();
    EXPECT_EQ(controller.taskQueue().panelArray().size(), 0U);
    EXPECT_TRUE(tab.fileNames().isEmpty());
    EXPECT_TRUE(windows.isEmpty());
}

} // namespace
} // namespace nurv
