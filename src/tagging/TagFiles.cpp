// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagging/TagFiles.h"

#include "app/PathNames.h"
#include "app/TemporaryNames.h"
#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "files/FileDescriptor.h"
#include "journal/NotedTemporary.h"
#include "journal/OutputJournal.h"
#include "tags/AACTagsHelper.h"
#include "tags/FlacTagHelper.h"
#include "tags/TagEditStream.h"
#include "tags/TagLibTagsHelper.h"

#include <QFile>

#include <cerrno>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv::tagFiles {

std::optional<TagFormat> formatOf(const QString &path)
{
    const QString word = formatWord(path);
    if (word == u"FLAC")
        return TagFormat::Flac;
    if (word == u"MP3")
        return TagFormat::Mp3;
    if (word == u"APE")
        return TagFormat::Ape;
    if (word == u"WV")
        return TagFormat::Wavpack;
    if (word == u"M4A")
        return TagFormat::Mp4;
    return std::nullopt;
}

std::optional<TagsObject> read(const QString &path)
{
    const std::optional<TagFormat> format = formatOf(path);
    if (!format)
        return std::nullopt;
    switch (*format) {
    case TagFormat::Flac: return TagLibTagsHelper::tagsForFlacFile(path);
    case TagFormat::Mp3: return TagLibTagsHelper::tagsForMP3File(path);
    case TagFormat::Ape: return TagLibTagsHelper::tagsForAPEFile(path);
    case TagFormat::Wavpack: return TagLibTagsHelper::tagsForWavpackFile(path);
    case TagFormat::Mp4: return AACTagsHelper::tagsForFile(path);
    case TagFormat::Aiff:
    case TagFormat::Tta: break;
    }
    return std::nullopt;
}

namespace {

/// A copy of a file beside it, in its folder, that is written into in several steps and then takes its place.
class WorkingCopy {
public:
    explicit WorkingCopy(const QString &path)
        : m_original(path, TagEditStream::Access::Edit), m_path(makeBeside(m_original)), m_note(m_path),
          m_scratchNote(scratchPath())
    {
        if (const std::optional<QString> reason = m_original.writeTo(m_path)) {
            remove();
            failToSave(*reason);
        }
    }
    ~WorkingCopy() { remove(); }
    WorkingCopy(const WorkingCopy &) = delete;
    WorkingCopy &operator=(const WorkingCopy &) = delete;

    [[nodiscard]] const QString &path() const { return m_path; }
    void takePlace()
    {
        if (const std::optional<QString> reason = m_original.replaceBy(m_path))
            failToSave(*reason);
    }

private:
    [[noreturn]] static void failToSave(const QString &reason)
    {
        throw NurvFailure(u"Unable to save the tags: %1."_s.arg(reason));
    }
    static QString makeBeside(const TagEditStream &original)
    {
        if (!original.isOpen())
            throw NurvFailure(u"Unable to open the output file for tagging."_s);
        // The name is free of links.
        const QByteArray name = original.name();
        QByteArray path = name.left(name.lastIndexOf('/') + 1) + ".nurv-tags-XXXXXX";
        const FileDescriptor file(::mkostemp(path.data(), O_CLOEXEC));
        if (!file.isOpen())
            failToSave(systemErrorText(errno));
        return QFile::decodeName(path);
    }
    [[nodiscard]] QString scratchPath() const { return m_path + kMetaflacScratchSuffix.toString(); }
    /// What became of it when it did not take the place.
    void remove() const
    {
        ::unlink(QFile::encodeName(scratchPath()).constData());
        ::unlink(QFile::encodeName(m_path).constData());
    }

    TagEditStream m_original;
    QString m_path;
    NotedTemporary m_note;
    NotedTemporary m_scratchNote;
};

/// The date that metaflac will be given: a new one, or that of the file where it takes another form.
TagsObject::Text dateForMetaflac(const QString &path, const TagsObject &tags)
{
    if (tags.dateText() && !tags.dateText()->isEmpty())
        return tags.dateText();
    TagsObject::Text date = TagLibTagsHelper::tagsForFlacFile(path).dateText();
    const bool hasDate = date && !date->isEmpty();
    return !hasDate || FlacTagHelper::tagForFile(path, FlacTagHelper::kDate) == date ? std::nullopt : std::move(date);
}

/// metaflac takes the old date away in a run of its own, and nobody looks at its status: until the new one is there
/// the file keeps all its old tags.
void writeFlac(const QString &path, const TagsObject &tags, bool writeEmptyTags)
{
    const TagsObject::Text date = dateForMetaflac(path, tags);
    if (!date) {
        TagLibTagsHelper::writeTagsForFLACFile(path, tags, writeEmptyTags);
        return;
    }
    WorkingCopy copy(path);
    TagLibTagsHelper::writeTagsForFLACFile(copy.path(), tags, writeEmptyTags);
    if (TagLibTagsHelper::tagsForFlacFile(copy.path()).dateText() != date)
        throw NurvFailure(u"The date could not be written, and so no tag was."_s);
    copy.takePlace();
}

} // namespace

TagsObject::Text write(const QString &path, const TagsObject &tags, bool writeEmptyTags)
{
    const std::optional<TagFormat> format = formatOf(path);
    if (!format)
        return std::nullopt;
    switch (*format) {
    case TagFormat::Flac: writeFlac(path, tags, writeEmptyTags); break;
    case TagFormat::Mp3: TagLibTagsHelper::writeTagsForMP3File(path, tags, writeEmptyTags); break;
    case TagFormat::Ape: TagLibTagsHelper::writeTagsForAPEFile(path, tags, writeEmptyTags); break;
    case TagFormat::Wavpack: TagLibTagsHelper::writeTagsForWavpackFile(path, tags, writeEmptyTags); break;
    case TagFormat::Mp4: return AACTagsHelper::writeTagsForFile(path, tags, writeEmptyTags, false);
    case TagFormat::Aiff:
    case TagFormat::Tta: break;
    }
    return std::nullopt;
}

std::shared_ptr<OutputJournal> beginJournal(const QStringList &paths)
{
    std::vector<OutputJournal::Planned> planned;
    for (const QString &path : paths)
        planned.push_back({path, path});
    std::shared_ptr<OutputJournal> journal = OutputJournal::begin(planned);
    OutputJournal::prepareForTemporaries();
    return journal;
}

} // namespace nurv::tagFiles
