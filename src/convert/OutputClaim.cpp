// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/OutputClaim.h"

#include "app/PathNames.h"

#include <QFileInfo>

#include <mutex>

namespace nurv {

namespace {

/// The outputs that are being made now, with their sources. Never destroyed: a worker
/// may outlast the application.
struct ActiveOutputs {
    std::mutex lock;
    QHash<QString, QString> sourceOfPlace;

    static ActiveOutputs &instance()
    {
        static ActiveOutputs *const outputs = new ActiveOutputs;
        return *outputs;
    }
};

QString placeOf(const QString &output)
{
    const QString folder = QFileInfo(folderOf(output)).canonicalFilePath();
    // A folder that is not there has no other name either.
    return folder.isEmpty() ? output : joinPath(folder, lastPathComponent(output));
}

} // namespace

std::optional<QString> OutputClaim::take(const QString &output, const QString &source, ConversionBatch *batch)
{
    const QString place = placeOf(output);
    ActiveOutputs &active = ActiveOutputs::instance();
    const std::scoped_lock lock(active.lock);
    if (const auto other = active.sourceOfPlace.constFind(place); other != active.sourceOfPlace.cend())
        return *other;
    if (batch != nullptr) {
        if (const auto earlier = batch->sourceOfOutput.constFind(place); earlier != batch->sourceOfOutput.cend())
            return *earlier;
        batch->sourceOfOutput.insert(place, source);
    }
    active.sourceOfPlace.insert(place, source);
    m_place = place;
    return std::nullopt;
}

void OutputClaim::release()
{
    if (m_place.isEmpty())
        return;
    ActiveOutputs &active = ActiveOutputs::instance();
    const std::scoped_lock lock(active.lock);
    active.sourceOfPlace.remove(m_place);
    m_place.clear();
}

} // namespace nurv
