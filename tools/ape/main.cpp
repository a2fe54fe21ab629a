// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeDecoder.h"
#include "ape/MacProgram.h"
#include "support/InputFile.h"

#include <filesystem>

#include <unistd.h>

using namespace nurv;

namespace {

/// Goes on as the program beside this one that reads the older versions. It is one of its
/// own because starting with the libraries that it needs takes ten times as long. Returns
/// where it is not there.
void becomeLegacyProgram(char **argv)
{
    std::error_code ignored;
    const std::filesystem::path own = std::filesystem::read_symlink("/proc/self/exe", ignored);
    ::execv((own.parent_path() / "mac-legacy").c_str(), argv);
}

/// What was read from anything else cannot be read again.
bool isFile(const InputFile &input)
{
    return input.size() && !input.isStandardInput();
}

} // namespace

int main(int argc, char **argv)
{
    return runMacProgram(argc, argv, [&](InputFile &input) -> std::unique_ptr<ApeSource> {
        try {
            return std::make_unique<ApeDecoder>(input);
        } catch (const ApeOlderVersion &older) {
            if (isFile(input))
                becomeLegacyProgram(argv);
            throw ApeError(older.number(), older.what() + std::string(isFile(input) ? "" : " from pipes"));
        }
    });
}
