// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/OutputClaim.h"

#include "app/PathNames.h"

#include <QFileInfo>

namespace nurv {

namespace {

/// The outputs that are being made now, with their sources.
QHash<QString, QString> &sourceOfPlace()
{
    static QHash<QString, QString> sources;
    return sources;
}

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
    if (const auto active = sourceOfPlace().constFind(place); active != sourceOfPlace().cend())
        return *active;
    if (batch != nullptr) {
        if (const auto earlier = batch->sourceOfOutput.constFind(place); earlier != batch->sourceOfOutput.cend())
            return *earlier;
        batch->sourceOfOutput.insert(place, source);
    }
    sourceOfPlace().insert(place, source);
    m_place = place;
    return std::nullopt;
}

void OutputClaim::release()
{
    if (!m_place.isEmpty())
        sourceOfPlace().remove(m_place);
    m_place.clear();
}

} // namespace nurv
