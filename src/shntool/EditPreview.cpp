// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/EditPreview.h"

#include "app/PathNames.h"
#include "files/FileStatus.h"
#include "programs/ShntoolModes.h"
#include "samples/SoundLength.h"
#include "shntool/CueSheet.h"
#include "shntool/LengthValue.h"
#include "shntool/PcmWaveHeader.h"
#include "shntool/RunMessages.h"
#include "shntool/SplitTitles.h"
#include "shntool/TimeText.h"
#include "shntool/WaveInfo.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <sstream>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Of more obstacles only their number is told.
constexpr qsizetype kMostObstacles = 20;

const QString kOffSector = u"does not end on a sector boundary"_s;

/// A sound by its header: its shape, and how much of it there is.
struct Sound {
    WaveHeader header;
    std::uint64_t bytes = 0;

    [[nodiscard]] QString timeOf(std::uint64_t count) const
    {
        return QString::fromStdString(TimeText(false).of(header, count));
    }
    [[nodiscard]] bool isOffSector(std::uint64_t count) const
    {
        return header.isCdQuality() && count % kSectorBytes != 0;
    }
};

std::optional<Sound> soundOf(const QString &path)
{
    const std::optional<SoundLength> length = soundLength(path);
    if (!length || length->sampleRateHz <= 0 || length->channels <= 0 || length->bitsPerSample <= 0)
        return std::nullopt;
    const std::optional<std::int64_t> frames = length->heldFrames ? length->heldFrames : length->declaredFrames;
    if (!frames || *frames < 0)
        return std::nullopt;
    Sound sound{.header =
                    pcmHeader(static_cast<std::uint32_t>(length->sampleRateHz), static_cast<unsigned>(length->channels),
                              static_cast<unsigned>(length->bitsPerSample))};
    sound.bytes = static_cast<std::uint64_t>(*frames) * sound.header.blockAlign;
    return sound;
}

std::uint64_t toSector(std::uint64_t bytes)
{
    return (bytes + kSectorBytes - 1) / kSectorBytes * kSectorBytes;
}

QString endingOf(const QString &edit)
{
    return edit == u"trim" ? u"-trimmed"_s : edit == u"pad" ? u"-padded"_s : u"-stripped"_s;
}

} // namespace

void EditPreview::add(const QString &name, const QString &length, QStringList remarks, const QString &outputFolder)
{
    if (m_names.contains(name))
        m_obstacles.append(u"%1 would be made twice"_s.arg(name));
    m_names.insert(name);
    if (!splitTitles::canBeName(name))
        m_obstacles.append(u"%1 is too long for the name of a file"_s.arg(name));
    if (isThere(joinPath(outputFolder, name))) {
        remarks.prepend(u"exists already"_s);
        m_obstacles.append(u"%1 exists already"_s.arg(name));
    }
    m_outputs.push_back({name, length, std::move(remarks)});
}

EditPreview EditPreview::ofFiles(const QString &edit, const QStringList &sources, const QString &outputFolder,
                                 const QString &format, const std::function<bool()> &isUnwanted)
{
    EditPreview preview;
    std::optional<Sound> joined;
    bool isJoinKnown = true;
    for (const QString &source : sources) {
        if (isUnwanted())
            break;
        const std::optional<Sound> sound = soundOf(source);
        if (!sound)
            preview.m_obstacles.append(u"%1: its header does not tell how long it is"_s.arg(lastPathComponent(source)));
        if (edit == u"join") {
            isJoinKnown = isJoinKnown && sound.has_value();
            if (!joined)
                joined = sound;
            else if (sound)
                joined->bytes += sound->bytes;
            continue;
        }
        QString length;
        QStringList remarks;
        if (sound) {
            const std::uint64_t bytes =
                edit == u"pad" && sound->header.isCdQuality() ? toSector(sound->bytes) : sound->bytes;
            length = sound->timeOf(bytes);
            if (edit == u"trim")
                length.prepend(u"up to "_s);
            else if (sound->isOffSector(bytes))
                remarks.append(kOffSector);
            if (edit == u"pad" && bytes == sound->bytes)
                preview.m_obstacles.append(u"%1 needs no padding"_s.arg(lastPathComponent(source)));
        }
        preview.add(shntool::editedNames(source, endingOf(edit), format).first(), length, remarks, outputFolder);
    }
    if (edit == u"join" && !sources.isEmpty()) {
        const bool isKnown = isJoinKnown && joined;
        preview.add(shntool::joinedName(format), isKnown ? joined->timeOf(joined->bytes) : QString(),
                    isKnown && joined->isOffSector(joined->bytes) ? QStringList{kOffSector} : QStringList(),
                    outputFolder);
    }
    return preview;
}

