// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/NURVController.h"
#include "app/ScriptedPrompts.h"
#include "cli/commands/DecodeCommand.h"
#include "cli/commands/EncodeCommand.h"
#include "convert/DecodeTab.h"
#include "convert/EncodeTab.h"
#include "desktop/NullDesktopServices.h"
#include "settings/SettingsStore.h"
#include "toolbox/Toolbox.h"

#include <gtest/gtest.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// The tabs' options for originals and existing outputs after those words.
class OriginalsOptions : public ::testing::Test {
protected:
    ~OriginalsOptions() override
    {
        for (const QString &key : kKeys)
            SettingsStore::instance().remove(key);
    }

    /// What a window has stored.
    static void store(int value)
    {
        for (const QString &key : kKeys)
            SettingsStore::instance().setValue(key, value);
    }

    static void expect(const OriginalsControls &originals, bool proves, bool dropsMetadata, bool keepsFolders,
                       ExistingOutputs existing)
    {
        EXPECT_EQ(originals.proveButton.isOn(), proves);
        EXPECT_EQ(originals.dropMetadataButton.isOn(), dropsMetadata);
        EXPECT_EQ(originals.keepFoldersButton.isOn(), keepsFolders);
        EXPECT_EQ(originals.existingOutputs, existing);
    }

    void expectAfter(const QList<QByteArray> &words, bool proves, bool dropsMetadata, bool keepsFolders,
                     ExistingOutputs existing)
    {
        for (const int stored : {0, 1}) {
            const EncodeCommand encode;
            const DecodeCommand decode;
            store(stored);
            const auto encodeTab = encode.tabFor(controller, parseArguments(encode.spec(), words));
            expect(dynamic_cast<EncodeTab &>(*encodeTab).originals, proves, dropsMetadata, keepsFolders, existing);
            store(stored);
            const auto decodeTab = decode.tabFor(controller, parseArguments(decode.spec(), words));
            expect(dynamic_cast<DecodeTab &>(*decodeTab).originals, proves, dropsMetadata, keepsFolders, existing);
        }
    }

    static inline const QStringList kKeys{u"proveBeforeDeleting"_s, u"dropMetadata"_s, u"keepFolders"_s};

    test::ScriptedPrompts prompts;
    NullDesktopServices services;
    NURVController controller{prompts, services, toolbox()};
};

} // namespace

TEST_F(OriginalsOptions, ProveAndRefuseUnlessTold)
{
    expectAfter({}, true, false, false, ExistingOutputs::Refuse);
    expectAfter({"--delete-originals", "--yes"}, true, false, false, ExistingOutputs::Refuse);
}

TEST_F(OriginalsOptions, AreWhatTheOptionsSayWhateverAWindowHasStored)
{
    expectAfter({"--no-proof"}, false, false, false, ExistingOutputs::Refuse);
    expectAfter({"--drop-metadata"}, true, true, false, ExistingOutputs::Refuse);
    expectAfter({"--keep-folders"}, true, false, true, ExistingOutputs::Refuse);
    expectAfter({"--overwrite"}, true, false, false, ExistingOutputs::Replace);
    expectAfter({"--skip-existing"}, true, false, false, ExistingOutputs::Skip);
}

} // namespace nurv
