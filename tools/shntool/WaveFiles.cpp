// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/WaveFiles.h"

#include "ape/ApeFileReader.h"
#include "shntool/AiffWaveSource.h"
#include "shntool/ApeWaveSource.h"
#include "shntool/AudioFormat.h"
#include "shntool/RunMessages.h"
#include "shntool/FileWaveSource.h"
#include "shntool/FlacWaveSource.h"
#include "shntool/FormatSettings.h"
#include "shntool/ProgramWaveSource.h"
#include "shntool/ReadAheadSource.h"
#include "shntool/ShortenWaveSource.h"
#include "shntool/TtaWaveSource.h"
#include "shntool/WaveHeaderReader.h"
#include "support/Id3v2.h"
#include "support/InputFile.h"
#include "support/SystemCalls.h"
#include "support/ToolError.h"

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace nurv {

namespace {

/// Beside this program.
constexpr const char *kAppleLosslessDecoder = "shntool-alac";

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

/// Why a file of that mode is not looked into; empty for regular files.
std::string specialFile(mode_t mode)
{
    switch (mode & S_IFMT) {
    case S_IFDIR: return "cannot open directory";
    case S_IFCHR: return "cannot open character device";
    case S_IFBLK: return "cannot open block device";
    case S_IFIFO: return "cannot open named pipe";
    case S_IFSOCK: return "cannot open socket";
    default: return {};
    }
}

std::string openError(int error)
{
    switch (error) {
    case ENOENT: return "cannot open non-existent file";
    case EACCES: return "insufficient permissions to open file";
    case ENAMETOOLONG: return "filename too long to open file";
    default: return "encountered system error [" + errorText(error) + "] while opening file";
    }
}

/// Standard input is meant by "-" elsewhere; here it is a file like others.
std::string pathOf(const std::string &name)
{
    return name == "-" ? "./-" : name;
}

} // namespace

WaveFiles::WaveFiles(const RunMessages &messages, const FormatSettings &formats) : m_messages(messages), m_formats(formats) {}

bool WaveFiles::canBeOpened(const std::string &name, WaveInfo &info) const
{
    struct stat status {};
    std::string fault;
    if (::stat(name.c_str(), &status) != 0)
        fault = openError(errno);
    else if (fault = specialFile(status.st_mode); fault.empty() && ::access(name.c_str(), R_OK) != 0)
        fault = "encountered error [" + errorText(errno) + "] while opening file";
    if (!fault.empty()) {
        m_messages.warn(fault + ": [" + name + "]");
        return false;
    }
    info.actualBytes = static_cast<uint64_t>(status.st_size);
    return true;
}

std::optional<WaveInfo> WaveFiles::examine(const std::string &name) const
{
    WaveInfo info;
    info.fileName = name;
    if (!canBeOpened(name, info))
        return std::nullopt;
    std::unique_ptr<WaveSource> source;
    bool isDamaged = false;
    try {
        InputFile file(pathOf(name));
        info.id3Bytes = skipId3v2Tags(file);
        info.format = audioFormatOf(file.peek(kMagicBytes));
        if (info.format)
            source = makeSource(info);
    } catch (const ToolError &error) {
        m_messages.debug(error.what());
        isDamaged = error.kind() == ToolError::Kind::Damaged;
    }
    if (!source) {
        if (info.format && (info.format->name != "aiff" || isDamaged))
            warnOfDecoder(info);
        else
            warnOfFormat(name);
        return std::nullopt;
    }
    const WaveHeaderFault fault = readWaveHeader(*source, name, m_messages, info.header);
    if (fault == WaveHeaderFault::None) {
        tellChunksAgain(info);
        return info;
    }
    if (info.format->isWave() || info.format->name == "wv")
        warnOfFormat(name);
    else if (fault != WaveHeaderFault::Malformed)
        warnOfDecoder(info);
    return std::nullopt;
}

/// The head of a WAV file is looked at when its format is told, and when it is opened.
void WaveFiles::tellChunksAgain(const WaveInfo &info) const
{
    if (m_messages.debugLevel == 0 || !info.format->isWave())
        return;
    WaveHeader header;
    if (const std::unique_ptr<WaveSource> source = makeSource(info))
        static_cast<void>(readWaveHeader(*source, info.fileName, m_messages, header));
}

void WaveFiles::warnOfFormat(const std::string &name) const
{
    m_messages.warn("none of the builtin format modules handle input file: [" + name + "]");
    if (m_messages.debugLevel == 0)
        return;
    constexpr size_t kShown = 4;
    try {
        InputFile file(pathOf(name));
        std::string number;
        std::string text;
        for (const uint8_t byte : file.peek(kShown)) {
            text += byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '?';
            number += kHexDigits[static_cast<uint8_t>(text.back()) / 16];
            number += kHexDigits[static_cast<uint8_t>(text.back()) % 16];
        }
        if (text.size() < kShown)
            m_messages.debugShortRead(kShown, text.size());
        else
            m_messages.debug("found 4-byte magic header 0x" + number + " [" + text + "] in file: [" + name + "]");
    } catch (const ToolError &error) {
        m_messages.debug(error.what());
    }
}

void WaveFiles::warnOfDecoder(const WaveInfo &info) const
{
    m_messages.warn("failed to read data from input file using format: [" + std::string(info.format->name)
                   + "]\n+ you may not have permission to read file: [" + info.fileName
                   + "]\n+ arguments may be incorrect for decoder: [" + m_formats.decoderName(*info.format)
                   + "]\n+ verify that the decoder is installed and in your PATH\n"
                   + (info.id3Bytes > 0 ? "+ removing the ID3v2 tag from this file may fix this\n" : "")
                   + "+ this file may be unsupported, truncated or corrupt");
}

std::unique_ptr<WaveSource> WaveFiles::makeSource(const WaveInfo &info) const
{
    const AudioFormat &format = *info.format;
    const std::string path = pathOf(info.fileName);
    if (m_formats.decodesItself(format)) {
        if (format.name == "wav")
            return std::make_unique<FileWaveSource>(path, info.id3Bytes);
        if (format.name == "aiff")
            return std::make_unique<AiffWaveSource>(path, info.id3Bytes);
        if (format.name == "shn")
            return std::make_unique<ShortenWaveSource>(path);
        if (format.name == "flac")
            return std::make_unique<FlacWaveSource>(path);
        if (format.name == "tta")
            return std::make_unique<TtaWaveSource>(path);
        if (format.name == "alac")
            return std::make_unique<ProgramWaveSource>(std::vector<std::string>{kAppleLosslessDecoder, path});
        if (format.name == "ape") {
            try {
                return std::make_unique<ApeWaveSource>(path);
            } catch (const ApeOlderVersion &) {
                // Left to the program, which knows who reads them.
            }
        }
    }
    return std::make_unique<ProgramWaveSource>(m_formats.decoderWords(format, info.fileName));
}

std::unique_ptr<WaveSource> WaveFiles::open(const WaveInfo &info) const
{
    try {
        std::unique_ptr<WaveSource> source = makeSource(info);
        // A program decodes on its own anyway, and nothing is decoded in WAV files.
        if (info.format->isCompressed && m_formats.decodesItself(*info.format))
            return std::make_unique<ReadAheadSource>(std::move(source));
        return source;
    } catch (const ToolError &error) {
        m_messages.debug(error.what());
        return nullptr;
    }
}

} // namespace nurv
