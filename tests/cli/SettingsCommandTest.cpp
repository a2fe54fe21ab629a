// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "support/TestFolder.h"

#include <QFile>
#include <QJsonArray>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

/// A settings file of its own for each case.
class SettingsCommandTest : public ::testing::Test {
protected:
    SettingsCommandTest()
    {
        qputenv("NURV_SETTINGS", QFile::encodeName(file));
    }
    ~SettingsCommandTest() override
    {
        if (before.isNull())
            qunsetenv("NURV_SETTINGS");
        else
            qputenv("NURV_SETTINGS", before);
    }
    [[nodiscard]] static ProgramResult settings(const QStringList &words) { return runNurv(QStringList{u"settings"_s} + words); }
    /// What is printed of the key, without the line end.
    [[nodiscard]] static QString valueOf(const QString &key)
    {
        const ProgramResult result = settings({key});
        EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
        return QString::fromUtf8(result.output).chopped(1);
    }
    [[nodiscard]] QByteArray stored() const
    {
        QFile contents(file);
        return contents.open(QIODevice::ReadOnly) ? contents.readAll() : QByteArray();
    }
    static void expectRefused(const QStringList &words, const QByteArray &sentence)
    {
        const ProgramResult result = settings(words);
        EXPECT_EQ(result.exitStatus, 2) << qPrintable(words.join(u' '));
        EXPECT_EQ(result.errors.split('\n').first(), "nurv settings: " + sentence);
        EXPECT_TRUE(result.output.isEmpty()) << result.output.constData();
    }

    TestFolder folder;
    QString file = folder.path(u"workbench.ini"_s);
    QByteArray before = qgetenv("NURV_SETTINGS");
};

} // namespace

TEST_F(SettingsCommandTest, ListsEachSettingWithItsValueItsDefaultAndItsMeaning)
{
    ASSERT_EQ(settings({u"maxThreads"_s, u"7"_s}).exitStatus, 0);
    const ProgramResult result = settings({});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_TRUE(result.output.startsWith("maxThreads = 7 (default: 2)\n    How many jobs run at once (1 to 256)\n"))
        << result.output.constData();
    EXPECT_TRUE(result.output.contains("\nencodeOutputFormat = flac (default)\n    Encode: the output format (shn, wv, flac, tta, ape or m4a)\n"));
    EXPECT_TRUE(result.output.contains("\nshntoolNamesFormat = \"%number. %name %time\" (default)\n"));
    EXPECT_TRUE(result.output.contains("\nwarnOnDelete = on (default)\n"));
    for (const char *key : {"fixOutputFormat", "fixFlacLevel", "shntoolCommandOption", "shntoolLenOption", "shntoolOutputFormat",
                            "lossySliderLevel", "lossyStepperLevel", "lossyComboLevel", "opusFrameSizeIndex",
                            "SUScheduledCheckInterval", "trashOrDelete", "ffpExtension", "flacVerifyButton",
                            "flacKeepForeignMetadataButton", "flacGenerateFFPButton", "warnOnFilesSkipped",
                            "checksumFileUsesOutputDirName", "encodeToSourceDirectory", "decodeToSourceDirectory",
                            "encodeLossyToSourceDirectory", "incomingSurroundOrder", "encodeFlacLevel"})
        EXPECT_TRUE(result.output.contains("\n" + QByteArray(key) + " = ")) << key;
}

TEST_F(SettingsCommandTest, PrintsOneValueAloneForScripts)
{
    EXPECT_EQ(settings({u"maxThreads"_s}).output, "2\n");
    EXPECT_EQ(settings({u"ffpExtension"_s}).output, "ffp.txt\n");
    EXPECT_EQ(settings({u"incomingSurroundOrder"_s}).output, "standard\n");
    EXPECT_EQ(settings({u"opusFrameSizeIndex"_s}).output, "20ms\n");
    EXPECT_TRUE(stored().isEmpty()) << "looking stores nothing";
}

