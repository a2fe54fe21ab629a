// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/WaveOutput.h"
#include "support/TemporaryFile.h"

namespace nurv {

/// A WAV file.
class FileWaveOutput final : public WaveOutput {
public:
    /// Throws ToolError(Write) where no file can be made.
    explicit FileWaveOutput(const std::string &name);

    bool write(std::span<const uint8_t> bytes) override;
    bool commit() override;

private:
    TemporaryFile m_file;
};

/// Standard output, or a place for nothing: what a descriptor of this program leads to.
class StreamWaveOutput final : public WaveOutput {
public:
    /// Does not own it; -1 takes everything and keeps nothing.
    explicit StreamWaveOutput(int descriptor) : m_descriptor(descriptor) {}

    bool write(std::span<const uint8_t> bytes) override;
    bool commit() override { return true; }

private:
    int m_descriptor;
};

/// Gives a file the name of another one, which it replaces, while no signal can end the program.
[[nodiscard]] bool commitTemporaryFile(TemporaryFile &file);

} // namespace nurv
