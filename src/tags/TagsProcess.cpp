// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagsProcess.h"

#include "base/GuiThread.h"
#include "base/Log.h"
#include "base/NurvFailure.h"
#include "process/ServiceProcess.h"
#include "tags/MetadataBytes.h"
#include "tags/Mp4Optimizer.h"
#include "tags/PictureMemory.h"
#include "tags/TagsChannel.h"
#include "tags/TagsMessage.h"
#include "tags/TagsSandbox.h"
#include "tags/TagTrial.h"
#include "tags/TagsUnavailable.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using Kind = TagsMessageKind;
using Clock = std::chrono::steady_clock;

constexpr int kMostInBetween = 20'000; // lines of the log and shares of memory
constexpr qsizetype kMostReason = 500;
constexpr qsizetype kMostLogged = 100'000;
constexpr std::uint64_t kMostSide = 65'536;
constexpr std::uint64_t kMostDepth = 256;

/// The processes that live, and who uses them.
struct Pool {
    std::mutex lock;
    std::condition_variable isFree;
    std::optional<TagsProcess::Settings> settings;
    std::vector<std::unique_ptr<ServiceProcess>> idle;
    int inUse = 0;
};

Pool &pool()
{
    // Never destroyed: workers may ask until this process ends.
    static Pool *const instance = new Pool;
    return *instance;
}

/// What a request does, for the words of its failure.
QString attemptOf(Kind kind)
{
    switch (kind) {
    case Kind::EditTags: return u"its tags could not be written"_s;
    case Kind::ReplaceStored: return u"its tags could not be written"_s;
    case Kind::DigestPixels: return u"a picture could not be compared"_s;
    case Kind::ExaminePicture:
    case Kind::ScalePicture: return u"it could not be decoded"_s;
    default: return u"its tags could not be read"_s;
    }
}

void tellWhatIsMissing()
{
    if (!tagsSandbox::canGiveUpFiles())
        qCInfo(sandboxLog, "This kernel has no Landlock: nurv-tags keeps its rights to files by their names.");
}

/// One process, for one request.
class Lease {
public:
    explicit Lease(const TagsProcess::Settings &settings)
    {
        const int most = settings.most + (isGuiThread() ? 1 : 0);
        std::unique_lock lock(pool().lock);
        pool().isFree.wait(lock, [&] { return pool().inUse < most; });
        ++pool().inUse;
        // One that has ended meanwhile is nobody's fault.
        while (!pool().idle.empty() && !m_process) {
            m_process = std::move(pool().idle.back());
            pool().idle.pop_back();
            if (m_process->hasEnded())
                m_process.reset();
        }
    }
    ~Lease()
    {
        const std::lock_guard lock(pool().lock);
        --pool().inUse;
        if (m_isFit && pool().settings)
            pool().idle.push_back(std::move(m_process));
        pool().isFree.notify_all();
    }
    Lease(const Lease &) = delete;
    Lease &operator=(const Lease &) = delete;

    void startIfNone(const QString &program)
    {
        if (m_process)
            return;
        static std::once_flag told;
        std::call_once(told, tellWhatIsMissing);
        m_process = ServiceProcess::start(program);
    }
    [[nodiscard]] ServiceProcess &process() const { return *m_process; }
    /// The process has answered and may be asked again.
    void keep() { m_isFit = true; }

private:
    std::unique_ptr<ServiceProcess> m_process;
    bool m_isFit = false;
};

[[noreturn]] void failFor(const QString &attempt, TagsChannel::Fault fault, ServiceProcess &process)
{
    if (fault == TagsChannel::Fault::TooLate)
        throw TagsUnavailable(attempt + u": the program that reads them took too long"_s);
    if (fault == TagsChannel::Fault::Damaged)
        throw TagsUnavailable(attempt + u": the program that reads them gave no sensible answer"_s);
    const ChildExit exit = process.end();
    throw TagsUnavailable(
        attempt
        + (exit.signal != 0 ? u": the program that reads them ended by signal %1"_s.arg(exit.signal)
                            : u": the program that reads them ended with status %1"_s.arg(exit.status)));
}

/// A reason from a process that a file may have taken over.
QString plainReason(const QString &reason)
{
    QString plain = reason.left(kMostReason);
    std::replace_if(plain.begin(), plain.end(), [](QChar character) { return !character.isPrint(); }, u' ');
    return plain;
}

