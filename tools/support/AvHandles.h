// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <array>
#include <memory>
#include <string>

namespace nurv {

// FFmpeg's objects with an owner, for the bundled programs that link its libraries.

struct AvFree {
    void operator()(AVFormatContext *context) const { ::avformat_close_input(&context); }
    void operator()(AVCodecContext *context) const { ::avcodec_free_context(&context); }
    void operator()(AVPacket *packet) const { ::av_packet_free(&packet); }
    void operator()(AVFrame *frame) const { ::av_frame_free(&frame); }
};

template<typename Object>
using AvHandle = std::unique_ptr<Object, AvFree>;

/// What the libraries call an error.
[[nodiscard]] inline std::string avErrorText(int error)
{
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    return ::av_make_error_string(text.data(), text.size(), error);
}

} // namespace nurv
