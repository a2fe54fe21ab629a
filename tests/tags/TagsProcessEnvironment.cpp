// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagsProcess.h"

#include <gtest/gtest.h>

using namespace nurv;

namespace {

/// With NURV_TEST_TAGS_PROCESS in the environment all tests of this program read and write tags by
/// processes of their own.
class TagsProcessEnvironment : public ::testing::Environment {
public:
    void SetUp() override
    {
        if (qEnvironmentVariableIsSet("NURV_TEST_TAGS_PROCESS"))
            TagsProcess::setUp({.program = TagsProcess::installedProgram(), .most = 2});
    }
    void TearDown() override { TagsProcess::takeDown(); }
};

[[maybe_unused]] const auto *const environment =
    ::testing::AddGlobalTestEnvironment(new TagsProcessEnvironment);

} // namespace