EditPreview EditPreview::ofSplit(const QString &source, const QString &points, const QMap<QString, QString> &titles,
                                 const QString &outputFolder, const QString &format)
{
    EditPreview preview;
    const std::optional<Sound> sound = soundOf(source);
    if (!sound) {
        preview.m_obstacles.append(u"%1: its header does not tell how long it is"_s.arg(lastPathComponent(source)));
        return preview;
    }
    RunMessages messages("shntool", "split");
    messages.isQuiet = true;
    std::istringstream input(points.toStdString());
    std::vector<std::uint64_t> ends;
    for (const std::string &place : CueSheet::read(input).places) {
        const QString written = QString::fromStdString(place);
        try {
            const std::uint64_t end = LengthValue::parse(place).inBytes(sound->header, messages);
            if (end == 0 && ends.empty())
                continue;
            if (!ends.empty() && end <= ends.back())
                preview.m_obstacles.append(u"the point %1 does not come after the one before it"_s.arg(written));
            if (sound->header.blockAlign > 0 && end % sound->header.blockAlign != 0) {
                preview.m_brokenPoints.append(u"the point %1 lies within a sample: what follows would be noise"_s.arg(written));
                preview.m_obstacles.append(preview.m_brokenPoints.last());
            }
            if (end > sound->bytes)
                preview.m_obstacles.append(
                    u"the point %1 lies behind the end of the file, %2"_s.arg(written, sound->timeOf(sound->bytes)));
            ends.push_back(end);
        } catch (const LengthValue::Fault &) {
            const QString subject = written.isEmpty() ? u"a line"_s : u"\"%1\""_s.arg(written);
            preview.m_obstacles.append(
                u"%1 is no point in time: m:ss, m:ss.ff, m:ss.nnn or a number of bytes"_s.arg(subject));
        }
        if (ends.size() >= shntool::kMostPieces) {
            preview.m_obstacles.append(u"there are more than %1 pieces"_s.arg(shntool::kMostPieces));
            break;
        }
        if (preview.m_obstacles.size() >= kMostObstacles) {
            preview.m_obstacles.append(u"and more"_s);
            break;
        }
    }
    if (ends.empty())
        preview.m_obstacles.append(u"there are no points to split at"_s);
    else if (ends.back() < sound->bytes)
        ends.push_back(sound->bytes);
    std::uint64_t begin = 0;
    int number = 0;
    for (const std::uint64_t end : ends) {
        const std::uint64_t bytes = end > begin ? end - begin : 0;
        begin = std::max(begin, end);
        const QString piece = shntool::pieceName(++number, format);
        const QString title = titles.value(piece, piece);
        QStringList remarks;
        if (!splitTitles::canBeName(title))
            remarks.append(u"its title cannot be the name of a file"_s);
        if (sound->isOffSector(bytes))
            remarks.append(kOffSector);
        // The program makes it under its own name, which has to be free, too.
        if (piece != title && splitTitles::canBeName(title) && !isThere(joinPath(outputFolder, title))
            && isThere(joinPath(outputFolder, piece)))
            preview.m_obstacles.append(u"%1 exists already"_s.arg(piece));
        const bool isTaken = piece != title && splitTitles::canBeName(title) && isThere(joinPath(outputFolder, title));
        if (isTaken)
            remarks.append(u"%1 exists already"_s.arg(title));
        const bool hasTitle = splitTitles::canBeName(title) && !isTaken;
        preview.add(hasTitle ? title : piece, sound->timeOf(bytes), remarks, outputFolder);
    }
    return preview;
}

QString EditPreview::text() const
{
    qsizetype width = 0;
    qsizetype timeWidth = 0;
    for (const Output &output : m_outputs) {
        width = std::max(width, output.name.size());
        timeWidth = std::max(timeWidth, output.length.size());
    }
    QString text;
    for (const Output &output : m_outputs) {
        QString line = output.name.leftJustified(width) + u"  "_s + output.length.rightJustified(timeWidth);
        if (!output.remarks.isEmpty())
            line += u"  "_s + output.remarks.join(u", "_s);
        while (line.endsWith(u' '))
            line.chop(1);
        text += line + u'\n';
    }
    if (!m_obstacles.isEmpty())
        text += u"\nThis would fail:\n"_s;
    for (const QString &obstacle : m_obstacles)
        text += u"  "_s + obstacle + u'\n';
    return text;
}

} // namespace nurv
