// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/StagedTask.h"

namespace nurv {

/// A decoding in stages: programs make WAV files, and the audio service makes AIFF files
/// of them.
class StagedDecodeTask : public StagedTask {
public:
    /// The extension of the file that a decoding to the format makes.
    [[nodiscard]] static QString extensionOf(const QString &format);

    /// "WAV" or "AIFF".
    [[nodiscard]] const QString &format() const { return m_format; }

protected:
    StagedDecodeTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath, const QString &format);
    void convert() final { doDecodeCall(); }
    virtual void doDecodeCall() = 0;

    [[nodiscard]] bool isToAiff() const { return m_format == u"AIFF"; }
    /// Decodes to the output, or to a temporary WAV that is then converted to AIFF.
    void decode();
    /// Decodes to `intermediateFile`, makes the AIFF file of that and removes it. A file that has the name
    /// already stays as it is: then another name is taken.
    void decodeThroughIntermediateWav();
    /// Makes the output of the WAV file. A failure sets the error flag.
    void convertToAiff(const QString &wav);

private:
    void decodeThroughTemporaryWav();

    QString m_format;
};

} // namespace nurv
