// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/AudioFileStatus.h"
#include "audio/Mpeg4Timing.h"
#include "files/FileDescriptor.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>

#include <sys/stat.h>

struct AVFormatContext;
struct AVStream;

namespace nurv {

/// One open audio file of which the header has been read and nothing else. The
/// contents decide, whatever the name says. Only regular files are opened, and
/// nothing that a file refers to. Used by one thread at a time.
class AudioFileHeader {
public:
    /// Whether the demuxer or the caller leaves out what the edit list of an MPEG-4 file leaves out.
    enum class Edits { AppliedByDemuxer, LeftToCaller };
    /// Which files are read: those of the audio service, or also Ogg, WavPack, TTA and
    /// Monkey's Audio files, of which the numbers about length and losslessness are not set.
    enum class Kinds { AudioService, All };

    /// Opens a file and reads its header: null on failure, with its kind in `status`
    /// and, when asked for, the reason in words. Blocks for the reading.
    [[nodiscard]] static std::unique_ptr<AudioFileHeader> read(const QString &path, AudioFileStatus &status,
                                                               QString *reason = nullptr,
                                                               Edits edits = Edits::AppliedByDemuxer,
                                                               Kinds kinds = Kinds::AudioService);
    ~AudioFileHeader();

    /// The samples as the file keeps them. Bits per channel are the width in which
    /// a sample is kept, 0 for formats without any (AAC, MP3). The unsigned samples
    /// of 8-bit WAV count as signed ones: the difference is the container's.
    [[nodiscard]] AudioStreamDescription format() const { return m_format; }

    /// The length in frames after the file's own header and edit list; 0 when the
    /// file does not tell.
    [[nodiscard]] std::int64_t lengthFrames() const { return m_length; }
    /// Whether the length is the file's word and not an estimate.
    [[nodiscard]] bool isLengthExact() const { return m_isLengthExact; }

    /// Whether the sound is one stretch of an MPEG-4 track, from `firstFrame` on for
    /// `lengthFrames` frames. The demuxer leaves out packets that begin after the edit
    /// list's rounded end: for the last frames, the caller has to apply the edit.
    [[nodiscard]] bool hasOneEdit() const { return m_hasOneEdit; }
    [[nodiscard]] std::int64_t firstFrame() const { return m_firstFrame; }

    /// Where the file ends before the last packet of its track does: how many frames there are before the first packet that
    /// is not there to its end. Of an MPEG-4 file; nothing when all packets are there.
    [[nodiscard]] std::optional<std::int64_t> framesBeforeCut() const;

    /// Whether the file holds sound that is not in those frames: a further track, or what
    /// the edit list of a lossless file hides.
    [[nodiscard]] bool holdsMoreSound() const { return m_holdsMoreSound; }

    /// The length in frames after the table of durations of an MPEG-4 track, where that is
    /// another one than its header tells.
    [[nodiscard]] std::optional<std::int64_t> tableFrames() const { return m_tableFrames; }

    /// Whether the file is WAV or AIFF with plain integers, so that its bytes are
    /// the samples.
    [[nodiscard]] bool isPlainPcm() const { return m_isPlainPcm; }
    /// Whether decoding gives back every bit that was encoded.
    [[nodiscard]] bool isLossless() const { return m_isLossless; }
    [[nodiscard]] bool hasUnsignedSamples() const;

    [[nodiscard]] AVFormatContext *container() const;
    [[nodiscard]] AVStream *stream() const { return m_stream; }
    /// Device and inode of the file.
    [[nodiscard]] const struct stat &facts() const { return m_facts; }
    /// The system's error number of a read that failed; 0: none did.
    [[nodiscard]] int readError() const { return m_readError; }

private:
    struct Handles;

    AudioFileHeader();
    [[nodiscard]] AudioFileStatus open(const QString &path, QString &reason, Edits edits, Kinds kinds);
    [[nodiscard]] bool selectStream();
    void describe();
    void measure();
    void lookForMoreSound();
    [[nodiscard]] std::optional<std::int64_t> declaredWavBytes() const;
    [[nodiscard]] bool isFlac() const;
    [[nodiscard]] Mpeg4Timing::ReadAt byteReader() const;
    [[nodiscard]] bool measureOneEdit();
    static int readBytes(void *self, std::uint8_t *buffer, int size);
    static std::int64_t seek(void *self, std::int64_t offset, int whence);

    FileDescriptor m_file;
    struct stat m_facts = {};
    std::unique_ptr<Handles> m_handles;
    AVStream *m_stream = nullptr;
    AudioStreamDescription m_format;
    std::int64_t m_length = 0;
    std::int64_t m_declaredLength = 0; ///< from the codec's own header
    std::int64_t m_firstFrame = 0;
    int m_readError = 0;
    std::optional<std::int64_t> m_tableFrames;
    std::int64_t m_mediaLength = 0; ///< of the track without its edit list; 0: not known
    bool m_hasOneEdit = false;
    bool m_holdsMoreSound = false;
    bool m_isLengthExact = false;
    bool m_isPlainPcm = false;
    bool m_isLossless = false;
};

} // namespace nurv
