// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/TagsCommands.h"

#include "app/PathNames.h"
#include "base/NurvFailure.h"
#include "cli/BatchOptions.h"
#include "cli/Console.h"
#include "cli/TagsJson.h"
#include "cli/TagsRestoring.h"
#include "cli/TagsWriting.h"
#include "cli/FilesRun.h"
#include "files/FileNames.h"
#include "tagging/CueSheetTagImporter.h"
#include "tagging/TagFields.h"
#include "tagging/TagFiles.h"
#include "tagging/TagPreview.h"
#include "tags/PictureView.h"
#include "tags/StoredTags.h"
#include "tags/TagLibTagsHelper.h"
#include "text/PrintableText.h"

#include <QFileInfo>
#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

OptionSpec dryRunOption()
{
    return {.name = u"dry-run"_s,
            .summary = u"tell the old and new values of what would change, and write nothing"_s,
            .manual =
                u"Tells the old and new values of every tag that would change, file by file, and writes nothing."_s};
}

// show

QString readableTags(const QString &name, const TagsObject &record, const StoredTags &stored)
{
    QString text = printableLine(name) + u'\n';
    const auto add = [&text](const QString &caption, const QString &value) {
        text += u"    %1: %2\n"_s.arg(printableLine(caption), printableLine(value));
    };
    for (const TagField &field : tagFields()) {
        if (const TagsObject::Text &value = (record.*field.text)(); value && !value->isEmpty())
            add(QString::fromLatin1(field.caption), *value);
    }
    const QMap<QString, QString> &customTags = record.customTagsDictionary();
    for (auto tag = customTags.cbegin(); tag != customTags.cend(); ++tag)
        add(tag.key(), tag.value());
    if (record.albumArt())
        add(u"Picture"_s, pictureWords(*record.albumArt()));
    else if (record.albumArtFault())
        add(u"Picture"_s, *record.albumArtFault());
    if (!stored.isEmpty())
        text += u"    (%1 as stored; --json prints all of them)\n"_s.arg(
            stored.size() == 1 ? u"1 tag"_s : u"%1 tags"_s.arg(stored.size()));
    return text;
}

class TagsShowCommand final : public Command {
public:
    [[nodiscard]] const CommandSpec &spec() const override
    {
        static const CommandSpec spec{
            .name = u"tags show"_s,
            .summary = u"tell the tags of files"_s,
            .synopsis = u"[OPTION]... FILE..."_s,
            .details = u"Tells the tags of every FLAC, MP3, Monkey's Audio, WavPack and M4A file that is named.\n"
                       "With --json it also prints every tag as it is stored, pictures and repeated fields\n"
                       "included: a backup that \"nurv tags set --from-json\" gives the files back."_s,
            .options = reportOptionsWithoutJobs(u"print one JSON object per file, with all of its tags, and one for the whole"_s)};
        return spec;
    }
    [[nodiscard]] ExitStatus run(const ParsedArguments &arguments, Console &console) const override
    {
        FilesRun run(arguments, arguments.operands, console, tagsPage());
        const bool isJson = arguments.has(u"json"_s);
        for (const QString &path : run.files()) {
            run.forFile(path, [&]() -> QJsonObject {
                const TagsObject record = tagFiles::read(path).value_or(TagsObject());
                // Throws for what is no such file; the other reading makes blank tags of it.
                const StoredTags stored = storedTags::read(*tagFiles::formatOf(path), path);
                if (isJson)
                    return tagsJson::objectOf(run.nameOf(path), path, record, stored);
                run.print(readableTags(run.nameOf(path), record, stored));
                return {};
            });
        }
        return run.finish({});
    }
};

// Writing

bool isNumberInApeTags(const TagField &field)
{
    return field.name == u"date" || field.name == u"track";
}

