// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/SettingsTable.h"

#include "app/Tool.h"
#include "engine/NURVTaskQueue.h"

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// "delete" and "trash"; what cannot be read must not cost a file.
Setting wayOfOriginals()
{
    Setting setting = Setting::choice(u"trashOrDelete"_s, 0, {u"delete"_s, u"trash"_s},
                                      u"Where deleted originals and replaced files go: away for good, or to the trash"_s);
    setting.inDoubt = 1;
    return setting;
}

std::vector<Setting> sharedSettings()
{
    return {
        Setting::number(u"maxThreads"_s, 2, 1, NURVTaskQueue::kMostThreads, u"How many jobs run at once"_s),
        wayOfOriginals(),
        Setting::onOff(u"warnOnDelete"_s, true, u"Ask before jobs start that delete their originals"_s),
        Setting::onOff(u"proveBeforeDeleting"_s, 1,
                       u"Decode original and output again, and delete the original only when their sound is the same"_s),
        Setting::onOff(u"dropMetadata"_s, 0,
                       u"Delete originals even when the output lacks some of their tags, pictures or chunks"_s),
        Setting::onOff(u"keepFolders"_s, 0, u"Make the folders of the sources again below the output folder"_s),
        Setting::onOff(u"warnOnFilesSkipped"_s, true, u"Tell which added files a tool does not take"_s),
        Setting::number(u"SUScheduledCheckInterval"_s, 604800, 0, std::numeric_limits<int>::max(),
                        u"Seconds between searches for a newer version; not used where packages bring it"_s),
    };
}

} // namespace

std::vector<Setting> settingsTable(const std::vector<Tool> &tools)
{
    std::vector<Setting> settings = sharedSettings();
    for (const Tool &tool : tools)
        settings.insert(settings.end(), tool.settings.begin(), tool.settings.end());
    return settings;
}

const Setting *settingOf(const std::vector<Setting> &settings, const QString &key)
{
    const auto found =
        std::find_if(settings.begin(), settings.end(), [&key](const Setting &setting) { return setting.key == key; });
    return found == settings.end() ? nullptr : &*found;
}

} // namespace nurv
