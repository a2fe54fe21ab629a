// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/LibAv.h"

#include <cstddef>
#include <mutex>

namespace nurv::libAv {

namespace {

constexpr int kIoBufferSize = 32 * 1024;
// The packet index of a day of sound fits many times.
constexpr std::size_t kLargestAllocation = 64U * 1024 * 1024;

} // namespace

void prepare()
{
    static std::once_flag once;
    std::call_once(once, [] {
        av_log_set_level(AV_LOG_QUIET);
        av_max_alloc(kLargestAllocation);
    });
}

QString errorText(int error)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(error, text, sizeof(text));
    return QString::fromLocal8Bit(text);
}

const int *supportedRates(const AVCodec &encoder)
{
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(61, 13, 100) // FFmpeg 7.1 deprecates the member
    const void *rates = nullptr;
    const int error = avcodec_get_supported_config(nullptr, &encoder, AV_CODEC_CONFIG_SAMPLE_RATE, 0, &rates, nullptr);
    return error < 0 ? nullptr : static_cast<const int *>(rates);
#else
    return encoder.supported_samplerates;
#endif
}

void Deleter::operator()(AVIOContext *io) const
{
    av_freep(&io->buffer);
    avio_context_free(&io);
}

Io makeIo(void *opaque, ReadCallback read, WriteCallback write, SeekCallback seek)
{
    auto *buffer = static_cast<unsigned char *>(av_malloc(kIoBufferSize));
    if (!buffer)
        return nullptr;
    Io io(avio_alloc_context(buffer, kIoBufferSize, write ? 1 : 0, opaque, read, write, seek));
    if (!io)
        av_free(buffer);
    return io;
}

} // namespace nurv::libAv