void tellOfNoEffect(FilesRun &run, const TagsObject &record)
{
    const auto count = [&run](const auto &isMeant) {
        return std::count_if(run.files().begin(), run.files().end(),
                             [&](const QString &path) { return isMeant(*tagFiles::formatOf(path)); });
    };
    const auto tell = [&run](const QString &option, auto number, const QString &kinds) {
        if (number > 0)
            run.note(
                u"%1 has no effect on %2 of %3 files: %4"_s.arg(option).arg(number).arg(run.files().size()).arg(kinds));
    };
    const auto apeFiles = count(tagsWriting::hasApeTags);
    for (const TagField &field : tagFields()) {
        const TagsObject::Text &text = (record.*field.text)();
        if (!text)
            continue;
        const QString option = u"--"_s + field.name.toString();
        if (!field.isInApeTags)
            tell(option, apeFiles, u"Monkey's Audio and WavPack files do not take it"_s);
        else if (apeFiles > 0 && isNumberInApeTags(field) && QString::number(text->toInt()) != *text
                 && !text->isEmpty())
            run.note(u"%1: Monkey's Audio and WavPack files get the number that it begins with"_s.arg(option));
    }
    if (!record.customTagsDictionary().isEmpty())
        tell(u"--custom"_s, count([](TagFormat format) { return format != TagFormat::Flac; }),
             u"only FLAC files take it"_s);
    if (record.albumArt())
        tell(u"--picture"_s, apeFiles, u"Monkey's Audio and WavPack files take no picture"_s);
}

