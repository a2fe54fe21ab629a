// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DecodeTab.h"

#include "app/NURVController.h"
#include "app/PathNames.h"
#include "convert/ConversionArguments.h"
#include "convert/ConversionPrompts.h"
#include "convert/DecodeFlacTask.h"
#include "convert/DecodeSHNTask.h"
#include "engine/NURVTaskQueue.h"

#include <QHash>

#include <algorithm>
#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {

DecodeTab::DecodeTab(NURVController &controller)
    : BaseTab(controller, u"decode"_s), outputFormatMatrix({u"WAV"_s, u"AIFF"_s}, 2),
      flacOptionsLabel(u"FLAC options"_s)
{
    sourceDecodeButton.bindToSetting(u"decodeToSourceDirectory"_s);
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
    if (const QStringList sources = unavailableSources(); !sources.isEmpty()) {
        tellFormatIsNotAvailable(nurvController().prompts(), sources);
        return;
    }
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

QStringList DecodeTab::unavailableSources() const
{
    return sourcesOfFormats(fileNames(), {u"WV"_s, u"TTA"_s, u"M4A"_s, u"APE"_s});
}

void DecodeTab::queueTasks(const std::optional<QString> &chosenFolder)
{
    NURVTaskQueue *const queue = &nurvController().taskQueue();
    const QString format = outputFormatMatrix.selectedTitle();
    std::vector<std::shared_ptr<ConversionTask>> tasks;
    // Sources of one name share an output, and only the first of them will be in it.
    QHash<QString, int> sharers;
    for (const QString &source : fileNames()) {
        const QString folder = chosenFolder ? *chosenFolder : folderOf(source);
        const QString type = formatWord(source);
        std::shared_ptr<ConversionTask> task;
        if (type == u"FLAC")
            task = decodeFlac(source, folder, format, queue);
        else if (type == u"SHN")
            task = decodeSHN(source, folder, format, queue);
        if (!task)
            continue;
        ++sharers[task->outputFile()];
        tasks.push_back(task);
    }
    const auto batch = std::make_shared<ConversionBatch>();
    for (const std::shared_ptr<ConversionTask> &task : tasks) {
        task->setDeleteOriginal(deleteOriginalsButton.isOn() && sharers.value(task->outputFile()) == 1);
        task->setBatch(batch);
        queue->addTask(task);
    }
}

std::shared_ptr<ConversionTask> DecodeTab::decodeFlac(const QString &source, const QString &outputFolder,
                                                      const QString &format, NURVTaskQueue *queue) const
{
    const QString output = outputPath(outputFolder, source, conversionArguments::decodedExtension(format));
    return std::make_shared<DecodeFlacTask>(
        source, queue, joinPath(pathToCommandLineTools(), u"flac"_s),
        conversionArguments::decodeFlac(format, flacKeepForeignMetadataButton.isOn(), decodeFlacThroughErrors.isOn(),
                                        source, output));
}

std::shared_ptr<ConversionTask> DecodeTab::decodeSHN(const QString &source, const QString &outputFolder,
                                                     const QString &format, NURVTaskQueue *queue) const
{
    return std::make_shared<DecodeSHNTask>(queue, joinPath(pathToCommandLineTools(), u"shntool"_s),
                                           conversionArguments::decodeShorten(format, source, outputFolder));
}

} // namespace nurv
