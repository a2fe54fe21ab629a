// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/NURVController.h"
#include "app/ScriptedPrompts.h"
#include "base/NotificationCenter.h"
#include "convert/ConversionTask.h"
#include "convert/DecodeTab.h"
#include "convert/EncodeTab.h"
#include "desktop/NullDesktopServices.h"
#include "engine/NURVTaskQueue.h"
#include "engine/NURVTaskResults.h"
#include "settings/SettingsStore.h"
#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"
#include "support/WaitUntil.h"
#include "toolbox/Toolbox.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace nurv::test {

/// The application without its windows, with the settings as they are at first,
/// a folder for sources and one for outputs.
class ConvertFixture : public ::testing::Test {
protected:
    ConvertFixture() : m_settingsReset(resetSettings()), controller(prompts, services, toolbox())
    {
        QObject::connect(&controller.taskQueue(), &NURVTaskQueue::outputWindowRequested, &controller,
                         [this](const QString &text, const QString &) { outputWindows.append(text); });
        QObject::connect(&controller.taskQueue(), &NURVTaskQueue::taskEnded, &controller,
                         [this](const std::shared_ptr<NURVTask> &task) { endedTasks.push_back(task); });
    }

    [[nodiscard]] NURVTaskQueue &queue() const { return controller.taskQueue(); }
    /// Waits for the end of all jobs, the job that follows a batch included.
    [[nodiscard]] bool finish()
    {
        const auto isEmpty = [this] { return queue().taskCount() == 0; };
        if (!waitUntil(isEmpty, std::chrono::seconds(60)))
            return false;
        handleWaitingEvents();
        return waitUntil(isEmpty, std::chrono::seconds(60));
    }
    /// Puts the files on the list, presses the button, gives `out` when asked for a
    /// folder, and waits for the end.
    template<typename Tab>
    void run(Tab &tab, const QStringList &sources)
    {
        prompts.expectOutputFolder(out.path());
        tab.addMatchedFiles(sources);
        tab.executeCommand();
        EXPECT_TRUE(finish());
    }
    /// Presses the button of a tab whose outputs go beside the sources.
    template<typename Tab>
    void runBeside(Tab &tab, const QStringList &sources)
    {
        tab.addMatchedFiles(sources);
        tab.executeCommand();
        EXPECT_TRUE(finish());
    }
    /// The queued jobs that convert by one command, in the order added.
    [[nodiscard]] std::vector<std::shared_ptr<ConversionTask>> queuedConversions() const
    {
        std::vector<std::shared_ptr<ConversionTask>> tasks;
        for (const std::shared_ptr<NURVTask> &task : queue().panelArray()) {
            if (const auto conversion = std::dynamic_pointer_cast<ConversionTask>(task))
                tasks.push_back(conversion);
        }
        return tasks;
    }
    static void set(QStringView key, const QVariant &value)
    {
        SettingsStore::instance().setValue(key.toString(), value);
    }

    TestFolder folder;
    TestFolder out;

private:
    static bool resetSettings()
    {
        NURVController::registerDefaults(toolbox());
        for (const QStringView key :
             {u"maxThreads", u"encodeOutputFormat", u"encodeFlacLevel", u"encodeToSourceDirectory", u"flacVerifyButton",
              u"flacKeepForeignMetadataButton", u"flacGenerateFFPButton", u"warnOnDelete", u"trashOrDelete",
              u"checksumFileUsesOutputDirName", u"ffpExtension", u"decodeToSourceDirectory", u"proveBeforeDeleting",
              u"dropMetadata", u"keepFolders"})
            SettingsStore::instance().remove(key.toString());
        return true;
    }

    bool m_settingsReset;

protected:
    NullDesktopServices services;
    ScriptedPrompts prompts;
    NURVController controller;
    QStringList outputWindows;
    std::vector<std::shared_ptr<NURVTask>> endedTasks;
};

/// The same with a queue that starts nothing.
class HeldQueueFixture : public ConvertFixture {
protected:
    HeldQueueFixture() { queue().hold(); }
};

} // namespace nurv::test
