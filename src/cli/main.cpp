// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CliApplication.h"
#include "cli/Commands.h"
#include "process/StandardDescriptors.h"
#include "tags/TagsProcess.h"

int main(int argc, char **argv)
{
    if (!nurv::openStandardDescriptors())
        return static_cast<int>(nurv::ExitStatus::Failed);
    nurv::TagsProcess::setUp();
    const int status = nurv::CliApplication::main(argc, argv, nurv::commands());
    nurv::TagsProcess::takeDown();
    return status;
}
