// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/GivenFiles.h"

#include <QDir>
#include <QMimeData>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

TEST(GivenFiles, PartsNamesThatAreNoValidUtf8FromTheOthers)
{
    const GivenFiles files =
        filesOfUris({u"file:///music/R%C3%A9.flac"_s, u"file:///music/R%E9.flac"_s, u"file:///music/50%25%FF.flac"_s});
    EXPECT_EQ(files.paths, QStringList{u"/music/Ré.flac"_s});
    EXPECT_EQ(files.refused, (QStringList{u"/music/R\\xE9.flac"_s, u"/music/50%\\xFF.flac"_s}));
}

TEST(GivenFiles, KeepsEveryCharacterThatAUriGivesAMeaning)
{
    EXPECT_EQ(filesOfUris({u"file:///m/50%25%20off%20%231%3F%3B.flac"_s}).paths,
              QStringList{u"/m/50% off #1?;.flac"_s});
    EXPECT_EQ(filesOfUris({u"file:///m/%25E9.flac"_s}).paths, QStringList{u"/m/%E9.flac"_s});
}

TEST(GivenFiles, RefusesANameThatAZeroByteWouldCutOff)
{
    const GivenFiles files = filesOfUris({u"file:///etc%00.flac"_s});
    EXPECT_TRUE(files.paths.isEmpty());
    EXPECT_EQ(files.refused.size(), 1);
}

TEST(GivenFiles, TakesFilesOfThisMachineOnly)
{
    const GivenFiles files = filesOfUris({u"file://localhost/m/a.flac"_s, u"file://elsewhere.example/m/b.flac"_s,
                                         u"https://example.org/c.flac"_s, u"file:///m/album/"_s});
    EXPECT_EQ(files.paths, (QStringList{u"/m/a.flac"_s, u"/m/album"_s}));
    EXPECT_TRUE(files.refused.isEmpty());
}

TEST(GivenFiles, AnArgumentGoesThroughItsUriUnchanged)
{
    const QByteArray here = QDir::currentPath().toUtf8();
    for (const QByteArray &name : {QByteArray("/m/50% #1?.flac"), QByteArray("a/../R\xc3\xa9 & more.flac")}) {
        const GivenFiles files = filesOfUris({uriOfArgument(name)});
        ASSERT_EQ(files.paths.size(), 1) << name.constData();
        EXPECT_TRUE(files.paths.first().startsWith(u'/'));
        EXPECT_TRUE(files.paths.first().endsWith(QString::fromUtf8(name.mid(name.lastIndexOf('/')))));
    }
    EXPECT_EQ(uriOfArgument("R\xe9.flac"), u"file://"_s + QString::fromLatin1(here.toPercentEncoding("/")) + u"/R%E9.flac"_s);
    EXPECT_EQ(filesOfUris({uriOfArgument("/m/R\xe9.flac")}).refused, QStringList{u"/m/R\\xE9.flac"_s});
}

TEST(GivenFiles, ReadsTheBytesOfADrag)
{
    QMimeData data;
    data.setData(u"text/uri-list"_s, "file:///m/a.flac\r\nfile:///m/R%E9.flac\r\n");
    EXPECT_TRUE(hasLocalFiles(&data));
    const GivenFiles files = localFiles(&data);
    EXPECT_EQ(files.paths, QStringList{u"/m/a.flac"_s});
    EXPECT_EQ(files.refused, QStringList{u"/m/R\\xE9.flac"_s});
    data.setData(u"text/uri-list"_s, "https://example.org/a.flac\r\n");
    EXPECT_FALSE(hasLocalFiles(&data));
}

} // namespace nurv::test
