// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/NURVController.h"
#include "settings/SettingsStore.h"
#include "toolbox/Toolbox.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

struct IntegerSetting {
    const char *key;
    int value;
};

class SettingsRegistry : public ::testing::Test {
protected:
    SettingsRegistry() { NURVController::registerDefaults(toolbox()); }

    SettingsStore &store = SettingsStore::instance();
};

class IntegerSettings : public ::testing::TestWithParam<IntegerSetting> {
protected:
    IntegerSettings() { NURVController::registerDefaults(toolbox()); }
};

} // namespace

TEST_P(IntegerSettings, HaveTheirDefaultUntilAValueIsStored)
{
    SettingsStore &store = SettingsStore::instance();
    const QString key = QString::fromLatin1(GetParam().key);
    EXPECT_EQ(store.integer(key), GetParam().value);
    store.setValue(key, GetParam().value + 1);
    EXPECT_EQ(store.integer(key), GetParam().value + 1);
    NURVController::registerDefaults(toolbox());
    EXPECT_EQ(store.integer(key), GetParam().value + 1);
    store.remove(key);
    EXPECT_EQ(store.integer(key), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(All, IntegerSettings,
                         ::testing::Values(IntegerSetting{"maxThreads", 2}, IntegerSetting{"encodeOutputFormat", 2},
                                           IntegerSetting{"encodeFlacLevel", 5}, IntegerSetting{"fixOutputFormat", 1},
                                           IntegerSetting{"fixFlacLevel", 4}, IntegerSetting{"shntoolCommandOption", 0},
                                           IntegerSetting{"shntoolLenOption", 0}, IntegerSetting{"shntoolOutputFormat", 1},
                                           IntegerSetting{"lossySliderLevel", 3}, IntegerSetting{"lossyStepperLevel", 88},
                                           IntegerSetting{"lossyComboLevel", 160}, IntegerSetting{"opusFrameSizeIndex", 3},
                                           IntegerSetting{"SUScheduledCheckInterval", 604800},
                                           IntegerSetting{"trashOrDelete", 0}, IntegerSetting{"flacVerifyButton", 0},
                                           IntegerSetting{"flacKeepForeignMetadataButton", 0},
                                           IntegerSetting{"flacGenerateFFPButton", 0},
                                           IntegerSetting{"encodeToSourceDirectory", 0},
                                           IntegerSetting{"decodeToSourceDirectory", 0},
                                           IntegerSetting{"encodeLossyToSourceDirectory", 0}),
                         [](const auto &setting) { return std::string(setting.param.key); });

TEST_F(SettingsRegistry, HasTheDefaultTexts)
{
    EXPECT_EQ(store.string(u"shntoolNamesFormat"_s), u"%number. %name %time"_s);
    EXPECT_EQ(store.string(u"ffpExtension"_s), u"ffp.txt"_s);
    EXPECT_EQ(store.string(u"incomingSurroundOrder"_s), u"L R C LFE LS RS (STANDARD)"_s);
}

TEST_F(SettingsRegistry, HasTheDefaultBooleans)
{
    EXPECT_TRUE(store.boolean(u"warnOnDelete"_s));
    EXPECT_TRUE(store.boolean(u"warnOnFilesSkipped"_s));
    EXPECT_FALSE(store.boolean(u"checksumFileUsesOutputDirName"_s));
    EXPECT_EQ(store.integer(u"warnOnDelete"_s), 1);
}

} // namespace nurv
