// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/StagedEncodeTask.h"

#include <QString>

#include <functional>

namespace nurv {

/// One file to a lossy format. Before a source goes, its output is decoded to its end and has to be as long, unless
/// the user wants no proof.
///
///     source ──> [decoder ──> temporary WAV] ──> encoder ──> output ──> tags
class LossyEncodeTask : public StagedEncodeTask {
protected:
    LossyEncodeTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath,
                    const QString &extension);

    /// Whether one of the programs has to decode the source before it is encoded.
    [[nodiscard]] bool needsDecoder() const { return decoding(outputFile()).has_value(); }
    /// Whether the samples of the source are floating-point numbers.
    [[nodiscard]] bool hasFloatingPoint() const;
    /// "Decoding FLAC to Wav", and so on for the other formats.
    [[nodiscard]] QString decodingStatus() const;
    /// Makes a temporary WAV of the source, by its program or by the audio service, and has it encoded. What
    /// a program could decode of a damaged source is encoded, too: the job ends in error, and the source stays.
    void encodeDecoded(const std::function<void(const QString &wav)> &encode);
    /// The file that `encoding` makes of the input, in the output folder, by the input's name.
    [[nodiscard]] QString namedAfter(const QString &input) const;

    void cleanup() override;
};

} // namespace nurv