TEST_F(SettingsCommandTest, StoresNumbersWordsSwitchesAndTexts)
{
    const QList<QStringList> cases{{u"maxThreads"_s, u"256"_s, u"256"_s},
                                   {u"encodeOutputFormat"_s, u"M4A"_s, u"m4a"_s},
                                   {u"encodeOutputFormat"_s, u"0"_s, u"shn"_s},
                                   {u"trashOrDelete"_s, u"trash"_s, u"trash"_s},
                                   {u"warnOnDelete"_s, u"off"_s, u"off"_s},
                                   {u"flacVerifyButton"_s, u"yes"_s, u"on"_s},
                                   {u"ffpExtension"_s, u"ffp"_s, u"ffp"_s},
                                   {u"shntoolNamesFormat"_s, u"%name, (%time)"_s, u"%name, (%time)"_s},
                                   {u"incomingSurroundOrder"_s, u"film"_s, u"film"_s},
                                   {u"incomingSurroundOrder"_s, u"L R LS RS C LFE (DTS)"_s, u"dts"_s}};
    for (const QStringList &words : cases) {
        const ProgramResult result = settings({words[0], words[1]});
        EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
        EXPECT_TRUE(result.output.isEmpty());
        EXPECT_EQ(valueOf(words[0]), words[2]) << qPrintable(words[0]);
    }
    // As the window stores them.
    EXPECT_TRUE(stored().contains("\nencodeOutputFormat=0\n")) << stored().constData();
    EXPECT_TRUE(stored().contains("\nwarnOnDelete=false\n")) << stored().constData();
    EXPECT_TRUE(stored().contains("\nflacVerifyButton=1\n")) << stored().constData();
    EXPECT_TRUE(stored().contains("\ntrashOrDelete=1\n")) << stored().constData();
}

TEST_F(SettingsCommandTest, ResetsOneSettingAndLeavesTheOthers)
{
    ASSERT_EQ(settings({u"maxThreads"_s, u"9"_s}).exitStatus, 0);
    ASSERT_EQ(settings({u"warnOnDelete"_s, u"off"_s}).exitStatus, 0);
    EXPECT_EQ(settings({u"--reset"_s, u"maxThreads"_s}).exitStatus, 0);
    EXPECT_EQ(valueOf(u"maxThreads"_s), u"2"_s);
    EXPECT_EQ(valueOf(u"warnOnDelete"_s), u"off"_s);
    EXPECT_FALSE(stored().contains("maxThreads"));
}

TEST_F(SettingsCommandTest, RefusesUnknownKeysWithASuggestion)
{
    expectRefused({u"maxThread"_s}, "there is no setting \"maxThread\" (did you mean maxThreads?).");
    expectRefused({u"MAXTHREADS"_s, u"4"_s}, "there is no setting \"MAXTHREADS\" (did you mean maxThreads?).");
    expectRefused({u"ffpExtention"_s, u"x"_s}, "there is no setting \"ffpExtention\" (did you mean ffpExtension?).");
    expectRefused({u"window/geometry"_s}, "there is no setting \"window/geometry\".");
    expectRefused({u"--reset"_s, u"nothing"_s}, "there is no setting \"nothing\".");
    expectRefused({QString()}, "there is no setting \"\".");
    EXPECT_TRUE(stored().isEmpty());
}

TEST_F(SettingsCommandTest, RefusesBadValuesAndKeepsTheOldOnes)
{
    expectRefused({u"maxThreads"_s, u"0"_s}, "maxThreads takes a whole number from 1 to 256, not \"0\".");
    expectRefused({u"maxThreads"_s, u"257"_s}, "maxThreads takes a whole number from 1 to 256, not \"257\".");
    expectRefused({u"maxThreads"_s, u"99999999999"_s}, "maxThreads takes a whole number from 1 to 256, not \"99999999999\".");
    expectRefused({u"maxThreads"_s, u"4 jobs"_s}, "maxThreads takes a whole number from 1 to 256, not \"4 jobs\".");
    expectRefused({u"maxThreads"_s, u"2.5"_s}, "maxThreads takes a whole number from 1 to 256, not \"2.5\".");
    expectRefused({u"warnOnDelete"_s, u"maybe"_s}, "warnOnDelete takes on or off, not \"maybe\".");
    expectRefused({u"trashOrDelete"_s, u"trsh"_s}, "trashOrDelete takes delete or trash, not \"trsh\" (did you mean trash?).");
    expectRefused({u"encodeOutputFormat"_s, u"6"_s},
                  "encodeOutputFormat takes shn, wv, flac, tta, ape or m4a, not \"6\".");
    expectRefused({u"ffpExtension"_s, QString()}, "ffpExtension must not be empty.");
    expectRefused({u"ffpExtension"_s, u"../x"_s},
                  "ffpExtension must not contain \"/\": it is the end of a name, not a path.");
    expectRefused({u"shntoolNamesFormat"_s, QString()}, "shntoolNamesFormat must not be empty.");
    expectRefused({u"shntoolNamesFormat"_s, u"a\nb"_s}, "shntoolNamesFormat must be one line.");
    EXPECT_TRUE(stored().isEmpty());
}

