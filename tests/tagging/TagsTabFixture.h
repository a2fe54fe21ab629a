// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/NURVController.h"
#include "app/ScriptedPrompts.h"
#include "app/TrackNameInputController.h"
#include "base/WorkerThreads.h"
#include "desktop/NullDesktopServices.h"
#include "settings/SettingsStore.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"
#include "support/WaitUntil.h"
#include "TagFixtures.h"
#include "tagging/TagFiles.h"
#include "tagging/TagsTab.h"
#include "tags/TagsProcess.h"
#include "toolbox/Toolbox.h"

#include <gtest/gtest.h>

namespace nurv::test {

using namespace Qt::StringLiterals;

/// A Tags tab with a scripted user; tags are read and written by processes of their own, as in the application.
class TagsTabFixture : public ::testing::Test {
protected:
    TagsTabFixture()
    {
        TagsProcess::setUp({.program = TagsProcess::installedProgram(), .most = 2});
        NURVController::registerDefaults(toolbox());
        tab.setRefusalMessageDelay(0);
        tab.previewButton.setOn(false);
    }
    ~TagsTabFixture() override
    {
        EXPECT_TRUE(waitUntil([] { return workerThreads::runningCount() == 0; }));
        SettingsStore::instance().remove(u"tagsPreview"_s);
        TagsProcess::takeDown();
    }
    /// Adds the files, which are selected then, and waits until they are read.
    void add(const QStringList &paths)
    {
        tab.addMatchedFiles(paths);
        tab.finishReading();
    }
    void select(const QList<int> &rows)
    {
        tab.setSelectedRows(rows);
        tab.finishReading();
    }
    /// A FLAC file with these fields, by metaflac.
    QString flac(const QString &name, const QStringList &fields = {})
    {
        const QString path = writeTaggableFlac(folder, name);
        for (const QString &field : fields)
            EXPECT_EQ(runProgram(u"metaflac"_s, {u"--set-tag="_s + field, path}).exitStatus, 0);
        return path;
    }
    QString m4a(const QString &name)
    {
        return writeByFfmpeg(folder.path(name), {.seconds = 0.5}, {u"-c:a"_s, u"alac"_s});
    }
    QString imageFile(const QString &name, const char *format = "png")
    {
        return folder.write(name, encodedPicture(picture(32, 16, Qt::red), format));
    }
    void expectNamesError()
    {
        prompts.expectAsk(
            {.title = u"Error"_s,
             .message = u"Number of selected files to tag is greater than number of track names entered"_s,
             .buttons = {u"OK"_s}},
            u"OK"_s);
    }
    static constexpr char16_t kArtQuestion[] =
        u"Nurv has detected an image file in the source directory. Would you like to use it for album art?";

    TestFolder folder;
    ScriptedPrompts prompts;
    NullDesktopServices services;
    NURVController controller{prompts, services, toolbox()};
    TagsTab tab{controller};
};

} // namespace nurv::test
