// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/FileEdit.h"

#include "shntool/ModeRun.h"
#include "shntool/Progress.h"
#include "shntool/WaveOutput.h"
#include "shntool/WavePass.h"

#include <vector>

namespace nurv {

FileEdit::FileEdit(ModeRun &run, const WaveInfo &info, const std::string &action, const std::string &postfix)
    : m_run(run), m_info(info), m_name(run.outputs.nameFrom(info, postfix)),
      m_progress(std::make_unique<Progress>(run.messages, Progress::Task{.action = action,
                                                                        .file = info.fileName,
                                                                        .fileDetail = run.lengthOf(info),
                                                                        .link = "-->",
                                                                        .otherFile = m_name,
                                                                        .otherDetail = {},
                                                                        .totalBytes = info.totalBytes()}))
{
}

FileEdit::~FileEdit()
{
    if (m_output && !m_isMade)
        m_run.outputs.noteGivenUp(m_name);
}

bool FileEdit::skip(const std::string &why)
{
    m_progress->fail();
    m_run.messages.warn(why + " -- skipping.");
    if (!m_output)
        return false;
    if (const std::string complaint = m_output->complaint(); !complaint.empty())
        m_run.messages.warn(complaint);
    return false;
}

bool FileEdit::checkNames()
{
    return !OutputFiles::areSame(m_info.fileName, m_name) || skip("output file would overwrite input file");
}

bool FileEdit::openInput()
{
    m_input = std::make_unique<WavePass>(m_run.files, m_info);
    return m_input->isOpen() || skip("could not open input file");
}

bool FileEdit::openOutput()
{
    m_output = m_run.outputs.open(m_name, m_progress.get());
    return m_output || skip(m_run.outputs.refusalOr("could not open output file"));
}

bool FileEdit::writeHeader(std::span<const uint8_t> header)
{
    if (!writeHeaderSilently(header))
        return false;
    m_progress->add(header.size());
    return true;
}

bool FileEdit::writeHeaderSilently(std::span<const uint8_t> header)
{
    return m_output->write(header)
           || skip("error while writing " + std::to_string(header.size()) + "-byte WAVE header");
}

bool FileEdit::writeZeros(uint64_t count, const std::string &fault)
{
    const std::vector<uint8_t> zeros(static_cast<size_t>(count));
    if (!m_output->write(zeros))
        return skip(fault);
    m_progress->add(count);
    return true;
}

bool FileEdit::writeZerosSilently(uint64_t count)
{
    const std::vector<uint8_t> zeros(static_cast<size_t>(count));
    return m_output->write(zeros) || skip("error while transferring NULL pad byte");
}

bool FileEdit::copy(uint64_t count, const std::string &fault, Progress *progress)
{
    return m_input->transfer(m_output.get(), count, progress) || skip(fault);
}

bool FileEdit::copyData(uint64_t count)
{
    return copy(count, "error while transferring " + std::to_string(count) + "-byte data chunk", m_progress.get());
}

bool FileEdit::copyDataSilently(uint64_t count)
{
    return copy(count, "error while transferring " + std::to_string(count) + " bytes of data", nullptr);
}

bool FileEdit::skipData(uint64_t count, const std::string &fault)
{
    if (!m_input->transfer(nullptr, count, nullptr))
        return skip(fault);
    if (count > 0)
        m_progress->add(count);
    return true;
}

bool FileEdit::copyExtra(uint64_t count)
{
    if (m_input->transfer(m_output.get(), count, m_progress.get()))
        return true;
    m_run.messages.warn("error while transferring " + std::to_string(count) + " extra bytes -- skipping.");
    return false;
}

bool FileEdit::finish()
{
    if (!m_input->finish())
        return skip("possibly truncated and/or corrupt file: [" + m_info.fileName + "]");
    const bool isComplete = m_output->complete();
    if (isComplete && !m_output->commit())
        return skip("could not complete output file: [" + m_name + "]");
    if (isComplete) {
        m_run.outputs.noteMade(m_name);
        m_isMade = true;
    }
    m_progress->succeed();
    if (!isComplete) {
        m_progress->noteFailure();
        m_run.messages.warn(m_output->complaint());
    }
    return isComplete;
}

} // namespace nurv