class TagsSetCommand final : public Command {
public:
    [[nodiscard]] const CommandSpec &spec() const override
    {
        static const CommandSpec spec{
            .name = u"tags set"_s,
            .summary = u"write tags into files"_s,
            .synopsis = u"[OPTION]... FILE..."_s,
            .details = u"Writes the tags that options give into every FLAC, MP3, Monkey's Audio, WavPack and M4A\n"
                       "file that is named. All other tags stay as they are, unless --empty is given. A file is\n"
                       "replaced when its new form is complete; one that cannot be written stays as it was."_s,
            .options = joined(joined(fieldOptions(), otherOptions()),
                              reportOptionsWithoutJobs(u"print one JSON object per file and one for the whole"_s))};
        return spec;
    }
    [[nodiscard]] ExitStatus run(const ParsedArguments &arguments, Console &console) const override
    {
        if (arguments.has(u"from-json"_s))
            return restoreTags(arguments, console);
        const TagsObject record = recordOf(arguments);
        FilesRun run(arguments, arguments.operands, console, tagsPage());
        for (const QString &option : {u"title"_s, u"track"_s}) {
            if (arguments.has(option) && run.files().size() > 1)
                throw UsageError(u"--%1 goes with one file, and there are %2"_s.arg(option).arg(run.files().size()));
        }
        tellOfNoEffect(run, record);
        const bool isTrial = arguments.has(u"dry-run"_s);
        if (!isTrial)
            run.setJournal(tagFiles::beginJournal(run.files()));
        for (const QString &path : run.files()) {
            run.forFile(path, [&] {
                return tagsWriting::writeOrTell(run, {.path = path, .record = record}, arguments.has(u"empty"_s), isTrial);
            });
        }
        return run.finish(isTrial ? u"looked at, none written"_s : u"written"_s);
    }

private:
    static std::vector<OptionSpec> fieldOptions()
    {
        std::vector<OptionSpec> options;
        for (const TagField &field : tagFields()) {
            const QString caption = QString::fromLatin1(field.caption).toLower();
            const bool isOfOneFile = field.name == u"title" || field.name == u"track";
            options.push_back({.name = field.name.toString(),
                               .valueName = u"TEXT"_s,
                               .summary = u"the %1%2"_s.arg(caption, isOfOneFile ? u", of one file"_s : QString()),
                               .manual = u"The %1.%2%3"_s.arg(
                                   caption, isOfOneFile ? u" Goes with one file."_s : QString(),
                                   field.name == u"artist" ? u" M4A files get it as album artist, too."_s : QString()),
                               .excluded = {u"from-json"_s}});
        }
        return options;
    }
    static std::vector<OptionSpec> otherOptions()
    {
        return {
            {.name = u"picture"_s,
             .valueName = u"FILE"_s,
             .summary = u"add the picture of a PNG, JPEG, GIF, TIFF, WebP or BMP file"_s,
             .manual =
                 u"Adds the picture of a PNG, JPEG, GIF, TIFF, WebP or BMP file, as PNG. FLAC and MP3 files keep the "
                 "pictures that they have beside it; in an M4A file it takes the place of the first. Monkey's Audio "
                 "and "
                 "WavPack files take none."_s,
             .excluded = {u"from-json"_s}},
            {.name = u"custom"_s,
             .valueName = u"NAME=VALUE"_s,
             .summary = u"a further field of FLAC files; may be given several times"_s,
             .manual = u"A further field of FLAC files. May be given several times."_s,
             .excluded = {u"from-json"_s}},
            {.name = u"empty"_s,
             .summary = u"also empty every field that no option gives"_s,
             .manual = u"Also empties every field that no option gives. FLAC and MP3 files lose all other tags and "
                       "pictures with that; --dry-run tells which."_s,
             .excluded = {u"from-json"_s}},
            {.name = u"from-json"_s,
             .valueName = u"FILE"_s,
             .summary = u"give files back all tags that \"tags show --json\" has printed; - is standard input"_s,
             .manual =
                 u"Gives every file in the output of *tags show --json* back all of its tags: those in the file now "
                 u"go. "
                 "\"-\" is standard input. What stands in \"stored\" counts; \"fields\" and \"custom\" are written where "
                 u"that is taken out. Where _FILE_s are named, too, only they are written, and one that lies "
                 "elsewhere now is known by its name."_s,
             .namesFiles = true},
            dryRunOption()};
    }
    static TagsObject recordOf(const ParsedArguments &arguments)
    {
        TagsObject record;
        bool isGiven = arguments.has(u"empty"_s);
        for (const TagField &field : tagFields()) {
            const QString name = field.name.toString();
            if (!arguments.has(name))
                continue;
            (record.*field.setText)(arguments.value(name));
            isGiven = true;
        }
        for (const QString &custom : arguments.values(u"custom"_s)) {
            const qsizetype equals = custom.indexOf(u'=');
            const QString name = custom.left(std::max<qsizetype>(equals, 0)).trimmed();
            if (name.isEmpty() || equals + 1 == custom.size())
                throw UsageError(u"--custom takes NAME=VALUE, not \"%1\""_s.arg(custom));
            if (const std::optional<QString> fault = tagsWriting::faultOfCustomName(name))
                throw UsageError(u"--custom %1"_s.arg(*fault));
            const QStringList given = record.customTagsDictionary().keys();
            if (given.contains(name, Qt::CaseInsensitive))
                throw UsageError(u"--custom: %1 is given twice"_s.arg(name));
            record.customTagsDictionary().insert(name, custom.sliced(equals + 1));
            isGiven = true;
        }
        if (arguments.has(u"picture"_s)) {
            const QString path = arguments.value(u"picture"_s);
            const PictureReading reading = examinePictureFile(QFileInfo(path).absoluteFilePath());
            if (!reading.picture)
                throw UsageError(u"--picture %1: %2"_s.arg(path, reading.fault.value_or(u"it is empty"_s)));
            record.setAlbumArt(reading.picture);
            isGiven = true;
        }
        if (!isGiven)
            throw UsageError(u"nothing is to be set: give a tag, --picture, --custom, --empty or --from-json"_s);
        return record;
    }
};

// import-cue

