// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/WaveSource.h"
#include "support/InputFile.h"

namespace nurv {

/// A WAV file, or what comes from standard input, as it stands there.
class FileWaveSource final : public WaveSource {
public:
    /// Begins behind tags in front. Throws ToolError(Read).
    explicit FileWaveSource(const std::string &name);
    /// The same where they are known to have `id3Bytes` bytes.
    FileWaveSource(const std::string &name, uint64_t id3Bytes);

protected:
    size_t readSome(std::span<uint8_t> bytes) override;

private:
    InputFile m_input;
};

} // namespace nurv
