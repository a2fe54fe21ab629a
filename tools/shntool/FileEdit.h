// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/WaveInfo.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace nurv {

class Progress;
class WaveOutput;
class WavePass;
struct ModeRun;

/// One file that is made of one other, with its line of progress. Every step returns whether the next one has sense;
/// where it has none the failure is told, and no file is left.
class FileEdit {
public:
    /// Throws nothing that the modes have to catch. `action` is what the progress says.
    FileEdit(ModeRun &run, const WaveInfo &info, const std::string &action, const std::string &postfix);
    ~FileEdit();
    FileEdit(const FileEdit &) = delete;
    FileEdit &operator=(const FileEdit &) = delete;

    /// Refuses a file that would become its own source.
    bool checkNames();
    bool openInput();
    bool openOutput();
    bool writeHeader(std::span<const uint8_t> header);
    /// The same without counting it.
    bool writeHeaderSilently(std::span<const uint8_t> header);
    bool writeZeros(uint64_t count, const std::string &fault);
    /// Where nothing is counted.
    bool writeZerosSilently(uint64_t count);
    /// Data from the input to the output.
    bool copyData(uint64_t count);
    /// The same without counting it.
    bool copyDataSilently(uint64_t count);
    /// Passes over data of the input.
    bool skipData(uint64_t count, const std::string &fault);
    /// What stands behind the data, up to the end of the RIFF chunk.
    bool copyExtra(uint64_t count);
    /// Checks the rest of the input and names the output. A failure of the encoder is told behind the line.
    bool finish();

    /// Tells why the file is left out.
    bool skip(const std::string &why);
    [[nodiscard]] Progress &progress() { return *m_progress; }

private:
    bool copy(uint64_t count, const std::string &fault, Progress *progress);

    ModeRun &m_run;
    const WaveInfo &m_info;
    std::string m_name;
    std::unique_ptr<Progress> m_progress;
    std::unique_ptr<WavePass> m_input;
    std::unique_ptr<WaveOutput> m_output;
    bool m_isMade = false;
};

} // namespace nurv
