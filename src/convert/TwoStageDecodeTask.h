// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/TwoStageTask.h"

namespace nurv {

/// A decoding in stages: programs make WAV files, and the audio service makes AIFF files
/// of them.
class TwoStageDecodeTask : public TwoStageTask {
public:
    /// "WAV" or "AIFF".
    [[nodiscard]] const QString &format() const { return m_format; }

protected:
    TwoStageDecodeTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath, const QString &format);
    /// The decoder's stage for the WAV file that it makes.
    using StageFor = std::function<ToolStage(const QString &wav)>;

    void convert() final { doDecodeCall(); }
    virtual void doDecodeCall() = 0;

    [[nodiscard]] bool isToAiff() const { return m_format == u"AIFF"; }
    /// Decodes to the output, or to a temporary WAV that is then converted to AIFF.
    void decode(const StageFor &stageFor);
    /// Decodes to `intermediateFile`, makes the AIFF file of that and removes it. A file that has the name
    /// already stays as it is: then another name is taken.
    void decodeThroughIntermediateWav(const StageFor &stageFor);
    /// Makes the output of the WAV file. A failure sets the error flag.
    void convertToAiff(const QString &wav);

private:
    void decodeThroughTemporaryWav(const StageFor &stageFor);

    QString m_format;
};

} // namespace nurv