void logLine(TagsMessageReader &line)
{
    const std::uint64_t type = line.takeNumber();
    const QString text = line.takeText().left(kMostLogged);
    if (type == QtDebugMsg)
        qCDebug(tagsLog).noquote() << text;
    else if (type == QtInfoMsg)
        qCInfo(tagsLog).noquote() << text;
    else
        qCWarning(tagsLog).noquote() << text;
}

/// What a request has given, and the share of the memory for pictures that belongs to it: what is made
/// of a picture is written here, and is as large as that.
struct Answer {
    QByteArray bytes;
    std::optional<PictureMemory::Share> share;
};

/// The answer to one request. Throws NurvFailure.
Answer exchange(const QString &attempt, Lease &lease, TagsChannel &channel, std::chrono::milliseconds time)
{
    Answer answer;
    for (int messages = 0; messages <= kMostInBetween; ++messages) {
        std::optional<TagsChannel::Message> message = channel.receive();
        if (!message)
            failFor(attempt, channel.fault(), lease.process());
        TagsMessageReader reader(message->bytes);
        switch (message->kind) {
        case Kind::Done:
            lease.keep();
            answer.bytes = std::move(message->bytes);
            return answer;
        case Kind::Failed: {
            const bool isUnavailable = reader.takeNumber(1) == 1;
            const QString reason = plainReason(reader.takeText());
            lease.keep();
            if (isUnavailable)
                throw TagsUnavailable(reason);
            throw NurvFailure(reason);
        }
        case Kind::Refused:
            throw TagsUnavailable(attempt + u": the program that reads them refuses to work: "_s
                                  + plainReason(reader.takeText()));
        case Kind::NeedMemory: {
            const auto bytes = static_cast<std::int64_t>(reader.takeNumber(PictureMemory::kCapacity));
            answer.share.reset();
            answer.share.emplace(PictureMemory::take(bytes));
            // The time that others took is not its own.
            channel.setDeadline(Clock::now() + time);
            if (!channel.send(Kind::Granted, {}))
                failFor(attempt, channel.fault(), lease.process());
            break;
        }
        case Kind::Logged: logLine(reader); break;
        default: failFor(attempt, TagsChannel::Fault::Damaged, lease.process());
        }
    }
    failFor(attempt, TagsChannel::Fault::Damaged, lease.process());
}

/// Why the program was not started.
QString startFailure(const QString &program, const QString &reason)
{
    return QFileInfo(program).isExecutable()
        ? u"the program that reads them did not start: %1"_s.arg(reason)
        : u"nurv-tags, the program that reads them, is missing: %1"_s.arg(program);
}

Answer ask(const TagsProcess::Settings &settings, Kind kind, const TagsMessageWriter &request, int file)
{
    const QString attempt = attemptOf(kind);
    Lease lease(settings);
    try {
        lease.startIfNone(settings.program);
    } catch (const NurvFailure &failure) {
        throw TagsUnavailable(attempt + u": "_s + startFailure(settings.program, failure.reason()));
    }
    TagsChannel channel(lease.process().socket());
    const std::chrono::milliseconds time =
        kind == Kind::ReadInventory ? settings.timeToTakeStock : settings.timeToRead;
    channel.setDeadline(Clock::now() + time);
    if (!channel.send(kind, request.bytes(), file))
        failFor(attempt, channel.fault(), lease.process());
    try {
        return exchange(attempt, lease, channel, time);
    } catch (const DamagedMessage &) {
        failFor(attempt, TagsChannel::Fault::Damaged, lease.process());
    }
}

std::optional<TagsProcess::Settings> currentSettings()
{
    const std::lock_guard lock(pool().lock);
    return pool().settings;
}

FileDescriptor openRegular(const QString &path)
{
    // Non-blocking, so that a FIFO in a regular file's place cannot hold the job.
    FileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat facts = {};
    if (!file.isOpen() || ::fstat(file.get(), &facts) != 0 || !S_ISREG(facts.st_mode))
        return {};
    return file;
}

/// What `take` takes off the answer, whose bytes are let go of. A kind of nonsense that only shows here
/// ends no batch either.
template<typename Take>
auto taken(Answer &answer, const Take &take)
{
    try {
        TagsMessageReader reader(std::exchange(answer.bytes, {}));
        auto result = take(reader);
        reader.expectEnd();
        return result;
    } catch (const DamagedMessage &damage) {
        throw TagsUnavailable(damage.reason());
    } catch (const std::bad_alloc &) {
        throw TagsUnavailable(u"there is not enough memory to read its tags"_s);
    }
}

