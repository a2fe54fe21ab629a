// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/FileWaveOutput.h"

#include "shntool/EndingCleanup.h"
#include "support/SystemCalls.h"
#include "support/ToolError.h"

#include <mutex>

namespace nurv {

FileWaveOutput::FileWaveOutput(const std::string &name) : m_file(name) {}

bool FileWaveOutput::write(std::span<const uint8_t> bytes)
{
    return writeAll(m_file.descriptor(), bytes);
}

bool FileWaveOutput::commit()
{
    return commitTemporaryFile(m_file);
}

bool StreamWaveOutput::write(std::span<const uint8_t> bytes)
{
    return m_descriptor < 0 || writeAll(m_descriptor, bytes);
}

bool commitTemporaryFile(TemporaryFile &file)
{
    const std::unique_lock<std::mutex> lock = EndingCleanup::hold();
    try {
        file.moveToDestination();
        return true;
    } catch (const ToolError &) {
        return false;
    }
}

} // namespace nurv
