// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/AACTagsHelper.h"

#include "app/PathNames.h"
#include "app/Util.h"
#include "audio/AudioPackets.h"
#include "base/Log.h"
#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "base/Version.h"
#include "engine/ProgramRunSync.h"
#include "files/FileStatus.h"
#include "files/FolderEntry.h"
#include "journal/NotedTemporary.h"
#include "process/ResourceFolder.h"
#include "programs/AtomicParsley.h"
#include "tags/AlbumArt.h"
#include "tags/Mp4Edit.h"
#include "tags/Mp4Movie.h"
#include "tags/TagEditStream.h"
#include "tags/TagsProcess.h"
#include "tags/TagsUnavailable.h"
#include "text/TextNumbers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <id3v1genres.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <mutex>
#include <new>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using Text = TagsObject::Text;

constexpr FourCharacters kName = fourCharacters("\251nam");
constexpr FourCharacters kArtist = fourCharacters("\251ART");
constexpr FourCharacters kAlbumArtist = fourCharacters("aART");
constexpr FourCharacters kAlbum = fourCharacters("\251alb");
constexpr FourCharacters kComment = fourCharacters("\251cmt");
constexpr FourCharacters kTrack = fourCharacters("trkn");
constexpr FourCharacters kDisk = fourCharacters("disk");
constexpr FourCharacters kYear = fourCharacters("\251day");
constexpr FourCharacters kGenre = fourCharacters("\251gen");
constexpr FourCharacters kGenreNumber = fourCharacters("gnre");
constexpr FourCharacters kWriter = fourCharacters("\251wrt");
constexpr FourCharacters kTool = fourCharacters("\251too");
constexpr FourCharacters kCoverArt = fourCharacters("covr");

constexpr int kTrackSize = 8;
constexpr int kDiskSize = 6;

std::mutex providerMutex;
AACTagsHelper::QuickTimeVersionProvider quickTimeVersionProvider;

std::optional<std::uint32_t> quickTimeVersion()
{
    AACTagsHelper::QuickTimeVersionProvider provider;
    {
        const std::lock_guard lock(providerMutex);
        provider = quickTimeVersionProvider;
    }
    return provider ? provider() : std::nullopt;
}

QString toolText(std::uint32_t version, const Text &encoderSettings)
{
    const auto digit = [version](int bit) { return QString::number(version >> bit & 0xfU); };
    return u"Nurv "_s + shortVersionString() + u", QuickTime "_s + digit(24) + u'.' + digit(20) + u'.' + digit(16)
           + u", "_s + encoderSettings.value_or(QString());
}

std::uint16_t number(const Text &text)
{
    return static_cast<std::uint16_t>(leadingInteger(text.value_or(QString())));
}

/// The genre as text, or the one that a number of the old list stands for.
std::optional<QString> genreOf(const Mp4Movie &movie)
{
    if (std::optional<QString> text = movie.text(kGenre))
        return text;
    const std::optional<Mp4Movie::Value> value = movie.value(kGenreNumber);
    if (!value || value->bytes.size() < 2)
        return std::nullopt;
    const int index = mp4Number<std::uint16_t>(value->bytes, 0) - 1; // counted from 1
    return QString::fromStdString(TagLib::ID3v1::genre(index).to8Bit(true));
}

TagsObject readItems(const Mp4Movie &movie)
{
    TagsObject tags;
    AACTagsHelper::setBlankTags(tags);
    const auto read = [&tags](std::optional<QString> text, void (TagsObject::*set)(Text)) {
        if (text)
            (tags.*set)(std::move(text));
    };
    read(movie.text(kName), &TagsObject::setTitleText);
    read(movie.text(kArtist), &TagsObject::setArtistText);
    read(movie.text(kYear), &TagsObject::setDateText);
    read(movie.text(kAlbum), &TagsObject::setAlbumText);
    const Mp4Movie::NumberAndTotal disk = movie.numbers(kDisk);
    tags.setDiscText(QString::number(disk.number));
    tags.setDiscTotalText(QString::number(disk.total));
    const Mp4Movie::NumberAndTotal track = movie.numbers(kTrack);
    tags.setTrackText(QString::number(track.number));
    tags.setTrackTotalText(QString::number(track.total));
    read(movie.text(kComment), &TagsObject::setCommentText);
    read(genreOf(movie), &TagsObject::setGenreText);
    read(movie.text(kWriter), &TagsObject::setComposerText);
    if (const std::optional<Mp4Movie::Value> picture = movie.value(kCoverArt)) {
        PictureReading reading = readPicture(picture->bytes);
        tags.setAlbumArt(std::move(reading.picture), std::move(reading.fault));
    }
    return tags;
}

