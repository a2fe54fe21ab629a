// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/FileWaveSource.h"

#include "support/Id3v2.h"

namespace nurv {

FileWaveSource::FileWaveSource(const std::string &name) : m_input(name)
{
    skipId3v2Tags(m_input);
}

FileWaveSource::FileWaveSource(const std::string &name, uint64_t id3Bytes) : m_input(name)
{
    m_input.skip(id3Bytes);
}

size_t FileWaveSource::readSome(std::span<uint8_t> bytes)
{
    return m_input.read(bytes);
}

} // namespace nurv
