// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/StandardDescriptors.h"
#include "tags/TagsProcess.h"
#include "ui/Workbench.h"

int main(int argc, char **argv)
{
    if (!nurv::openStandardDescriptors())
        return 1;
    nurv::TagsProcess::setUp();
    const int status = nurv::Workbench::run(argc, argv);
    nurv::TagsProcess::takeDown();
    return status;
}
