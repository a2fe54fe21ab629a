// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/WaveInfo.h"

#include <memory>
#include <optional>
#include <string>

namespace nurv {

class RunMessages;
class FormatSettings;
class WaveSource;

/// Opens files by their names: finds the format of each, whatever its name ends with, and the decoder for it.
class WaveFiles {
public:
    WaveFiles(const RunMessages &messages, const FormatSettings &formats);

    /// What is known of a file, from its head. Where it cannot be read, a warning is told and nothing comes back.
    [[nodiscard]] std::optional<WaveInfo> examine(const std::string &name) const;

    /// The file from its beginning, for one pass over all of it. Null where it cannot be opened again.
    [[nodiscard]] std::unique_ptr<WaveSource> open(const WaveInfo &info) const;

private:
    [[nodiscard]] bool canBeOpened(const std::string &name, WaveInfo &info) const;
    [[nodiscard]] std::unique_ptr<WaveSource> makeSource(const WaveInfo &info) const;
    void tellChunksAgain(const WaveInfo &info) const;
    void warnOfFormat(const std::string &name) const;
    void warnOfDecoder(const WaveInfo &info) const;

    const RunMessages &m_messages;
    const FormatSettings &m_formats;
};

} // namespace nurv