template<typename Take>
auto taken(Answer &&answer, const Take &take)
{
    return taken(answer, take);
}

/// Has the file edited and writes what became of it.
TagsProcess::Written editByProcess(const TagsProcess::Settings &settings, Kind kind, const TagsMessageWriter &request,
                                   TagFormat format, const QString &path)
{
    TagEditStream stream(path, TagEditStream::Access::Edit);
    const FileDescriptor file = stream.isOpen() ? stream.reopenedForReading() : FileDescriptor();
    if (!file.isOpen())
        throw NurvFailure(u"Unable to open the output file for tagging."_s);
    TagsProcess::Written written;
    Answer answer = ask(settings, kind, request, file.get());
    stream.apply(taken(answer, [&](TagsMessageReader &edits) {
        written.date = edits.takeOptional();
        if (TagsObject::Text fault = edits.takeOptional())
            written.leftOut = plainReason(*fault);
        if (TagsObject::Text fault = edits.takeOptional())
            written.disorder = plainReason(*fault);
        return edits.takeEdits(stream.fileLength());
    }));
    // The sound of MPEG-4 files is not found while the bytes to be written are half written.
    if (const std::optional<QString> reason =
            format == TagFormat::Mp4 ? Mp4Optimizer::commit(stream) : stream.commit())
        throw NurvFailure(u"Unable to save the tags: %1."_s.arg(*reason));
    return written;
}

} // namespace

QString TagsProcess::installedProgram()
{
    static const QString program = QFileInfo(QFileInfo(QFile::symLinkTarget(u"/proc/self/exe"_s)).path()
                                             + u"/../lib/nurv/nurv-tags"_s)
                                       .absoluteFilePath();
    return program;
}

void TagsProcess::setUp()
{
    const QString program = installedProgram();
    setUp(Settings{.program = program, .most = std::max(1, static_cast<int>(std::thread::hardware_concurrency()))});
}

void TagsProcess::setUp(const Settings &settings)
{
    const std::lock_guard lock(pool().lock);
    pool().settings = settings;
    pool().idle.clear();
}

void TagsProcess::takeDown()
{
    const std::lock_guard lock(pool().lock);
    pool().settings.reset();
    pool().idle.clear();
}

std::optional<TagsObject> TagsProcess::readTags(TagFormat format, const QString &path)
{
    const std::optional<Settings> settings = currentSettings();
    if (!settings)
        return std::nullopt;
    // What cannot be opened has no tags, as is for the other process to say.
    const FileDescriptor file = openRegular(path);
    TagsMessageWriter request;
    request.putNumber(static_cast<std::uint64_t>(format));
    return taken(ask(*settings, Kind::ReadTags, request, file.get()),
                 [](TagsMessageReader &answer) {
                     TagsObject tags = answer.takeRecord();
                     if (const TagsObject::Text &fault = tags.albumArtFault())
                         tags.setAlbumArt(tags.albumArt(), plainReason(*fault));
                     return tags;
                 });
}

std::optional<MetadataInventory> TagsProcess::readInventory(const QString &path)
{
    const std::optional<Settings> settings = currentSettings();
    if (!settings)
        return std::nullopt;
    const FileDescriptor file = openRegular(path);
    if (!file.isOpen()) {
        // Says why, and reads nothing.
        static_cast<void>(MetadataBytes::ofFile(path));
        throw TagsUnavailable(u"it cannot be opened"_s);
    }
    return taken(ask(*settings, Kind::ReadInventory, {}, file.get()),
                 [](TagsMessageReader &answer) { return answer.takeInventory(); });
}

std::optional<QByteArray> TagsProcess::pictureDigest(const QByteArray &picture)
{
    const std::optional<Settings> settings = currentSettings();
    if (!settings)
        return std::nullopt;
    TagsMessageWriter request;
    request.putBytes(picture);
    return taken(ask(*settings, Kind::DigestPixels, request, -1),
                 [](TagsMessageReader &answer) { return answer.takeBytes(); });
}