/// Returns false when the file's metadata cannot take items; sets `leftOut` when the picture cannot be
/// rendered, which costs nothing else.
bool writeItems(Mp4Movie &movie, const TagsObject &tags, bool writeEmptyTags, bool encoding, Text &leftOut)
{
    bool isWritten = true;
    const auto writes = [&](const Text &text) { return writeEmptyTags || (text && !text->isEmpty()); };
    const auto write = [&](FourCharacters item, const Text &text) {
        if (writes(text))
            isWritten = movie.setText(item, text.value_or(QString())) && isWritten;
    };
    const auto writeNumbers = [&](FourCharacters item, const Text &text, const Text &total, int size) {
        if (writes(text))
            isWritten = movie.setNumbers(item, {.number = number(text), .total = number(total)}, size) && isWritten;
    };
    write(kName, tags.titleText());
    write(kArtist, tags.artistText());
    write(kAlbumArtist, tags.artistText());
    write(kAlbum, tags.albumText());
    write(kComment, tags.commentText());
    writeNumbers(kTrack, tags.trackText(), tags.trackTotalText(), kTrackSize);
    writeNumbers(kDisk, tags.discText(), tags.discTotalText(), kDiskSize);
    write(kYear, tags.dateText());
    write(kGenre, tags.genreText());
    // A number left beside the text would contradict it.
    if (writes(tags.genreText()))
        isWritten = movie.removeItem(kGenreNumber) && isWritten;
    write(kWriter, tags.composerText());
    if (tags.albumArt()) {
        try {
            const QByteArray png = getBitmapDataForImage(tags.albumArt(), ImageFileType::Png);
            isWritten = movie.setFirstPicture(png) && isWritten;
        } catch (const NurvFailure &failure) {
            leftOut = failure.reason();
        }
    }
    if (encoding) {
        if (const std::optional<std::uint32_t> version = quickTimeVersion())
            isWritten = movie.setText(kTool, toolText(*version, tags.encoderSettings())) && isWritten;
    }
    return isWritten;
}

AACTagsHelper::Shortfall writeTags(const QString &path, const TagsObject &tags, bool writeEmptyTags, bool encoding)
{
    AACTagsHelper::Shortfall shortfall;
    shortfall.order = editMp4Movie(path, [&](Mp4Movie &movie) {
        return writeItems(movie, tags, writeEmptyTags, encoding, shortfall.picture);
    });
    return shortfall;
}

/// Removes what an AtomicParsley that was ended has left beside `path`.
void removeNewTemporaries(const QString &path, const QStringList &former)
{
    const QDir folder = QFileInfo(path).dir();
    for (const QString &name : atomicParsley::temporariesBeside(path)) {
        if (!former.contains(name) && !QFile::remove(folder.filePath(name)))
            qCWarning(tagsLog).noquote() << "Temporary and not removed:" << folder.filePath(name);
    }
}

/// A file as it is, kept under a second name while a program works on the first: one that
/// fails to write does not always say so.
class KeptFile {
public:
    explicit KeptFile(const QString &path)
        : m_path(path), m_sound(audioPacketsDigest(path)),
          m_keptName(QFile::encodeName(Util::generateTempFileName(folderOf(path), pathExtension(path)))),
          m_note(QFile::decodeName(m_keptName))
    {
        const QByteArray name = QFile::encodeName(path);
        ::unlink(m_keptName.constData());
        // A disk without second names gets a copy.
        m_isKept =
            ::link(name.constData(), m_keptName.constData()) == 0 || QFile::copy(path, QFile::decodeName(m_keptName));
        m_isKept = m_isKept && ::stat(name.constData(), &m_facts) == 0;
    }
    ~KeptFile() { ::unlink(m_keptName.constData()); }
    KeptFile(const KeptFile &) = delete;
    KeptFile &operator=(const KeptFile &) = delete;

    [[nodiscard]] bool isKept() const { return m_isKept; }
    /// Puts the file back unless the first name still leads to the same sound.
    void putBackIfSoundChanged()
    {
        const QByteArray name = QFile::encodeName(m_path);
        if (m_sound.isEmpty() ? !QFile::exists(m_path) : audioPacketsDigest(m_path) != m_sound) {
            qCWarning(tagsLog).noquote() << "Not marked as gapless, put back as it was:" << m_path;
            if (::rename(m_keptName.constData(), name.constData()) != 0)
                qCCritical(tagsLog).noquote()
                    << m_path << "is kept as" << QFile::decodeName(std::exchange(m_keptName, {}));
        }
        // Programs make new files, which all may read.
        if (!FolderEntry(m_path).changeMode(m_facts.st_mode & 07777, m_since))
            qCWarning(tagsLog).noquote() << "Permissions not kept:" << m_path << systemErrorText(errno);
    }

private:
    QString m_path;
    QByteArray m_sound;
    QByteArray m_keptName;
    NotedTemporary m_note;
    struct stat m_facts = {};
    timespec m_since = FolderEntry::now();
    bool m_isKept = false;
};

} // namespace