class TagsImportCueCommand final : public Command {
public:
    [[nodiscard]] const CommandSpec &spec() const override
    {
        static const CommandSpec spec{
            .name = u"tags import-cue"_s,
            .summary = u"write the names in a cue sheet into files"_s,
            .synopsis = u"[OPTION]... CUE FILE..."_s,
            .details = u"Writes album, artist, titles and track numbers of a cue sheet, of any encoding, into files.\n"
                       "The first title goes to the first file in the order of a file browser, and so on."_s,
            .options =
                joined({dryRunOption()}, reportOptionsWithoutJobs(u"print one JSON object per file and one for the whole"_s))};
        return spec;
    }
    [[nodiscard]] ExitStatus run(const ParsedArguments &arguments, Console &console) const override
    {
        const QByteArray &first = arguments.operands.first();
        const std::optional<QString> cue = fileNameFromBytes(first);
        if (!cue)
            throw UsageError(u"not valid UTF-8: %1"_s.arg(displayName(first)));
        if (arguments.operands.size() < 2)
            throw UsageError(u"the cue sheet must be followed by the files that its names are for"_s);
        QString problem;
        const std::optional<CueSheetTagImporter::Names> names =
            CueSheetTagImporter::read(QFileInfo(*cue).absoluteFilePath(), &problem);
        if (!names)
            throw UsageError(u"%1: %2"_s.arg(*cue, problem.endsWith(u'.') ? problem.chopped(1) : problem));
        FilesRun run(arguments, arguments.operands.sliced(1), console, tagsPage());
        return write(run, *names, *cue, arguments.has(u"dry-run"_s));
    }

private:
    static ExitStatus write(FilesRun &run, const CueSheetTagImporter::Names &names, const QString &cue, bool isTrial)
    {
        const qsizetype titles = names.titles.size();
        // The titles behind what is missing would go to its neighbours.
        if (run.hasRefusals() && titles > 0) {
            run.note(u"nothing is written, since a file is missing from the order"_s);
            return run.finish(u"written"_s);
        }
        if (run.hasSkippedSounds() && titles > 0) {
            run.fail(cue, u"nothing is written: a sound that takes no tags has a place in the order; name the files"_s);
            return run.finish(u"written"_s);
        }
        // A later title or performer would stand for those of the album.
        if (titles == 0 && names.trackLines > 0) {
            run.fail(cue, u"its tracks do not begin with \"TRACK 01 AUDIO\": nothing is written"_s);
            return run.finish(u"written"_s);
        }
        // The titles behind a missing one would go to its neighbours.
        if (titles > 0 && titles != names.trackLines) {
            run.fail(cue, u"there are %1 titles for its %2 tracks: nothing is written"_s.arg(titles).arg(names.trackLines));
            return run.finish(u"written"_s);
        }
        if (titles == 0 && !names.album.albumText() && !names.album.artistText()) {
            run.fail(cue, u"there are no names in it"_s);
            return run.finish(u"written"_s);
        }
        if (titles == 0) {
            run.note(
                u"%1: it has no tracks: only album and artist are written"_s.arg(cue));
        } else if (titles < run.files().size()) {
            run.fail(cue, u"Number of selected files to tag is greater than number of track names entered"_s);
            return run.finish(u"written"_s);
        } else if (titles > run.files().size()) {
            run.note(u"%1: %2 titles for %3 files; the last ones are not used"_s.arg(cue).arg(titles).arg(
                run.files().size()));
        }
        if (!isTrial)
            run.setJournal(tagFiles::beginJournal(run.files()));
        for (qsizetype i = 0; i < run.files().size(); ++i) {
            TagWriting writing{.path = run.files().at(i), .record = names.album};
            if (titles > 0) {
                writing.record.setTitleText(names.titles.at(i));
                writing.record.setTrackText(QString::number(i + 1));
            }
            run.forFile(writing.path, [&] { return tagsWriting::writeOrTell(run, writing, false, isTrial); });
        }
        return run.finish(isTrial ? u"looked at, none written"_s : u"written"_s);
    }
};

} // namespace

std::vector<std::unique_ptr<Command>> makeTagsCommands()
{
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(std::make_unique<TagsShowCommand>());
    commands.push_back(std::make_unique<TagsSetCommand>());
    commands.push_back(std::make_unique<TagsImportCueCommand>());
    return commands;
}

} // namespace nurv
