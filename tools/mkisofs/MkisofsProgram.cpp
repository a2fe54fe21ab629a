// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mkisofs/MkisofsProgram.h"

#include "mkisofs/AuthoredFolder.h"
#include "mkisofs/DiscImage.h"
#include "mkisofs/GenisoimageRun.h"
#include "mkisofs/MkisofsOptions.h"
#include "support/Destination.h"
#include "support/SystemCalls.h"
#include "support/TemporaryFile.h"
#include "support/ToolError.h"
#include "support/ToolMain.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <sys/stat.h>

namespace nurv {

namespace {

namespace fs = std::filesystem;

constexpr char kHelp[] = R"(Usage: mkisofs -o IMAGE -dvd-audio DIR

Makes the image of a DVD-Audio disc, with UDF and ISO 9660, of a folder that
holds AUDIO_TS and, if there is one, an empty VIDEO_TS, as dvda makes them.

  -o IMAGE    the image to write; an existing file is replaced, on success only
  -dvd-audio  the kind of disc, the only one
  --          what follows is no option
  --help      show this text
  --version   show the version, as -version does

The program genisoimage does the work. Its progress goes to standard error. The
sectors in AUDIO_PP.IFO are put right in the image, which is then compared with
the folder. The exit status is 0 on success, that of genisoimage where it
failed, otherwise 1.
)";

void checkImageName(const std::string &image, const std::string &folder)
{
    struct stat status {};
    if (::lstat(image.c_str(), &status) == 0) {
        if (!S_ISREG(status.st_mode))
            throw ToolError(ToolError::Kind::Write, image + " is no regular file, and stays; name another one with -o");
    } else if (errno != ENOENT) {
        failWrite(image, errno);
    }
    std::error_code error;
    const fs::path inside = fs::canonical(folder, error);
    if (error)
        failRead(folder, error.value());
    const fs::path parent = fs::path(image).parent_path();
    fs::path above = fs::canonical(parent.empty() ? "." : parent, error);
    if (error)
        failWrite(image, error.value());
    for (;; above = above.parent_path()) {
        if (above == inside)
            badArguments("the image cannot lie in the folder that it is made of");
        if (above == above.root_path())
            return;
    }
}

int makeImage(const MkisofsOptions &options)
{
    checkImageName(options.image, options.folder);
    const AuthoredFolder folder(options.folder);
    TemporaryFile file(destinationOf(options.image));
    GenisoimageRun genisoimage(folder, file.descriptor());
    if (const int status = genisoimage.wait(); status != 0) {
        printMessage("mkisofs: genisoimage failed with status " + std::to_string(status) + ":\n" + genisoimage.text());
        return status;
    }
    DiscImage image(file.descriptor(), folder);
    image.putSectors();
    image.compare();
    file.moveToDestination();
    return EXIT_SUCCESS;
}

int run(std::span<const std::string> arguments)
{
    if (arguments.size() == 1 && arguments.front() == "-version") {
        std::printf("mkisofs (Nurv Audio Workbench) %s\n", NURV_VERSION);
        return std::fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    return makeImage(MkisofsOptions::fromArguments(arguments));
}

} // namespace

int runMkisofs(int argc, char **argv)
{
    return toolMain({"mkisofs", kHelp}, argc, argv, run);
}

} // namespace nurv
