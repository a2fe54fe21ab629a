// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeFileWriter.h"

#include "ape/ApeError.h"
#include "support/InputFile.h"
#include "support/OutputFile.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <array>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

TEST(ApeFileWriter, TakesNoMoreFramesThanItHasLeftRoomFor)
{
    const TestFolder folder;
    const std::array<uint8_t, 44> bytes{};
    const InputFile input(std::span<const uint8_t>{bytes});
    OutputFile output(folder.path(u"a.ape"_s).toStdString(), input);
    ApeFileWriter writer(output, ApeHeader{}, bytes, 1);
    writer.addFrame(bytes, 100);
    EXPECT_THROW(writer.addFrame(bytes, 100), ApeError);
}

} // namespace

} // namespace nurv::test