std::optional<PictureReading> TagsProcess::examinePicture(const QByteArray &picture)
{
    const std::optional<Settings> settings = currentSettings();
    if (!settings)
        return std::nullopt;
    TagsMessageWriter request;
    request.putBytes(picture);
    return taken(ask(*settings, Kind::ExaminePicture, request, -1), [&picture](TagsMessageReader &answer) {
        PictureReading reading;
        if (answer.takeNumber(1) == 1) {
            const int width = static_cast<int>(answer.takeNumber(kMostSide));
            const int height = static_cast<int>(answer.takeNumber(kMostSide));
            const int depth = static_cast<int>(answer.takeNumber(kMostDepth));
            reading.picture = std::make_shared<const CoverPicture>(picture, QSize(width, height), depth);
        }
        if (const TagsObject::Text fault = answer.takeOptional())
            reading.fault = plainReason(*fault);
        return reading;
    });
}

std::optional<QImage> TagsProcess::scaledPicture(const QByteArray &picture, QSize box)
{
    const std::optional<Settings> settings = currentSettings();
    if (!settings)
        return std::nullopt;
    TagsMessageWriter request;
    request.putNumber(static_cast<std::uint64_t>(std::max(1, box.width())));
    request.putNumber(static_cast<std::uint64_t>(std::max(1, box.height())));
    request.putBytes(picture);
    return taken(ask(*settings, Kind::ScalePicture, request, -1), [&box](TagsMessageReader &answer) {
        const int width = static_cast<int>(answer.takeNumber(static_cast<std::uint64_t>(box.width())));
        const int height = static_cast<int>(answer.takeNumber(static_cast<std::uint64_t>(box.height())));
        const QByteArray pixels = answer.takeBytes();
        if (pixels.size() != qsizetype{4} * width * height)
            throw DamagedMessage(u"the answer about a picture is damaged"_s);
        const auto *const bits = reinterpret_cast<const uchar *>(pixels.constData());
        return QImage(bits, width, height, QImage::Format_ARGB32).copy();
    });
}

std::optional<StoredTags> TagsProcess::readStoredTags(TagFormat format, const QString &path)
{
    const std::optional<Settings> settings = currentSettings();
    if (!settings)
        return std::nullopt;
    const FileDescriptor file = openRegular(path);
    TagsMessageWriter request;
    request.putNumber(static_cast<std::uint64_t>(format));
    return taken(ask(*settings, Kind::ReadStored, request, file.get()),
                 [](TagsMessageReader &answer) { return answer.takeStoredTags(); });
}

std::optional<TagTrial> TagsProcess::tryTags(const Writing &writing, const QString &path, const TagsObject &tags)
{
    const std::optional<Settings> settings = currentSettings();
    if (!settings)
        return std::nullopt;
    const FileDescriptor file = openRegular(path);
    TagsMessageWriter request;
    request.putNumber(static_cast<std::uint64_t>(writing.format));
    request.putNumber(writing.writeEmptyTags ? 1 : 0);
    request.putRecord(tags);
    return taken(ask(*settings, Kind::TryTags, request, file.get()), [](TagsMessageReader &answer) {
        TagTrial trial{.before = answer.takeStoredTags(), .after = {}};
        trial.after = answer.takeStoredTags();
        return trial;
    });
}

std::optional<TagsProcess::Written> TagsProcess::writeTags(const Writing &writing, const QString &path,
                                                           const TagsObject &tags)
{
    const std::optional<Settings> settings = currentSettings();
    if (!settings)
        return std::nullopt;
    TagsMessageWriter request;
    request.putNumber(static_cast<std::uint64_t>(writing.format));
    request.putNumber(writing.writeEmptyTags ? 1 : 0);
    request.putNumber(writing.encoding ? 1 : 0);
    request.putNumber(writing.quickTimeVersion ? std::uint64_t{*writing.quickTimeVersion} + 1 : 0);
    request.putRecord(tags);
    return editByProcess(*settings, Kind::EditTags, request, writing.format, path);
}

bool TagsProcess::replaceStoredTags(TagFormat format, const QString &path, const StoredTags &tags)
{
    const std::optional<Settings> settings = currentSettings();
    if (!settings)
        return false;
    TagsMessageWriter request;
    request.putNumber(static_cast<std::uint64_t>(format));
    request.putStoredTags(tags);
    static_cast<void>(editByProcess(*settings, Kind::ReplaceStored, request, format, path));
    return true;
}

} // namespace nurv
