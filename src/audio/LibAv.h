// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

// What the readers and writers of audio files share about FFmpeg's libraries. Only
// source files of this folder and of src/samples include it.
namespace nurv::libAv {

/// Keeps the libraries from writing to standard error, where their messages about
/// bytes would reach users, and from allocating what only a damaged file asks for.
/// Before the first use; any thread.
void prepare();

/// The library's text for one of its error numbers.
[[nodiscard]] QString errorText(int error);

/// The sample rates in Hz that an encoder takes, ended by a 0; null when it takes any.
[[nodiscard]] const int *supportedRates(const AVCodec &encoder);

struct Deleter {
    /// Of a context over a callback: its buffer goes with it.
    void operator()(AVIOContext *io) const;
    void operator()(AVCodecContext *codec) const { avcodec_free_context(&codec); }
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
    void operator()(SwrContext *resampler) const { swr_free(&resampler); }
};
struct InputCloser {
    void operator()(AVFormatContext *format) const { avformat_close_input(&format); }
};
struct OutputDeleter {
    void operator()(AVFormatContext *format) const { avformat_free_context(format); }
};

using Io = std::unique_ptr<AVIOContext, Deleter>;
using Codec = std::unique_ptr<AVCodecContext, Deleter>;
using Packet = std::unique_ptr<AVPacket, Deleter>;
using Frame = std::unique_ptr<AVFrame, Deleter>;
using Resampler = std::unique_ptr<SwrContext, Deleter>;
using Input = std::unique_ptr<AVFormatContext, InputCloser>;
using Output = std::unique_ptr<AVFormatContext, OutputDeleter>;

using ReadCallback = decltype(AVIOContext::read_packet);
/// Its bytes are constant from FFmpeg 7 on.
using WriteCallback = decltype(AVIOContext::write_packet);
using SeekCallback = decltype(AVIOContext::seek);

/// An I/O context over callbacks, with a buffer of its own; null without memory.
/// A context for writing has no read callback.
[[nodiscard]] Io makeIo(void *opaque, ReadCallback read, WriteCallback write, SeekCallback seek);

} // namespace nurv::libAv
