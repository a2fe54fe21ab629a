// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mkisofs/MkisofsProgram.h"

int main(int argc, char **argv)
{
    return nurv::runMkisofs(argc, argv);
}
