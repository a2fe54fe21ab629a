// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dvda/DvdaProgram.h"

#include "dvda/AobFiles.h"
#include "dvda/AuthorLog.h"
#include "dvda/DiscFolder.h"
#include "dvda/DiscNames.h"
#include "dvda/DiscTables.h"
#include "dvda/DvdaOptions.h"
#include "dvda/PcmSource.h"
#include "support/SystemCalls.h"
#include "support/ToolError.h"
#include "support/ToolMain.h"
#include "text/VisibleText.h"

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

namespace nurv {

namespace {

constexpr char kHelp[] = R"(Usage: dvda [-l LOG] -o DIR -g FILE...

Makes the folders of a DVD-Audio disc, AUDIO_TS and VIDEO_TS, of WAV and FLAC
files, each a track, without loss. All files have the same sample rate, bits and
channels: 44100, 48000, 88200, 96000, 176400 or 192000 Hz, 16 or 24 bits, 1, 2
or 6 channels, as far as a disc takes them. At most 99 files.

  -o DIR        the folder that gets AUDIO_TS and VIDEO_TS; a disc that this
                program made there before is replaced, on success only, and
                nothing else
  -l LOG        the file that tells what was done
  -P0, -S, -f   taken, and without effect
  -g            what follows are the files
  --help        show this text
  --version     show the version

A line on standard output tells when the work on a file begins. Messages go to
standard error and to the log. The exit status is 0 on success, otherwise 1.
)";

struct TrackPlan {
    std::string name;
    std::optional<uint64_t> frames; ///< nothing: it does not say
};

/// With zeros in front.
std::string twoDigits(size_t number)
{
    return std::string(number < 10 ? "0" : "") + std::to_string(number);
}

/// One write, so that it comes as one piece, and one line whatever the name.
void tellBeginning(size_t index, const std::string &name)
{
    std::string shown;
    for (const char character : visibleText(name))
        shown += character == '\n' ? "\\x0A" : character == '\t' ? "\\x09" : std::string(1, character);
    const std::string line = "[Nurv]  Processing " + twoDigits(index) + ' ' + shown + '\n';
    if (writeAll(STDOUT_FILENO, {reinterpret_cast<const uint8_t *>(line.data()), line.size()}))
        return;
    if (errno == EPIPE)
        throw ClosedPipe();
    failWrite("standard output", errno);
}

/// Looks at all files before any sound is read.
class DiscPlan {
public:
    DiscPlan(const std::vector<std::string> &names, AuthorLog &log)
    {
        for (const std::string &name : names)
            add(name, log);
        checkLength();
    }

    [[nodiscard]] const DvdAudioFormat &format() const { return m_format; }
    [[nodiscard]] const std::vector<TrackPlan> &tracks() const { return m_tracks; }

private:
    void add(const std::string &name, AuthorLog &log)
    {
        const std::unique_ptr<PcmSource> source = PcmSource::open(name);
        if (m_tracks.empty())
            m_format = source->format();
        if (source->format() != m_format) {
            throw ToolError(ToolError::Kind::UnsupportedFormat, name + ": " + source->format().text() + " do not match "
                                                                    + m_tracks.front().name + ": " + m_format.text());
        }
        const std::optional<uint64_t> frames = source->promisedFrames();
        log.add(twoDigits(m_tracks.size()) + ' ' + name + ": " + source->format().text() + ", "
                + (frames ? std::to_string(*frames) : std::string("unknown")) + " samples");
        m_tracks.push_back({name, frames});
    }

    void checkLength() const
    {
        constexpr uint64_t kMostSectors = uint64_t{AobFiles::kMostSectors} * discNames::kMostAobs;
        uint64_t sectors = 0;
        for (const TrackPlan &track : m_tracks) {
            const uint64_t packs = packsOfTrack(m_format, track.frames.value_or(0), sectors == 0);
            if (packs > kMostSectors - sectors) {
                throw ToolError(ToolError::Kind::UnsupportedFormat,
                                track.name + ": up to its end there is more sound than a disc can hold");
            }
            sectors += packs;
        }
    }

