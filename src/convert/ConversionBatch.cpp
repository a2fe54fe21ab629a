// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConversionBatch.h"

#include "convert/Conversion.h"
#include "engine/NURVTaskQueue.h"
#include "files/FileStatus.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace nurv {

ConversionBatch::ConversionBatch(const OriginalsControls &controls, bool deletesOriginals, const QString &foldersBelow)
    : m_deletesOriginals(deletesOriginals)
{
    m_batch->existingOutputs = controls.existingOutputs;
    m_batch->provesBeforeDeleting = controls.proveButton.isOn();
    m_batch->dropsMetadata = controls.dropMetadataButton.isOn();
    m_batch->foldersBelow = foldersBelow;
}

bool ConversionBatch::add(const std::shared_ptr<Conversion> &conversion)
{
    // Of two sources with one output only the first can be in it: the second one's job says so.
    const bool isItsOwnOutput = conversion->outputFile() == conversion->fileName();
    const bool isFirst = isItsOwnOutput || !m_outputs.contains(foldedName(conversion->outputFile()));
    if (!isItsOwnOutput)
        m_outputs.insert(foldedName(conversion->outputFile()));
    if (isFirst && m_batch->existingOutputs == ExistingOutputs::Skip && isThere(conversion->outputFile())
        && !conversion->faultOfExistingOutput()) {
        m_passedOver.append(conversion->fileName());
        return false;
    }
    m_conversions.push_back(conversion);
    return true;
}

void ConversionBatch::queueTasks(NURVTaskQueue &queue)
{
    // Sources of one name share an output, and only the first of them will be in it; on some
    // disks names differ in more than their case.
    QHash<QString, int> sharers;
    std::vector<OutputJournal::Planned> outputs;
    for (const std::shared_ptr<Conversion> &conversion : m_conversions) {
        ++sharers[foldedName(conversion->outputFile())];
        outputs.push_back({conversion->outputFile(), conversion->fileName()});
        if (const QString intermediate = conversion->intermediateFile(); !intermediate.isEmpty())
            outputs.push_back({intermediate, conversion->fileName()});
    }
    if (!outputs.empty()) {
        m_batch->journal = OutputJournal::begin(outputs);
        OutputJournal::prepareForTemporaries();
    }
    for (const std::shared_ptr<Conversion> &conversion : m_conversions) {
        conversion->setDeleteOriginal(m_deletesOriginals);
        if (m_deletesOriginals && sharers.value(foldedName(conversion->outputFile())) > 1)
            conversion->keepSource(u"another file of the list has the same output"_s);
        conversion->setBatch(m_batch);
    }
    for (const std::shared_ptr<Conversion> &conversion : m_conversions)
        queue.addTask(conversion->asTask());
}

} // namespace nurv
