// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConversionTab.h"

#include "app/NURVController.h"
#include "app/PathNames.h"
#include "convert/Conversion.h"
#include "convert/ConversionBatch.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskQueue.h"
#include "engine/NURVTaskResults.h"

namespace nurv {

ConversionTab::ConversionTab(NURVController &controller, const QString &label, const QString &besideSourceSetting)
    : BaseTab(controller, label)
{
    besideSourceButton.bindToSetting(besideSourceSetting);
    originals.follow(deleteOriginalsButton, besideSourceButton);
}

QString ConversionTab::folderFor(const Batch &batch, const QString &source) const
{
    if (!batch.chosenFolder)
        return folderOf(source);
    return batch.keepsFolders ? joinPath(*batch.chosenFolder, relativeFolderOf(source)) : *batch.chosenFolder;
}

void ConversionTab::executeCommand()
{
    if (fileNames().isEmpty() || !confirmDeletingOriginals(deleteOriginalsButton.isOn()))
        return;
    Batch batch{.chosenFolder = {},
                .keepsFolders = originals.keepFoldersButton.isOn(),
                .overwrite = originals.existingOutputs == ExistingOutputs::Replace,
                .results = {}};
    if (!chooseOutput(batch))
        return;
    shareResults(batch);
    queueJobs(batch);
    clearFiles();
    // Whoever wants it for the next files says so again.
    deleteOriginalsButton.setOn(false);
}

bool ConversionTab::chooseOutput(Batch &batch)
{
    if (besideSourceButton.isOn())
        return confirmBesideSources(batch);
    batch.chosenFolder = chooseOutputFolder();
    return batch.chosenFolder.has_value();
}

void ConversionTab::shareResults(Batch &batch) const
{
    if (!sharesResults())
        return;
    batch.results = std::make_shared<NURVTaskResults>();
    batch.results->setTaskAfterSetDone(afterBatchTask(batch));
}

std::vector<std::shared_ptr<Conversion>> ConversionTab::makeConversions(const Batch &batch) const
{
    std::vector<std::shared_ptr<Conversion>> conversions;
    for (const QString &source : fileNames()) {
        if (std::shared_ptr<Conversion> conversion = makeConversion(batch, source))
            conversions.push_back(std::move(conversion));
    }
    return conversions;
}

void ConversionTab::queueJobs(const Batch &batch)
{
    const QString foldersBelow = batch.keepsFolders ? batch.chosenFolder.value_or(QString()) : QString();
    ConversionBatch conversions(originals, deleteOriginalsButton.isOn(), foldersBelow);
    for (const std::shared_ptr<Conversion> &conversion : makeConversions(batch)) {
        if (conversions.add(conversion) && batch.results)
            batch.results->addTaskInSet(*conversion->asTask());
    }
    setPassedOver(conversions.passedOver());
    NURVTaskQueue &queue = nurvController().taskQueue();
    conversions.queueTasks(queue);
    // An interrupted batch that is run again may have nothing left to make but its list.
    const std::shared_ptr<NURVTask> followUp = batch.results ? batch.results->taskAfterSetDone() : nullptr;
    if (followUp && conversions.isEmpty() && !conversions.passedOver().isEmpty())
        queue.addTask(followUp);
}

NeededPrograms ConversionTab::neededPrograms() const
{
    NeededPrograms programs;
    if (fileNames().isEmpty())
        return programs;
    // Which programs there are does not depend on where the outputs go.
    Batch batch;
    shareResults(batch);
    for (const std::shared_ptr<Conversion> &conversion : makeConversions(batch))
        programs.add(conversion->asTask()->neededPrograms());
    if (const std::shared_ptr<NURVTask> followUp = batch.results ? batch.results->taskAfterSetDone() : nullptr)
        programs.add(followUp->neededPrograms());
    return programs;
}

} // namespace nurv
