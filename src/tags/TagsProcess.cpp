// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagsProcess.h"

#include "platform/GuiThread.h"
#include "platform/NurvFailure.h"
#include "platform/ServiceProcess.h"
#include "tags/PictureMemory.h"
#include "tags/TagsChannel.h"
#include "tags/TagsLog.h"

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
    case Kind::Optimize: return u"its boxes could not be put in order"_s;
    case Kind::DigestPixels: return u"a picture could not be compared"_s;
    default: return u"its tags could not be read"_s;
    }
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
        if (!m_process)
            m_process = ServiceProcess::start(program);
    }
    [[nodiscard]] ServiceProcess &process() const { return *m_process; }
    /// It has answered and may be asked again.
    void keep() { m_isFit = true; }

private:
    std::unique_ptr<ServiceProcess> m_process;
    bool m_isFit = false;
};

[[noreturn]] void failFor(const QString &attempt, TagsChannel::Fault fault, ServiceProcess &process)
{
    if (fault == TagsChannel::Fault::TooLate)
        throw NurvFailure(attempt + u": the program that reads them took too long"_s);
    if (fault == TagsChannel::Fault::Damaged)
        throw NurvFailure(attempt + u": the program that reads them gave no sensible answer"_s);
    const ChildExit exit = process.end();
    throw NurvFailure(attempt
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

/// The answer to one request. Throws NurvFailure.
QByteArray exchange(const QString &attempt, Lease &lease, TagsChannel &channel)
{
    std::optional<PictureMemory::Share> share;
    for (int messages = 0; messages <= kMostInBetween; ++messages) {
        std::optional<TagsChannel::Message> message = channel.receive();
        if (!message)
            failFor(attempt, channel.fault(), lease.process());
        TagsMessageReader reader(message->bytes);
        switch (message->kind) {
        case Kind::Done: lease.keep(); return message->bytes;
        case Kind::Failed: {
            const QString reason = plainReason(reader.takeText());
            lease.keep();
            throw NurvFailure(reason);
        }
        case Kind::NeedMemory: {
            const auto bytes = static_cast<std::int64_t>(reader.takeNumber(PictureMemory::kCapacity));
            share.reset();
            share.emplace(PictureMemory::take(bytes));
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

QByteArray ask(const TagsProcess::Settings &settings, Kind kind, const TagsMessageWriter &request, int file)
{
    const QString attempt = attemptOf(kind);
    Lease lease(settings);
    try {
        lease.startIfNone(settings.program);
    } catch (const NurvFailure &failure) {
        throw NurvFailure(attempt + u": the program that reads them did not start: "_s + failure.reason());
    }
    TagsChannel channel(lease.process().socket());
    channel.setDeadline(Clock::now()
                        + (kind == Kind::ReadInventory ? settings.timeToTakeStock : settings.timeToRead));
    if (!channel.send(kind, request.bytes(), file))
        failFor(attempt, channel.fault(), lease.process());
    return exchange(attempt, lease, channel);
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

/// What `take` takes off the answer. A kind of nonsense that only shows here ends no batch either.
template<typename Take>
auto taken(const QByteArray &answer, const Take &take)
{
    try {
        TagsMessageReader reader(answer);
        auto result = take(reader);
        reader.expectEnd();
        return result;
    } catch (const std::bad_alloc &) {
        throw NurvFailure(u"there is not enough memory to read its tags"_s);
    }
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
    if (!QFileInfo(program).isExecutable()) {
        qCWarning(tagsLog).noquote() << "Tags are read without a process of their own, since it is not there:" << program;
        return;
    }
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
    const FileDescriptor file = settings ? openRegular(path) : FileDescriptor();
    if (!file.isOpen())
        return std::nullopt;
    TagsMessageWriter request;
    request.putNumber(static_cast<std::uint64_t>(format));
    return taken(ask(*settings, Kind::ReadTags, request, file.get()),
                 [](TagsMessageReader &answer) { return answer.takeRecord(); });
}

std::optional<MetadataInventory> TagsProcess::readInventory(const QString &path)
{
    const std::optional<Settings> settings = currentSettings();
    const FileDescriptor file = settings ? openRegular(path) : FileDescriptor();
    if (!file.isOpen())
        return std::nullopt;
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

std::optional<TagsProcess::Written> TagsProcess::writeTags(const Writing &writing, const QString &path,
                                                           const TagsObject &tags)
{
    const std::optional<Settings> settings = currentSettings();
    if (!settings)
        return std::nullopt;
    TagEditStream stream(path, TagEditStream::Access::Edit);
    const FileDescriptor file = stream.isOpen() ? stream.reopenedForReading() : FileDescriptor();
    if (!file.isOpen())
        throw NurvFailure(u"Unable to open the output file for tagging."_s);
    TagsMessageWriter request;
    request.putNumber(static_cast<std::uint64_t>(writing.format));
    request.putNumber(writing.writeEmptyTags ? 1 : 0);
    request.putNumber(writing.encoding ? 1 : 0);
    request.putNumber(writing.quickTimeVersion ? std::uint64_t{*writing.quickTimeVersion} + 1 : 0);
    request.putRecord(tags);
    Written written;
    stream.apply(taken(ask(*settings, Kind::EditTags, request, file.get()), [&](TagsMessageReader &answer) {
        written.date = answer.takeOptional();
        return answer.takeEdits(stream.fileLength());
    }));
    // The sound of MPEG-4 files is not found while the bytes to be written are half written.
    if (const std::optional<QString> reason =
            writing.format == TagFormat::Mp4 ? stream.commitAsNewFile() : stream.commit())
        throw NurvFailure(u"Unable to save the tags: %1."_s.arg(*reason));
    return written;
}

bool TagsProcess::optimize(const QString &path, const QString &targetPath)
{
    const std::optional<Settings> settings = currentSettings();
    if (!settings)
        return false;
    TagEditStream stream(path, TagEditStream::Access::Edit);
    const FileDescriptor file = stream.isOpen() ? stream.reopenedForReading() : FileDescriptor();
    if (!file.isOpen())
        throw NurvFailure(u"the file cannot be opened"_s);
    stream.apply(taken(ask(*settings, Kind::Optimize, {}, file.get()),
                       [&](TagsMessageReader &answer) { return answer.takeEdits(stream.fileLength()); }));
    if (const std::optional<QString> reason = stream.writeTo(targetPath))
        throw NurvFailure(*reason);
    return true;
}

} // namespace nurv