TagsObject AACTagsHelper::tagsForFile(const QString &path)
{
    if (std::optional<TagsObject> tags = TagsProcess::readTags(TagFormat::Mp4, path))
        return *std::move(tags);
    try {
        TagEditStream stream(path, TagEditStream::Access::Read);
        if (const std::optional<Mp4Movie> movie = Mp4Movie::of(stream, Mp4Layout::of(stream)))
            return readItems(*movie);
    } catch (const std::bad_alloc &) {
        throw TagsUnavailable(u"Unable to allocate memory."_s);
    }
    throw NurvFailure(u"Unable to open the file for reading."_s);
}

TagsObject::Text AACTagsHelper::writeTagsForFile(const QString &path, const TagsObject &tagObject,
                                                 bool writeEmptyTags, bool encoding)
{
    Shortfall shortfall = writeInAnyOrder(path, tagObject, writeEmptyTags, encoding);
    if (shortfall.order) {
        qCWarning(tagsLog, "Not optimized: %s: %s", qUtf8Printable(path), qUtf8Printable(*shortfall.order));
        throw Unoptimized(u"unable to optimize @% file"_s);
    }
    return std::move(shortfall.picture);
}

AACTagsHelper::Shortfall AACTagsHelper::writeInAnyOrder(const QString &path, const TagsObject &tagObject,
                                                        bool writeEmptyTags, bool encoding)
{
    try {
        const TagsProcess::Writing writing{.format = TagFormat::Mp4,
                                           .writeEmptyTags = writeEmptyTags,
                                           .encoding = encoding,
                                           .quickTimeVersion = quickTimeVersion()};
        if (std::optional<TagsProcess::Written> written = TagsProcess::writeTags(writing, path, tagObject))
            return {.picture = std::move(written->leftOut), .order = std::move(written->disorder)};
        return writeTags(path, tagObject, writeEmptyTags, encoding);
    } catch (const std::bad_alloc &) {
        throw NurvFailure(u"Unable to allocate memory."_s);
    }
}

void AACTagsHelper::setBlankTags(TagsObject &tagObject)
{
    tagObject.setTitleText(u""_s);
    tagObject.setArtistText(u""_s);
    tagObject.setDateText(u""_s);
    tagObject.setAlbumText(u""_s);
    tagObject.setDiscText(u""_s);
    tagObject.setTrackText(u""_s);
    tagObject.setCommentText(u""_s);
    tagObject.setGenreText(u""_s);
    tagObject.setComposerText(u""_s);
}

void AACTagsHelper::makeGapless(const QString &path, const std::function<bool()> &isUnwanted)
{
    // Of a link the file that it leads to is marked.
    const QString file = QFileInfo(path).canonicalFilePath();
    if (file.isEmpty()) {
        qCWarning(tagsLog).noquote() << "Not marked as gapless, since it is not there:" << path;
        return;
    }
    try {
        KeptFile kept(file);
        if (kept.isKept()) {
            runParsley(file, isUnwanted);
            kept.putBackIfSoundChanged();
        } else {
            qCWarning(tagsLog).noquote() << "Not marked as gapless, since it could not be kept meanwhile:" << path;
        }
    } catch (const NurvFailure &failure) {
        qCWarning(tagsLog).noquote() << "Not marked as gapless:" << path << failure.reason();
    }
}

void AACTagsHelper::runParsley(const QString &path, const std::function<bool()> &isUnwanted)
{
    const QStringList formerTemporaries = atomicParsley::temporariesBeside(path);
    // AtomicParsley would write through the link whose number it draws.
    const auto leads = [&path](const QString &name) { return isLink(joinPath(folderOf(path), name)); };
    if (std::any_of(formerTemporaries.begin(), formerTemporaries.end(), leads)) {
        qCWarning(tagsLog).noquote() << "Not marked as gapless, since links have the names of its program's files:" << path;
        return;
    }
    ProgramRunSync parsley(programPath(atomicParsley::program().name), atomicParsley::gaplessArguments(path));
    atomicParsley::setEnvironment(parsley.environment());
    QString recent;
    const ProgramRunSync::Ending ending = parsley.run(
        [&](const QString &chunk) {
            recent = recent.right(atomicParsley::kLongestCopyMarker) + chunk;
            return !atomicParsley::tellsOfFailedCopy(recent);
        },
        isUnwanted);
    if (!ending.exit)
        qCWarning(tagsLog).noquote() << "Not marked as gapless:" << path << ending.startFailure.trimmed();
    else if (ending.wasCutShort())
        removeNewTemporaries(path, formerTemporaries);
    else if (!ending.exit->succeeded())
        qCWarning(tagsLog).noquote() << "Not marked as gapless:" << path << recent.trimmed();
}

void AACTagsHelper::setQuickTimeVersionProvider(QuickTimeVersionProvider provider)
{
    const std::lock_guard lock(providerMutex);
    quickTimeVersionProvider = std::move(provider);
}

} // namespace nurv
