// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/NURVController.h"
#include "desktop/NullDesktopServices.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskQueue.h"
#include "settings/SettingsStore.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"
#include "toolbox/Toolbox.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <memory>

namespace nurv::test {

/// A queue, a folder and the settings as they are at first.
struct ChecksumFixture : ::testing::Test {
    TestFolder folder;
    NullDesktopServices services;
    NURVTaskQueue queue{services};
    QStringList outputWindows;

    void SetUp() override
    {
        NURVController::registerDefaults(toolbox());
        for (const char16_t *key : {u"checksumFileUsesOutputDirName", u"ffpExtension"})
            SettingsStore::instance().remove(QString::fromUtf16(key));
        QObject::connect(&queue, &NURVTaskQueue::outputWindowRequested, &queue,
                         [this](const QString &text, const QString &) { outputWindows.append(text); });
    }
    [[nodiscard]] bool finish()
    {
        return waitUntil([this] { return queue.taskCount() == 0; });
    }
    void run(const std::shared_ptr<NURVTask> &task)
    {
        queue.addTask(task);
        EXPECT_TRUE(finish());
    }
};

} // namespace nurv::test
