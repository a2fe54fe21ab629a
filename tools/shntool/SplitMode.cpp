// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SplitMode.h"

#include "shntool/FileWaveOutput.h"
#include "shntool/LengthValue.h"
#include "shntool/ModeRun.h"
#include "shntool/NumberFormat.h"
#include "shntool/PcmWaveHeader.h"
#include "shntool/Progress.h"
#include "shntool/WavePass.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <limits>
#include <utility>

#include <unistd.h>

namespace nurv {

namespace {

/// More than that around a place to split at is read twice instead of being kept.
constexpr uint64_t kMostKeptBytes = uint64_t{64} << 20;

} // namespace

SplitMode::SplitMode(ModeRun &run) : Mode(run) {}

SplitMode::~SplitMode() = default;

void SplitMode::takeOption(char option, const char *value)
{
    switch (option) {
    case 'c':
        m_firstNumber = std::atoi(value);
        if (m_firstNumber < 0)
            run().messages.failWithHelp("starting count cannot be negative");
        if (m_firstNumber > std::numeric_limits<int>::max() - kMostPieces)
            run().messages.failWithHelp("starting count is too large");
        break;
    case 'e': m_leadInText = value; break;
    case 'f': m_placesFile = value; break;
    case 'l': m_repeated = value; break;
    case 'm': m_replacements = value; break;
    case 'n': m_numberFormat = value; break;
    case 't': m_cueFormat = value; break;
    case 'u': m_leadOutText = value; break;
    default: readTracks(value); break;
    }
}

/// "2-6,9": numbers and ranges, either way round.
void SplitMode::readTracks(const std::string &list)
{
    m_wanted.emplace();
    const auto checked = [this](int number) {
        if (number < 1 || number > kMostPieces) {
            run().messages.fail("track number to extract (" + std::to_string(number) + ") is not in range [1 .. "
                               + std::to_string(kMostPieces) + "]");
        }
        return number;
    };
    for (size_t start = 0; start < list.size();) {
        const size_t end = std::min(list.find(',', start), list.size());
        const std::string part = list.substr(start, end - start);
        start = end + 1;
        if (part.empty())
            continue;
        const size_t dash = part.find('-');
        const int first = checked(std::atoi(part.substr(0, dash).c_str()));
        int last = first;
        if (dash != std::string::npos)
            last = dash + 1 == part.size() ? kMostPieces : checked(std::atoi(part.c_str() + dash + 1));
        for (int number = std::min(first, last); number <= std::max(first, last); ++number)
            m_wanted->insert(number);
    }
}

bool SplitMode::isWanted(size_t piece) const
{
    return !m_wanted || m_wanted->contains(static_cast<int>(piece) + 1);
}

int SplitMode::execute()
{
    if (!run().names.hasArguments() && !run().names.listName && !m_placesFile && !m_repeated) {
        run().messages.failWithHelp("if file to be split is not given, then a split point file must be specified");
    }
    // Places may follow the one name.
    run().names.readsAhead = false;
    const std::optional<std::string> name = run().names.next();
    if (!name)
        run().messages.failWithHelp("need exactly one file to process");
    std::optional<WaveInfo> info = run().files.examine(*name);
    if (!info)
        run().messages.fail("cannot continue due to error(s) shown above");
    m_info = std::move(*info);
    readPlaces();
    endPlaces();
    namePieces();
    if (!m_lastIsWarned)
        warnOfPiece(m_places.size() - 1);
    readLeads();
    splitAll();
    return 0;
}

void SplitMode::readPlaces()
{
    if (m_repeated)
        return addRepeatedPlaces(*m_repeated);
    if (m_placesFile) {
        std::ifstream file(*m_placesFile);
        if (!file)
            run().messages.fail("could not open split point file: [" + *m_placesFile + "]");
        run().names.addSource(*m_placesFile);
        m_sheet = CueSheet::read(file);
    } else {
        if (::isatty(STDIN_FILENO) != 0)
            run().messages.tell("enter split points:\n");
        m_sheet = CueSheet::read(std::cin);
    }
    for (const std::string &place : m_sheet.places)
        addPlace(parseLength(place, run().messages).inBytes(m_info.header, run().messages));
}

void SplitMode::addRepeatedPlaces(const std::string &length)
{
    const uint64_t step = parseLength(length, run().messages).inBytes(m_info.header, run().messages);
    if (step >= m_info.dataBytes()) {
        run().messages.fail("repeated split size is not less than data size of input file -- nothing to do");
    }
    if (step == 0)
        failForNumber();
    for (uint64_t place = step; place < m_info.dataBytes(); place += step)
        addPlace(place);
}

void SplitMode::failForNumber() const
{
    run().messages.fail("too many split files would be created -- maximum is " + std::to_string(kMostPieces));
}

void SplitMode::addPlace(uint64_t place)
{
    if (place == 0 && m_places.empty()) {
        run().messages.warn("discarding initial zero-valued split point");
        return;
    }
    if (m_places.size() + 1 >= static_cast<size_t>(kMostPieces))
        failForNumber();
    if (!m_places.empty() && place <= m_places.back()) {
        run().messages.fail("split point " + std::to_string(place) + " is not greater than previous split point "
                           + std::to_string(m_places.back()));
    }
    m_places.push_back(place);
    warnOfPiece(m_places.size() - 1);
}

void SplitMode::endPlaces()
{
    if (m_places.empty())
        run().messages.fail("no split points given -- nothing to do");
    if (m_places.back() > m_info.dataBytes())
        run().messages.fail("split points go beyond input file's data size");
    if (m_places.back() < m_info.dataBytes())
        m_places.push_back(m_info.dataBytes());
    else
        m_lastIsWarned = true;
}

uint64_t SplitMode::bytesOfPiece(size_t piece) const
{
    return m_places[piece] - (piece == 0 ? 0 : m_places[piece - 1]);
}

void SplitMode::warnOfPiece(size_t piece) const
{
    if (!m_info.isCdQuality() || !isWanted(piece))
        return;
    const uint64_t bytes = bytesOfPiece(piece);
    const std::string file = "file " + std::to_string(piece + 1);
    const bool isCut = bytes % kSectorBytes != 0;
    if (bytes < kShortestTrackBytes) {
        run().messages.warn(file + " will be too short to be burned"
                           + (isCut ? ", and will not be cut on a sector boundary" : ""));
    } else if (isCut) {
        run().messages.warn(file + " will not be cut on a sector boundary");
    }
}

void SplitMode::readLeads()
{
    if (m_leadInText)
        m_leadIn = parseLength(*m_leadInText, run().messages).inBytes(m_info.header, run().messages);
    if (m_leadOutText)
        m_leadOut = parseLength(*m_leadOutText, run().messages).inBytes(m_info.header, run().messages);
    const size_t pieces = m_places.size();
    for (size_t i = 0; i + 1 < pieces; ++i) {
        if (m_leadIn > bytesOfPiece(i))
            run().messages.fail("lead-in length exceeds length of one or more files");
        if (m_leadOut > bytesOfPiece(i + 1))
            run().messages.fail("lead-out length exceeds length of one or more files");
    }
}

std::string SplitMode::numberOf(size_t piece) const
{
    const std::optional<std::string> number = formattedNumber(m_numberFormat, m_firstNumber + static_cast<int>(piece));
    if (!number)
        run().messages.fail("invalid number output format: [" + m_numberFormat + "]");
    return *number;
}

void SplitMode::namePieces()
{
    if (m_cueFormat)
        return nameByCueSheet();
    for (size_t i = 0; i < m_places.size(); ++i)
        m_names.push_back(run().outputs.nameOf("split-track", numberOf(i)));
}

void SplitMode::nameByCueSheet()
{
    if (!m_sheet.isSheet) {
        for (size_t i = 0; i < m_places.size(); ++i)
            m_names.push_back(run().outputs.nameAround(numberOf(i)));
        return;
    }
    if (m_sheet.tracks.size() < m_places.size())
        run().messages.fail("not enough TITLE keywords in CUE sheet to name each output file");
    const CueNames names(*m_cueFormat, m_replacements);
    std::set<std::string> known;
    for (size_t i = 0; i < m_places.size(); ++i) {
        std::string name = names.nameOf(m_sheet, i, numberOf(i));
        std::ranges::replace(name, '\0', '-');
        if (name.find('/') != std::string::npos) {
            run().messages.warn("converting illegal path character '/' to '-' in CUE-originated filename: [" + name
                               + "]");
            std::ranges::replace(name, '/', '-');
        }
        if (!known.insert(name).second)
            m_duplicate = m_duplicate.value_or(name);
        m_names.push_back(run().outputs.nameAround(name));
    }
    if (m_duplicate)
        run().messages.fail("detected duplicate filenames: [" + *m_duplicate + "]");
}

void SplitMode::splitAll()
{
    for (size_t i = 0; i < m_places.size(); ++i)
        splitPiece(i);
    if (!m_outputs.commit(run().messages))
        run().messages.fail("failed to split file");
}

void SplitMode::failPiece(Progress &progress, WaveOutput &output, const std::string &why)
{
    progress.fail();
    run().messages.warn(why);
    if (const std::string complaint = output.complaint(); !complaint.empty())
        run().messages.warn(complaint);
    m_outputs.clear();
    run().messages.fail("failed to split file");
}

void SplitMode::splitPiece(size_t piece)
{
    const bool isLast = piece + 1 == m_places.size();
    const uint64_t bytes = bytesOfPiece(piece) + (piece > 0 ? m_leadIn : 0) + (isLast ? 0 : m_leadOut);
    const std::vector<uint8_t> header = makeWaveHeader(m_info.header, bytes);
    std::string name = isWanted(piece) ? m_names[piece] : std::string("/dev/null");
    std::unique_ptr<WaveOutput> opened;
    if (!isWanted(piece))
        opened = std::make_unique<StreamWaveOutput>(-1);
    else
        opened = run().outputs.open(name, nullptr);
    Progress progress(run().messages, {.action = isWanted(piece) ? "Splitting" : "Skipping ",
                                      .file = m_info.fileName,
                                      .fileDetail = run().lengthOf(m_info),
                                      .link = "-->",
                                      .otherFile = name,
                                      .otherDetail = run().time.of(m_info.header, bytes),
                                      .totalBytes = header.size() + bytes});
    if (!opened) {
        progress.fail();
        m_outputs.clear();
        run().messages.fail(run().outputs.refusalOr("could not open output file"));
    }
    WaveOutput &output = m_outputs.add(name, std::move(opened));
    if (!output.write(header))
        failPiece(progress, output, "error while writing " + std::to_string(header.size()) + "-byte WAVE header");
    progress.add(header.size());
    writePiece(piece, output, progress);
    if (!output.write(std::vector<uint8_t>(bytes % 2)))
        failPiece(progress, output, "error while NULL-padding odd-sized data chunk");
    if (isLast && !m_pass->finish())
        failPiece(progress, output, "possibly truncated and/or corrupt file: [" + m_info.fileName + "]");
    if (!output.complete())
        failPiece(progress, output, "could not complete output file: [" + name + "]");
    progress.succeed();
}

void SplitMode::openInput(WaveOutput &output, Progress &progress)
{
    m_pass = std::make_unique<WavePass>(run().files, m_info);
    m_position = 0;
    if (!m_pass->isOpen())
        failPiece(progress, output, "could not reopen input file");
}

void SplitMode::copy(WaveOutput &output, uint64_t count, Progress &progress)
{
    if (!m_pass->transfer(&output, count, &progress))
        failPiece(progress, output, "error while transferring " + std::to_string(count) + " bytes of data");
    m_position += count;
}

/// Writes the data from `start` to the end of the piece, leads included. What the next piece begins with is kept.
void SplitMode::writePiece(size_t piece, WaveOutput &output, Progress &progress)
{
    const bool isLast = piece + 1 == m_places.size();
    const uint64_t start = piece == 0 ? 0 : m_places[piece - 1] - m_leadIn;
    const uint64_t end = m_places[piece] + (isLast ? 0 : m_leadOut);
    if (!m_pass || (start < m_position && m_around.empty())) {
        openInput(output, progress);
        if (!m_pass->transfer(nullptr, start, nullptr))
            failPiece(progress, output, "error while transferring " + std::to_string(start) + " bytes of data");
        m_position = start;
    }
    if (!m_around.empty()) {
        if (!output.write(m_around)) {
            failPiece(progress, output,
                      "error while transferring " + std::to_string(m_around.size()) + " bytes of lead-in/lead-out");
        }
        progress.add(m_around.size());
        m_around.clear();
    }
    const uint64_t keptStart = isLast ? end : m_places[piece] - m_leadIn;
    if (keptStart == end || keptStart < m_position || end - keptStart > kMostKeptBytes)
        return copy(output, end - m_position, progress);
    copy(output, keptStart - m_position, progress);
    m_around.resize(static_cast<size_t>(end - keptStart));
    if (m_pass->read(m_around) != m_around.size() || !output.write(m_around)) {
        failPiece(progress, output,
                  "error while transferring " + std::to_string(m_around.size()) + " bytes of lead-in/lead-out");
    }
    progress.add(m_around.size());
    m_position = end;
}

} // namespace nurv