TEST_F(SettingsCommandTest, RefusesWordsTooManyOrTooFew)
{
    expectRefused({u"shntoolNamesFormat"_s, u"%number"_s, u"%name"_s},
                  "one KEY and one VALUE are taken; put a VALUE with blanks in quotes.");
    expectRefused({u"--reset"_s}, "--reset needs a KEY.");
    expectRefused({u"--reset"_s, u"maxThreads"_s, u"2"_s}, "--reset takes one KEY and no VALUE.");
}

TEST_F(SettingsCommandTest, TakesAValueThatLooksLikeAnOptionBehindTwoDashes)
{
    EXPECT_EQ(settings({u"--"_s, u"shntoolNamesFormat"_s, u"--%name"_s}).exitStatus, 0);
    EXPECT_EQ(valueOf(u"shntoolNamesFormat"_s), u"--%name"_s);
}

TEST_F(SettingsCommandTest, GivesAJsonObjectPerSettingAndOneForTheWhole)
{
    const ProgramResult result = settings({u"--json"_s});
    QList<QJsonObject> objects = jsonLines(result.output);
    const QJsonObject whole = objects.takeLast();
    EXPECT_EQ(whole[u"type"_s], u"settings"_s);
    EXPECT_EQ(whole[u"file"_s], file);
    EXPECT_EQ(whole[u"exitStatus"_s], 0);
    for (const QJsonObject &object : objects) {
        EXPECT_EQ(object[u"type"_s], u"setting"_s);
        EXPECT_EQ(object[u"value"_s], object[u"default"_s]) << qPrintable(object[u"key"_s].toString());
        EXPECT_TRUE(object[u"isDefault"_s].toBool());
        EXPECT_FALSE(object[u"meaning"_s].toString().isEmpty());
    }
    const QJsonObject jobs = objects.first();
    EXPECT_EQ(jobs[u"key"_s], u"maxThreads"_s);
    EXPECT_EQ(jobs[u"kind"_s], u"number"_s);
    EXPECT_EQ(jobs[u"value"_s], 2);
    EXPECT_EQ(jobs[u"least"_s], 1);
    EXPECT_EQ(jobs[u"most"_s], 256);
    const QList<QJsonObject> stored = jsonLines(settings({u"--json"_s, u"trashOrDelete"_s, u"trash"_s}).output);
    ASSERT_EQ(stored.size(), 2);
    EXPECT_EQ(stored[0][u"value"_s], u"trash"_s);
    EXPECT_EQ(stored[0][u"choices"_s].toArray(), (QJsonArray{u"delete"_s, u"trash"_s}));
    EXPECT_FALSE(stored[0][u"isDefault"_s].toBool());
}

TEST_F(SettingsCommandTest, EndsWithStatus1WhenNothingCanBeStored)
{
    // A folder stands where the file should be.
    qputenv("NURV_SETTINGS", QFile::encodeName(folder.path(QString())));
    const ProgramResult result = settings({u"maxThreads"_s, u"3"_s});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_FALSE(result.errors.isEmpty());
}

TEST_F(SettingsCommandTest, ShowsTheTrashForAValueThatCannotBeRead)
{
    QFile contents(file);
    ASSERT_TRUE(contents.open(QIODevice::WriteOnly));
    contents.write("[General]\ntrashOrDelete=perhaps\n");
    contents.close();
    EXPECT_EQ(valueOf(u"trashOrDelete"_s), u"trash"_s);
}

TEST_F(SettingsCommandTest, ShowsNoControlCharactersOfAStoredText)
{
    QFile contents(file);
    ASSERT_TRUE(contents.open(QIODevice::WriteOnly));
    contents.write("[General]\nffpExtension=a\\x1b[31mb\n");
    contents.close();
    EXPECT_FALSE(settings({}).output.contains('\x1b'));
}

} // namespace nurv::test
