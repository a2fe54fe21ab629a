// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

using ::testing::HasSubstr;

constexpr const char *kOverSource = "output file would overwrite input file";
constexpr const char *kOverOutput = "output file would overwrite another output of this run: [";

/// Names of outputs that are those of sources, or twice the same.
class ShntoolOverwrite : public ::testing::Test {
protected:
    /// In the folder, with what is there replaced.
    [[nodiscard]] ProgramResult runHere(const QString &arguments, const QByteArray &input = {}) const
    {
        return runProgram(u"/bin/bash"_s,
                          {u"-c"_s, u"cd \"$1\" && exec \"$0\" %1"_s.arg(arguments), QString::fromLocal8Bit(NURV_SHNTOOL),
                           m_folder.path()},
                          input);
    }
    void makeWav(const QString &name, int frames, const QByteArray &chunksAfter = {}) const
    {
        m_folder.write(name, wavBytes({.frames = frames, .seed = static_cast<unsigned>(frames)}, {}, chunksAfter));
    }

    TestFolder m_folder;
};

/// All that lies in the folder, by name.
QMap<QString, QByteArray> snapshot(const TestFolder &folder)
{
    QMap<QString, QByteArray> found;
    for (const QString &name : folder.list())
        found.insert(name, folder.read(name));
    return found;
}

TEST_F(ShntoolOverwrite, NeverWritesOverASourceOfAnotherFile)
{
    const QByteArray chunk("LIST\4\0\0\0text", 12);
    makeWav(u"a.wav"_s, 1000, chunk);
    for (const char *name : {"a-stripped", "a-padded", "a-trimmed", "split-track02", "joined", "other"})
        makeWav(QString::fromUtf8(name) + u".wav"_s, 1001, chunk);
    QByteArray framed = wavBytes({.frames = 1000});
    framed.replace(44, 400, QByteArray(400, '\0'));
    m_folder.write(u"silent.wav"_s, framed);
    makeWav(u"silent-trimmed.wav"_s, 1002);
    makeWav(u"a-fixed.wav"_s, 1003);
    writeFlac(m_folder.path(u"r.flac"_s), {.frames = 1000, .seed = 9});
    makeWav(u"r.wav"_s, 1004);
    QFile::copy(m_folder.path(u"r.flac"_s), m_folder.path(u"h.flac"_s));
    ASSERT_EQ(::link(QFile::encodeName(m_folder.path(u"r.wav"_s)).constData(),
                     QFile::encodeName(m_folder.path(u"h.wav"_s)).constData()),
              0);
    ASSERT_EQ(::symlink("r.wav", QFile::encodeName(m_folder.path(u"link.wav"_s)).constData()), 0);
    m_folder.write(u"list"_s, "r.flac\nr.wav\n");
    m_folder.write(u"points.wav"_s, "100\n");
    const auto before = snapshot(m_folder);
    for (const char *arguments :
         {"conv -O always r.flac r.wav", "conv -O always r.flac h.wav", "conv -O always h.flac r.wav",
          "conv -O always r.flac link.wav", "conv -O always ./r.flac ./r.wav", "conv -O always -F list",
          "conv -O always < list", "conv -O always r.flac < r.wav", "strip -O always a.wav a-stripped.wav",
          "pad -O always a.wav a-padded.wav", "trim -O always silent.wav silent-trimmed.wav",
          "fix -k -O always a.wav a-fixed.wav", "join -O always a.wav joined.wav",
          "split -O always -l 0:00.01 split-track02.wav", "split -O always -f points.wav -n '' -a points a.wav",
          "conv -t -n other.wav -O always < other.wav", "conv -O always -d . -n r.wav r.flac < link.wav"}) {
        const ProgramResult result = runHere(QString::fromUtf8(arguments));
        EXPECT_EQ(result.exitStatus, 1) << arguments;
        EXPECT_THAT(result.errors.toStdString(), HasSubstr(kOverSource)) << arguments;
        const auto after = snapshot(m_folder);
        for (auto it = before.begin(); it != before.end(); ++it)
            EXPECT_TRUE(after.value(it.key()) == it.value()) << arguments << " changed " << qPrintable(it.key());
        for (const QString &name : after.keys()) {
            if (!before.contains(name))
                m_folder.remove(name);
        }
    }
}

