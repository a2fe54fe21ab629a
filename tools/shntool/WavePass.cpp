// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/WavePass.h"

#include "shntool/Progress.h"
#include "shntool/WaveFiles.h"
#include "shntool/WaveOutput.h"
#include "shntool/WaveSource.h"

#include <algorithm>

namespace nurv {

WavePass::WavePass(const WaveFiles &files, const WaveInfo &info) : m_info(info), m_source(files.open(info))
{
    if (!m_source)
        return;
    std::vector<uint8_t> header(info.header.bytes.size());
    m_isOpen = m_source->read(header) == header.size() && header == info.header.bytes;
    startHash();
}

WavePass::WavePass(std::unique_ptr<WaveSource> source, const WaveInfo &info)
    : m_info(info), m_source(std::move(source)), m_isOpen(true)
{
    startHash();
}

WavePass::~WavePass() = default;

void WavePass::startHash()
{
    m_expectedMd5 = m_source->soundMd5();
    if (m_expectedMd5)
        m_hash.emplace(SoundHash::Kind::Md5);
}

size_t WavePass::read(std::span<uint8_t> bytes)
{
    const size_t count = m_source->read(bytes);
    if (m_hash && m_bytesRead < m_info.dataBytes()) {
        const uint64_t left = m_info.dataBytes() - m_bytesRead;
        addToHash(bytes.first(static_cast<size_t>(std::min<uint64_t>(left, count))));
    }
    m_bytesRead += count;
    return count;
}

void WavePass::addToHash(std::span<const uint8_t> bytes)
{
    m_hash->add(bytes);
    if (m_bytesRead + bytes.size() < m_info.dataBytes())
        return;
    const std::vector<uint8_t> digest = m_hash->finish();
    m_dataMd5.emplace();
    std::copy_n(digest.begin(), m_dataMd5->size(), m_dataMd5->begin());
    m_hash.reset();
}

bool WavePass::transfer(WaveOutput *output, uint64_t count, Progress *progress)
{
    m_buffer.resize(kTransferBytes);
    while (count > 0) {
        const size_t wanted = static_cast<size_t>(std::min<uint64_t>(count, m_buffer.size()));
        const size_t got = read(std::span(m_buffer).first(wanted));
        if (got > 0 && output && !output->write(std::span(m_buffer).first(got)))
            return false;
        if (progress && got > 0)
            progress->add(got);
        if (got < wanted)
            return false;
        count -= got;
    }
    return true;
}

bool WavePass::finish()
{
    std::vector<uint8_t> rest(kTransferBytes);
    while (read(rest) == rest.size()) {
    }
    const bool isComplete = m_bytesRead >= m_info.dataBytes();
    return m_source->finish()
           && (!m_expectedMd5 || (isComplete && (m_info.dataBytes() == 0 || m_dataMd5 == m_expectedMd5)));
}

} // namespace nurv
