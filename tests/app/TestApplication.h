// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/BaseTab.h"
#include "app/NURVController.h"
#include "app/ScriptedPrompts.h"
#include "desktop/NullDesktopServices.h"
#include "settings/SettingsStore.h"
#include "toolbox/Toolbox.h"

#include <QString>
#include <QVariant>

#include <functional>
#include <map>
#include <memory>

namespace nurv::test {

/// Gives a setting another value for the time of one test.
class SettingForTest {
public:
    SettingForTest(const QString &key, const QVariant &value) : m_key(key)
    {
        SettingsStore::instance().setValue(key, value);
    }
    ~SettingForTest() { SettingsStore::instance().remove(m_key); }
    SettingForTest(const SettingForTest &) = delete;
    SettingForTest &operator=(const SettingForTest &) = delete;

private:
    QString m_key;
};

/// A tab that counts what it is told and lets a test ask its user.
class CountingTab final : public BaseTab {
public:
    CountingTab(NURVController &controller, const QString &label) : BaseTab(controller, label)
    {
        setRefusalMessageDelay(0);
    }

    int displayRequests = 0;
    int additions = 0;
    std::function<void()> whileExecuting;

    void displayRelevantOptions() override { ++displayRequests; }
    void executeCommand() override
    {
        if (whileExecuting)
            whileExecuting();
    }

    using BaseTab::chooseOutputFolder;
    using BaseTab::confirmDeletingOriginals;
    using BaseTab::openSavePanel;

protected:
    void filesAdded() override
    {
        ++additions;
        BaseTab::filesAdded();
    }
};

/// The application without its windows: a controller, a scripted user, and a tab
/// on every page that has one.
class TestApplication {
public:
    /// Without labels every tool has a tab.
    explicit TestApplication(const QStringList &labels = {})
    {
        for (const Tool &tool : toolbox()) {
            if (labels.isEmpty() || labels.contains(tool.label))
                m_tabs.emplace(tool.label, std::make_unique<CountingTab>(controller, tool.label));
        }
    }

    [[nodiscard]] CountingTab &tab(const QString &label) { return *m_tabs.at(label); }

    NullDesktopServices services;
    ScriptedPrompts prompts;
    NURVController controller{prompts, services, toolbox()};

private:
    std::map<QString, std::unique_ptr<CountingTab>> m_tabs;
};

} // namespace nurv::test