    DvdAudioFormat m_format;
    std::vector<TrackPlan> m_tracks;
};

class DiscAuthor {
public:
    DiscAuthor(const DiscPlan &plan, const DiscFolder &folder, const std::string &output, AuthorLog &log)
        : m_plan(plan), m_folder(folder), m_log(log), m_shown(output + '/' + discNames::kAudioFolder),
          m_aobs(folder.workFolder(), m_shown)
    {
    }

    void run()
    {
        writeAobs();
        DiscFolder::Files files;
        for (auto &file : m_aobs.files())
            files.emplace_back(discNames::aob(static_cast<unsigned>(files.size()) + 1), std::move(file));
        const uint32_t firstSector = discTables::usualFirstSector(m_disc.aobs);
        addTable(files, discNames::kSimpleManager, discTables::simpleManager(m_disc, firstSector));
        addTable(files, discNames::kTitleSet, discTables::titleSet(m_disc));
        addTable(files, discNames::kTitleSetCopy, discTables::titleSet(m_disc));
        addTable(files, discNames::kManagerCopy, discTables::manager(m_disc));
        addTable(files, discNames::kManager, discTables::manager(m_disc));
        m_folder.commit(std::move(files));
        m_log.add("Complete: " + std::to_string(m_disc.tracks.size()) + " tracks, " + std::to_string(m_disc.sectors)
                  + " sectors of sound in " + std::to_string(m_disc.aobs) + " AOB files");
    }

private:
    void writeAobs()
    {
        AobTitle title(m_plan.format(), [this](std::span<const uint8_t> sectors) { m_aobs.write(sectors); });
        for (const TrackPlan &track : m_plan.tracks()) {
            tellBeginning(m_disc.tracks.size(), track.name);
            const std::unique_ptr<PcmSource> source = PcmSource::open(track.name);
            if (source->format() != m_plan.format() || source->promisedFrames() != track.frames)
                throw ToolError(ToolError::Kind::Read, "cannot read " + track.name + ": it changed while it was read");
            title.beginTrack();
            const uint64_t frames = source->decode([&](std::span<const uint8_t> pcm) { title.add(pcm); });
            m_disc.tracks.push_back(title.endTrack());
            m_log.add(twoDigits(m_disc.tracks.size() - 1) + " written: " + std::to_string(frames) + " samples");
        }
        title.finish();
        m_disc.format = m_plan.format();
        m_disc.sectors = static_cast<uint32_t>(m_aobs.sectors());
        m_disc.aobs = static_cast<unsigned>(m_aobs.files().size());
    }

    void addTable(DiscFolder::Files &files, const char *name, const std::vector<uint8_t> &bytes) const
    {
        auto file = std::make_unique<TemporaryFile>(m_folder.workFolder() + "/.nurv-dvda");
        if (!writeAll(file->descriptor(), bytes))
            failWrite(m_shown + '/' + name, errno);
        files.emplace_back(name, std::move(file));
    }

    const DiscPlan &m_plan;
    const DiscFolder &m_folder;
    AuthorLog &m_log;
    std::string m_shown;
    AobFiles m_aobs;
    AudioDisc m_disc;
};

void author(const DvdaOptions &options, AuthorLog &log)
{
    log.add("Folder: " + options.output);
    const DiscFolder folder(options.output);
    const DiscPlan plan(options.inputs, log);
    DiscAuthor(plan, folder, options.output, log).run();
}

int run(std::span<const std::string> arguments)
{
    const DvdaOptions options = DvdaOptions::fromArguments(arguments);
    AuthorLog log(options.log);
    try {
        author(options, log);
    } catch (const std::exception &error) {
        // Where the disk is full the log is, too; the first failure is the one that counts.
        try {
            log.add(std::string("Failed: ") + error.what());
        } catch (const ToolError &) {
            throw ToolError(ToolError::Kind::Write, std::string(error.what()) + " (and the log cannot be written)");
        }
        throw;
    }
    return EXIT_SUCCESS;
}

} // namespace

int runDvda(int argc, char **argv)
{
    return toolMain({"dvda", kHelp}, argc, argv, run);
}

} // namespace nurv
