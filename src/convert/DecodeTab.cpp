// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DecodeTab.h"

#include "app/NURVController.h"
#include "app/PathNames.h"
#include "convert/Conversion.h"
#include "convert/DecodeALACTask.h"
#include "convert/DecodeAPETask.h"
#include "convert/DecodeFlacTask.h"
#include "convert/DecodeSHNTask.h"
#include "convert/DecodeTTATask.h"
#include "convert/DecodeWavpackTask.h"
#include "engine/NURVTaskQueue.h"
#include "process/ResourceFolder.h"
#include "programs/Flac.h"
#include "programs/Shntool.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

DecodeTab::DecodeTab(NURVController &controller)
    : ConversionTab(controller, u"decode"_s, u"decodeToSourceDirectory"_s), outputFormatMatrix({u"WAV"_s, u"AIFF"_s}, 2),
      flacOptionsLabel(u"FLAC options"_s)
{
    showFLacOptions(false);
}

void DecodeTab::showFLacOptions(bool show)
{
    decodeFlacThroughErrors.setHidden(!show);
    flacKeepForeignMetadataButton.setHidden(!show);
    flacOptionsLabel.setHidden(!show);
}

void DecodeTab::filesAdded()
{
    if (std::any_of(fileNames().begin(), fileNames().end(),
                    [](const QString &source) { return formatWord(source) == u"FLAC"; }))
        showFLacOptions(true);
    ConversionTab::filesAdded();
}

void DecodeTab::clearFiles()
{
    ConversionTab::clearFiles();
    showFLacOptions(false);
}

std::shared_ptr<Conversion> DecodeTab::makeConversion(const Batch &batch, const QString &source) const
{
    const QString outputFolder = folderFor(batch, source);
    NURVTaskQueue *const queue = &nurvController().taskQueue();
    const QString format = outputFormatMatrix.selectedTitle();
    const QString type = formatWord(source);
    if (type == u"FLAC")
        return decodeFlac(source, outputFolder, format, queue);
    if (type == u"SHN")
        return decodeSHN(source, outputFolder, format, queue);
    if (type == u"WV")
        return std::make_shared<DecodeWavpackTask>(queue, source, outputFolder, format);
    if (type == u"TTA")
        return std::make_shared<DecodeTTATask>(queue, source, outputFolder, format);
    if (type == u"M4A")
        return std::make_shared<DecodeALACTask>(queue, source, outputFolder, format);
    if (type == u"APE")
        return std::make_shared<DecodeAPETask>(queue, source, outputFolder, format);
    return nullptr;
}

std::shared_ptr<Conversion> DecodeTab::decodeFlac(const QString &source, const QString &outputFolder,
                                                  const QString &format, NURVTaskQueue *queue) const
{
    const QString output = outputPath(outputFolder, source, StagedDecodeTask::extensionOf(format));
    return std::make_shared<DecodeFlacTask>(
        source, queue, programPath(flac::program().name),
        flac::decodingArguments(format, flacKeepForeignMetadataButton.isOn(), decodeFlacThroughErrors.isOn(),
                                        source, output));
}

std::shared_ptr<Conversion> DecodeTab::decodeSHN(const QString &source, const QString &outputFolder,
                                                 const QString &format, NURVTaskQueue *queue) const
{
    return std::make_shared<DecodeSHNTask>(queue, programPath(shntool::program().name),
                                           shntool::fromShortenArguments(format, source, outputFolder));
}

} // namespace nurv