TEST_F(ShntoolOverwrite, ReadsNamesAheadThatComeThroughAPipe)
{
    writeFlac(m_folder.path(u"r.flac"_s), {.frames = 1000, .seed = 9});
    makeWav(u"r.wav"_s, 1004);
    const QByteArray former = m_folder.read(u"r.wav"_s);
    const ProgramResult result = runHere(u"conv -O always"_s, "r.flac\nr.wav\n");
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), HasSubstr(kOverSource));
    EXPECT_TRUE(m_folder.read(u"r.wav"_s) == former);
}

TEST_F(ShntoolOverwrite, MakesOnlyOneOutputOfAName)
{
    m_folder.makeFolder(u"a"_s);
    m_folder.makeFolder(u"b"_s);
    makeWav(u"a/x.wav"_s, 1000);
    makeWav(u"b/x.wav"_s, 1001);
    const ProgramResult result = runHere(u"conv -O always -d . -o flac a/x.wav b/x.wav"_s);
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), HasSubstr(std::string(kOverOutput) + "x.flac]"));
    EXPECT_TRUE(sameSound(m_folder.path(u"x.flac"_s), m_folder.path(u"a/x.wav"_s)));
    const ProgramResult byAnotherWay = runHere(u"conv -O always -d b/.././a -o flac a/x.wav a/../a/x.wav"_s);
    EXPECT_EQ(byAnotherWay.exitStatus, 1);
    EXPECT_THAT(byAnotherWay.errors.toStdString(), HasSubstr(kOverOutput));
}

TEST_F(ShntoolOverwrite, TakesTheNameOfAnOutputThatCameToNothing)
{
    m_folder.makeFolder(u"a"_s);
    m_folder.makeFolder(u"b"_s);
    QByteArray cut = wavBytes({.frames = 1000});
    cut.chop(100);
    m_folder.write(u"a/x.wav"_s, cut);
    makeWav(u"b/x.wav"_s, 1001);
    const ProgramResult result = runHere(u"conv -O always -d . -o flac a/x.wav b/x.wav"_s);
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), ::testing::Not(HasSubstr(kOverOutput)));
    EXPECT_TRUE(sameSound(m_folder.path(u"x.flac"_s), m_folder.path(u"b/x.wav"_s)));
}

TEST_F(ShntoolOverwrite, NamesNoPieceWhereTwoHaveOneName)
{
    makeWav(u"in.wav"_s, 3000);
    m_folder.makeFolder(u"a"_s);
    m_folder.makeFolder(u"b"_s);
    makeWav(u"a/x.wav"_s, 1000);
    makeWav(u"b/x.wav"_s, 1001);
    const auto empty = snapshot(m_folder);
    for (const bool hasFormer : {false, true}) {
        if (hasFormer) {
            m_folder.write(u"split-tracksame.wav"_s, "former");
            m_folder.write(u"x-fixed.wav"_s, "former");
        }
        const auto before = snapshot(m_folder);
        for (const char *arguments : {"split -O always -l 0:00.02 -n same in.wav", "fix -O always -k -d . a/x.wav b/x.wav",
                                      "split -O always -o flac -l 0:00.02 -n same in.wav"}) {
            const ProgramResult result = runHere(QString::fromUtf8(arguments));
            EXPECT_EQ(result.exitStatus, 1) << arguments;
            EXPECT_THAT(result.errors.toStdString(), HasSubstr(kOverOutput)) << arguments;
            EXPECT_TRUE(snapshot(m_folder) == before) << arguments;
        }
    }
}

TEST_F(ShntoolOverwrite, ReplacesFormerOutputsThatAreLinkedToEachOther)
{
    makeWav(u"in.wav"_s, 3000);
    const QString first = m_folder.write(u"split-track01.wav"_s, "former");
    ASSERT_EQ(::link(QFile::encodeName(first).constData(),
                     QFile::encodeName(m_folder.path(u"split-track02.wav"_s)).constData()),
              0);
    EXPECT_EQ(runHere(u"split -O always -l 0:00.03 in.wav"_s).exitStatus, 0);
    EXPECT_TRUE(m_folder.read(u"split-track01.wav"_s).startsWith("RIFF"));
    EXPECT_TRUE(m_folder.read(u"split-track02.wav"_s).startsWith("RIFF"));
}

} // namespace

} // namespace nurv::test
