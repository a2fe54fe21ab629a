// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/ChecksumCommands.h"

#include "app/PathNames.h"
#include "checksum/ChecksumList.h"
#include "checksum/ChecksumTab.h"
#include "cli/ArgumentParser.h"
#include "cli/BatchOptions.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

std::unique_ptr<BaseTab> makeChecksumTab(NURVController &controller, ChecksumTab::Command command)
{
    auto tab = std::make_unique<ChecksumTab>(controller);
    tab->commandOptions.setSelectedIndex(command);
    return tab;
}

std::vector<OptionSpec> creatingOptions()
{
    return {
        {.name = u"kind"_s,
         .valueName = u"KIND"_s,
         .summary = u"md5 (default), st5, ffp or all"_s,
         .manual = u"What is listed: *md5* the digest of each file's bytes, *st5* that of its samples, *ffp* the fingerprint "
                   "that a FLAC file holds; *all* makes the three in one go, and decodes every file on the way. Files of other "
                   "kinds are left out of ST5 and FFP lists."_s,
         .choices = {u"md5"_s, u"st5"_s, u"ffp"_s, u"all"_s},
         .standard = u"md5"_s,
         .set = setsChoice(&ChecksumTab::createChecksumOptions)},
        {.name = u"output"_s,
         .valueName = u"FILE"_s,
         .summary = u"write the list there"_s,
         .manual = u"The list to write. A file of that name is replaced, after a question unless --overwrite is given."_s,
         .formats = {u"md5"_s, u"st5"_s, u"ffp"_s},
         .excluded = {u"beside-source"_s}},
        {.name = u"output-dir"_s,
         .valueName = u"DIR"_s,
         .summary = u"with --kind all: write the lists into that folder"_s,
         .manual = u"With --kind all: the folder of the lists, which replace others of their names after a question unless "
                   "--overwrite is given. Lists that are there already are not listed themselves."_s,
         .isFolder = true,
         .formats = {u"all"_s},
         .excluded = {u"beside-source"_s}},
        {.name = u"beside-source"_s,
         .summary = u"write the list into the folder of the files"_s,
         .manual = u"Writes the list into the folder of the files, under the name that the preferences give it, and in the place "
                   "of an older one; with --kind all after a question. Files of several folders need --output, but for FFP: that "
                   "list goes into the folder of the first one."_s,
         .set = setsCheck(&ChecksumTab::sourceSaveButton)},
        {.name = u"overwrite"_s,
         .summary = u"replace a list that exists"_s,
         .manual = u"Replaces a list that exists without a question."_s,
         .partners = {u"output"_s, u"output-dir"_s},
         .set = setsCheck(&ChecksumTab::replaceListsButton)},
    };
}

} // namespace

const CommandSpec &ChecksumCreateCommand::spec() const
{
    static const CommandSpec spec{
        .name = u"checksum create"_s,
        .summary = u"write a list of MD5, ST5 or FLAC fingerprints"_s,
        .synopsis = u"[OPTION]... (--output FILE | --output-dir DIR | --beside-source) PATH..."_s,
        .details = u"Lists every file that the paths name; folders are searched with all that is in them.\n"
                   "A file that cannot be read is told, and gives status 1."_s,
        .selector = u"kind"_s,
        .options = joined(creatingOptions(), batchOptions())};
    return spec;
}

std::unique_ptr<BaseTab> ChecksumCreateCommand::makeTab(NURVController &controller) const
{
    return makeChecksumTab(controller, ChecksumTab::CreateList);
}

QStringList ChecksumCreateCommand::optionsWithoutEffect(const ParsedArguments &arguments, const QStringList &files) const
{
    const QString kind = arguments.value(u"kind"_s);
    if (kind != u"st5" && kind != u"ffp")
        return {};
    const auto leftOut = std::count_if(files.begin(), files.end(), [&](const QString &path) {
        return kind == u"ffp" ? !checksumList::takesFfp(path) : !checksumList::takesSt5(path);
    });
    if (leftOut == 0)
        return {};
    return {u"%1 of %2 files have no place in %3"_s.arg(leftOut).arg(files.size()).arg(
        kind == u"ffp" ? u"an FFP list, which holds FLAC files"_s : u"an ST5 list, which holds what shntool reads"_s)};
}

const CommandSpec &ChecksumVerifyCommand::spec() const
{
    static const CommandSpec spec{
        .name = u"checksum verify"_s,
        .summary = u"check files against MD5, ST5 and FFP lists"_s,
        .synopsis = u"[OPTION]... LIST..."_s,
        .details = u"Checks every .md5, .st5, .ffp and .ffp.txt list that the paths name. Status 0 means that\n"
                   "every file of every list was read and is what its list says."_s,
        .options = joined(
            {{.name = u"any-list"_s,
              .summary = u"understand lists of other programs, too"_s,
              .manual = u"Understands lists of other programs, too: those of md5sum with or without an asterisk and with escaped "
                        "names, BSD lines, CRLF, byte-order marks, Latin-1, digests in capitals, backslashes for slashes, "
                        "folders in FFP names, names in other capitals or another form of Unicode."_s,
              .set = setsCheck(&ChecksumTab::anyListButton)}},
            batchOptions())};
    return spec;
}

bool ChecksumVerifyCommand::takes(const QString &path) const
{
    return checksumList::kindOfList(path).has_value();
}

std::unique_ptr<BaseTab> ChecksumVerifyCommand::makeTab(NURVController &controller) const
{
    return makeChecksumTab(controller, ChecksumTab::VerifyLists);
}

const CommandSpec &ChecksumTestCommand::spec() const
{
    static const CommandSpec spec{
        .name = u"checksum test"_s,
        .summary = u"decode lossless files and look for damage"_s,
        .synopsis = u"[OPTION]... PATH..."_s,
        .details = u"Decodes every FLAC, Monkey's Audio, WavPack and TTA file that the paths name, and keeps\n"
                   "nothing. Status 0 means that every decoder came to the end of its file without an error."_s,
        .options = batchOptions()};
    return spec;
}

bool ChecksumTestCommand::takes(const QString &path) const
{
    static const QStringList words{u"FLAC"_s, u"APE"_s, u"WV"_s, u"TTA"_s};
    return words.contains(formatWord(path));
}

std::unique_ptr<BaseTab> ChecksumTestCommand::makeTab(NURVController &controller) const
{
    return makeChecksumTab(controller, ChecksumTab::VerifyLossless);
}

} // namespace nurv
