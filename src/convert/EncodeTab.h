// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/ConversionTab.h"
#include "programs/Flac.h"

#include <QSet>

#include <memory>

namespace nurv {

class NURVTaskQueue;

/// The tab that turns every file of its list into one lossless encoding job.
class EncodeTab final : public ConversionTab {
    Q_OBJECT

public:
    explicit EncodeTab(NURVController &controller);

    CheckControl &sourceEncodeButton = besideSourceButton;
    /// 3 rows x 2 columns: SHN, WV / FLAC, TTA / APE, M4A.
    ChoiceControl outputFormatMatrix;
    CheckControl generateMD5Button;
    CheckControl flacVerifyButton;
    CheckControl flacLaxButton;
    CheckControl flacKeepForeignMetadataButton;
    SliderControl flacSlider;
    SliderControl apeSlider;
    /// Column 0 is fast, column 1 high.
    ChoiceControl wavepackFormatMatrix;
    CheckControl generateFFPButton;

    /// The format word of the selected cell; empty when none is selected.
    [[nodiscard]] QString outputFormat() const;

    void displayRelevantOptions() override;

    /// A job that reports into `results`, whose member it is not yet.
    [[nodiscard]] std::shared_ptr<Conversion> encodeSHN(const QString &source, const QString &outputFolder,
                                                        NURVTaskQueue *queue,
                                                        const std::shared_ptr<NURVTaskResults> &results) const;
    /// The job that suits the source; it reports into `results`, whose member it is
    /// not yet. `overwrite` reaches only jobs that run `flac` itself.
    [[nodiscard]] std::shared_ptr<Conversion> encodeFLAC(const QString &source, const QString &outputFolder,
                                                         NURVTaskQueue *queue,
                                                         const std::shared_ptr<NURVTaskResults> &results,
                                                         bool overwrite) const;

    /// The full paths of the folder's entries with that extension, whatever its case;
    /// empty for a folder that cannot be read.
    [[nodiscard]] static QStringList getFilesFromOutputDirectory(const QString &folder, const QString &extension);
    /// Whether one of the existing paths is, character by character, a planned output.
    [[nodiscard]] static bool isFileClash(const QStringList &existing, const QSet<QString> &outputFiles);

protected:
    /// Asks whether FLAC files may be replaced, when there are some in the outputs' places.
    [[nodiscard]] bool confirmBesideSources(Batch &batch) override;
    [[nodiscard]] bool sharesResults() const override;
    [[nodiscard]] std::shared_ptr<NURVTask> afterBatchTask(const Batch &batch) const override;
    /// The job that suits format and source; null without a format.
    [[nodiscard]] std::shared_ptr<Conversion> makeConversion(const Batch &batch, const QString &source) const override;

private:
    [[nodiscard]] bool anyOutputExists() const;
    [[nodiscard]] std::shared_ptr<NURVTask> md5Task(const Batch &batch) const;
    [[nodiscard]] std::shared_ptr<NURVTask> ffpTask(const Batch &batch) const;
    [[nodiscard]] QString outputFor(const Batch &batch, const QString &source) const;
    [[nodiscard]] flac::Encoding flacEncoding(bool overwrite) const;
    /// "-f" or "-h".
    [[nodiscard]] QString wavpackLevel() const;
    /// For a source that the format's encoder cannot read.
    [[nodiscard]] std::shared_ptr<Conversion> encodeThroughWav(const Batch &batch, const QString &source) const;
};

} // namespace nurv
