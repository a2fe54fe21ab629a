// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TemporaryNames.h"

#include "app/PathNames.h"
#include "app/Util.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {

TEST(TemporaryNames, KnowsWhatIsBetweenStageds)
{
    const test::TestFolder folder;
    for (const QString &extension : {u"wav"_s, u"m4a"_s, u"a.b"_s}) {
        const QString path = Util::generateTempFileName(folder.path(), extension);
        EXPECT_EQ(temporaryKind(lastPathComponent(path)), TemporaryKind::Stage) << qPrintable(path);
    }
}

TEST(TemporaryNames, KnowsTheNamesOfPrograms)
{
    EXPECT_EQ(temporaryKind(u".nurv-ab12cd34ef56.part"), TemporaryKind::Part);
    EXPECT_EQ(temporaryKind(u".nurv-shntool-Xy12Zz"), TemporaryKind::PrivateFolder);
    EXPECT_EQ(temporaryKind(u".nurv-anything at all.kept"), TemporaryKind::Kept);
    EXPECT_EQ(temporaryKind(u"song.flac.tmp,fl-ac+en'c"), TemporaryKind::Scratch);
    EXPECT_EQ(temporaryKind(u"song.flac.metadata_edit"), TemporaryKind::Scratch);
}

TEST(TemporaryNames, LeavesNamesAloneThatUsersGive)
{
    for (const QStringView name : {u"Nurv-notes.wav",
                                   u".nurv-backup",
                                   u".nurv-shntool-Xy12Z",
                                   u".nurv-shntool-Xy12Zz9",
                                   u"Nurv-0123abcd-Ab12Cd34",
                                   u"Nurv-0123abcd-Ab12Cd34.",
                                   u"Nurv-0123ABCD-Ab12Cd34.wav",
                                   u"Nurv-0123abcd-Ab12Cd3.wav",
                                   u"Nurv-0123abcd-Ab12Cd345.wav",
                                   u"Nurv-0123abcd_Ab12Cd34.wav",
                                   u"My Nurv-0123abcd-Ab12Cd34.wav",
                                   u"Nurv-0123abcd-Ab12Cd3\u00E9.wav",
                                   u".nurv-ab12cd34ef5.part",
                                   u".nurv-ab12cd34ef567.part",
                                   u"nurv-ab12cd34ef56.part",
                                   u".nurv-",
                                   u".nurv-abcde",
                                   u".nurv-abc de",
                                   u".nurvrc",
                                   u"song.kept",
                                   u"song.part",
                                   u"song.flac",
                                   u"",
                                   u"."}) {
        EXPECT_EQ(temporaryKind(name), TemporaryKind::None) << qPrintable(name.toString());
    }
}

} // namespace nurv
