// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeLegacyDecoder.h"
#include "ape/MacProgram.h"

int main(int argc, char **argv)
{
    return nurv::runMacProgram(argc, argv,
                               [](nurv::InputFile &input) { return std::make_unique<nurv::ApeLegacyDecoder>(input); });
}
