// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dvda/DvdaProgram.h"

int main(int argc, char **argv)
{
    return nurv::runDvda(argc, argv);
}
