// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/AudioPackets.h"

#include "audio/AudioFileHeader.h"
#include "audio/LibAv.h"

#include <QCryptographicHash>

namespace nurv {

QByteArray audioPacketsDigest(const QString &path)
{
    AudioFileStatus status = AudioFileStatus::Ok;
    const auto header = AudioFileHeader::read(path, status, nullptr, AudioFileHeader::Edits::LeftToCaller);
    const libAv::Packet packet(av_packet_alloc());
    if (!header || !packet)
        return {};
    QCryptographicHash digest(QCryptographicHash::Sha1);
    const auto add = [&](const std::uint8_t *bytes, int size) { digest.addData(QByteArrayView(bytes, size)); };
    add(header->stream()->codecpar->extradata, header->stream()->codecpar->extradata_size);
    int error = 0;
    while ((error = av_read_frame(header->container(), packet.get())) == 0) {
        if (packet->stream_index == header->stream()->index)
            add(packet->data, packet->size);
        av_packet_unref(packet.get());
    }
    return error == AVERROR_EOF && header->readError() == 0 ? digest.result() : QByteArray();
}

} // namespace nurv
