// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DecodeTab.h"

#include "app/NURVController.h"
#include "app/PathNames.h"
#include "convert/Conversion.h"
#include "convert/ConversionArguments.h"
#include "convert/ConversionBatch.h"
#include "convert/DecodeALACTask.h"
#include "convert/DecodeAPETask.h"
#include "convert/DecodeFlacTask.h"
#include "convert/DecodeSHNTask.h"
#include "convert/DecodeTTATask.h"
#include "convert/DecodeWavpackTask.h"
#include "engine/NURVTaskQueue.h"

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace nurv {

DecodeTab::DecodeTab(NURVController &controller)
    : BaseTab(controller, u"decode"_s), outputFormatMatrix({u"WAV"_s, u"AIFF"_s}, 2),
      flacOptionsLabel(u"FLAC options"_s)
{
    sourceDecodeButton.bindToSetting(u"decodeToSourceDirectory"_s);
    originals.follow(deleteOriginalsButton, sourceDecodeButton);
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
    BaseTab::filesAdded();
}

void DecodeTab::clearFiles()
{
    BaseTab::clearFiles();
    showFLacOptions(false);
}

void DecodeTab::executeCommand()
{
    if (fileNames().isEmpty())
        return;
    if (!confirmDeletingOriginals(deleteOriginalsButton.isOn()))
        return;
    std::optional<QString> chosenFolder;
    if (!sourceDecodeButton.isOn()) {
        chosenFolder = chooseOutputFolder();
        if (!chosenFolder)
            return;
    }
    queueTasks(chosenFolder);
    clearFiles();
}

void DecodeTab::queueTasks(const std::optional<QString> &chosenFolder)
{
    const bool keepsFolders = chosenFolder && originals.keepFoldersButton.isOn();
    ConversionBatch batch(originals, deleteOriginalsButton.isOn(), keepsFolders ? *chosenFolder : QString());
    for (const QString &source : fileNames()) {
        const QString folder = !chosenFolder  ? folderOf(source)
                               : keepsFolders ? joinPath(*chosenFolder, relativeFolderOf(source))
                                              : *chosenFolder;
        if (const std::shared_ptr<Conversion> conversion = makeConversion(source, folder))
            batch.add(conversion);
    }
    setPassedOver(batch.passedOver());
    batch.queueTasks(nurvController().taskQueue());
}

std::shared_ptr<Conversion> DecodeTab::makeConversion(const QString &source, const QString &outputFolder) const
{
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
    const QString output = outputPath(outputFolder, source, conversionArguments::decodedExtension(format));
    return std::make_shared<DecodeFlacTask>(
        source, queue, joinPath(pathToCommandLineTools(), u"flac"_s),
        conversionArguments::decodeFlac(format, flacKeepForeignMetadataButton.isOn(), decodeFlacThroughErrors.isOn(),
                                        source, output));
}

std::shared_ptr<Conversion> DecodeTab::decodeSHN(const QString &source, const QString &outputFolder,
                                                 const QString &format, NURVTaskQueue *queue) const
{
    return std::make_shared<DecodeSHNTask>(queue, joinPath(pathToCommandLineTools(), u"shntool"_s),
                                           conversionArguments::decodeShorten(format, source, outputFolder));
}

} // namespace nurv
