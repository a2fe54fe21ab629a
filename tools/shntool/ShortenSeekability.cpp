// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/ShortenSeekability.h"

#include "support/Bytes.h"
#include "support/InputFile.h"
#include "support/ToolError.h"

#include <array>

namespace nurv {

std::string shortenSeekability(const std::string &fileName)
{
    constexpr std::string_view kMagic = "SHNAMPSK";
    try {
        InputFile file(fileName == "-" ? "./-" : fileName);
        const uint64_t size = file.size().value_or(0);
        if (size < kMagic.size())
            return "(error: could not seek to end of file)";
        file.seek(size - kMagic.size());
        std::array<uint8_t, 8> end{};
        if (file.read(end) != end.size())
            return "(error: could not read last 8 bytes of file)";
        return startsWith(end, kMagic) ? "yes" : "no";
    } catch (const ToolError &) {
        return "(error: could not open file)";
    }
}

} // namespace nurv
