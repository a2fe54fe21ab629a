// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mkisofs/MkisofsOptions.h"

#include "support/ToolError.h"

namespace nurv {

MkisofsOptions MkisofsOptions::fromArguments(std::span<const std::string> arguments)
{
    MkisofsOptions options;
    bool isDvdAudio = false;
    bool isAfterOptions = false;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string &argument = arguments[i];
        if (argument.empty())
            badArguments("a name is empty");
        if (isAfterOptions || argument.front() != '-') {
            if (!options.folder.empty())
                badArguments("more than one folder: '" + options.folder + "' and '" + argument + "'");
            options.folder = argument;
        } else if (argument == "--") {
            isAfterOptions = true;
        } else if (argument == "-dvd-audio") {
            isDvdAudio = true;
        } else if (argument == "-o") {
            if (!options.image.empty())
                badArguments("more than one image: -o is given twice");
            if (++i == arguments.size() || arguments[i].empty())
                badArguments("-o needs the name of an image");
            options.image = arguments[i];
        } else {
            badArguments("unknown option '" + argument + "'");
        }
    }
    if (!isDvdAudio)
        badArguments("this program makes images of DVD-Audio discs only: -dvd-audio is missing");
    if (options.image.empty())
        badArguments("no image given with -o");
    if (options.folder.empty())
        badArguments("no folder given");
    return options;
}

} // namespace nurv
