// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagsService.h"

#include "base/NurvFailure.h"
#include "tags/AACTagsHelper.h"
#include "tags/HandedFile.h"
#include "tags/PictureDigest.h"
#include "tags/PictureMemory.h"
#include "tags/PictureView.h"
#include "tags/StoredTags.h"
#include "tags/TagLibTagsHelper.h"
#include "tags/TagsChannel.h"
#include "tags/TagsProcess.h"
#include "tags/TagsSandbox.h"
#include "tags/TagsUnavailable.h"
#include "tags/TagTrial.h"

#include <exception>
#include <new>
#include <thread>

#include <poll.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using Kind = TagsMessageKind;

constexpr std::chrono::seconds kTagsTime{20};
// The digest of a chunk of many gigabytes.
constexpr std::chrono::seconds kInventoryTime{600};

TagsObject readTags(TagFormat format, const QString &path)
{
    switch (format) {
    case TagFormat::Mp3: return TagLibTagsHelper::tagsForMP3File(path);
    case TagFormat::Aiff: return TagLibTagsHelper::tagsForAIFFFile(path);
    case TagFormat::Flac: return TagLibTagsHelper::tagsForFlacFile(path);
    case TagFormat::Ape: return TagLibTagsHelper::tagsForAPEFile(path);
    case TagFormat::Tta: return TagLibTagsHelper::tagsForTTAFile(path);
    case TagFormat::Wavpack: return TagLibTagsHelper::tagsForWavpackFile(path);
    case TagFormat::Mp4: return AACTagsHelper::tagsForFile(path);
    }
    throw NurvFailure(u"its format is unknown"_s);
}

TagsProcess::Written editTags(TagFormat format, const QString &path, TagsMessageReader &request)
{
    TagsProcess::Writing writing{.format = format, .writeEmptyTags = request.takeNumber(1) == 1};
    writing.encoding = request.takeNumber(1) == 1;
    const std::uint64_t version = request.takeNumber();
    AACTagsHelper::setQuickTimeVersionProvider([version]() -> std::optional<std::uint32_t> {
        return version == 0 ? std::nullopt : std::optional(static_cast<std::uint32_t>(version - 1));
    });
    return writeTagsByFormat(writing, path, request.takeRecord());
}

void answerEdits(TagsMessageWriter &answer, const TagsProcess::Written &written, HandedFile &file)
{
    answer.putOptional(written.date);
    answer.putOptional(written.leftOut);
    answer.putOptional(written.disorder);
    answer.putEdits(file.takeEdits());
}

void examine(TagsMessageReader &request, TagsMessageWriter &answer)
{
    const PictureReading reading = readPicture(request.takeBytes());
    answer.putNumber(reading.picture ? 1 : 0);
    if (reading.picture) {
        answer.putNumber(static_cast<std::uint64_t>(reading.picture->size().width()));
        answer.putNumber(static_cast<std::uint64_t>(reading.picture->size().height()));
        answer.putNumber(static_cast<std::uint64_t>(reading.picture->depth()));
    }
    answer.putOptional(reading.fault);
}

void scale(TagsMessageReader &request, TagsMessageWriter &answer)
{
    constexpr std::uint64_t kMostShown = 8192;
    const auto width = static_cast<int>(request.takeNumber(kMostShown));
    const auto height = static_cast<int>(request.takeNumber(kMostShown));
    const QImage view = pictureView(request.takeBytes(), {width, height});
    answer.putNumber(static_cast<std::uint64_t>(view.width()));
    answer.putNumber(static_cast<std::uint64_t>(view.height()));
    answer.putBytes(QByteArray(reinterpret_cast<const char *>(view.constBits()), view.sizeInBytes()));
}

/// What needs no file. False: it is something else.
bool answerWithoutFile(Kind kind, TagsMessageReader &request, TagsMessageWriter &answer)
{
    switch (kind) {
    case Kind::DigestPixels: answer.putBytes(pictureDigest(request.takeBytes())); return true;
    case Kind::ExaminePicture: examine(request, answer); return true;
    case Kind::ScalePicture: scale(request, answer); return true;
    default: return false;
    }
}

TagsMessageWriter answerTo(TagsChannel::Message message)
{
    TagsMessageReader request(std::move(message.bytes));
    TagsMessageWriter answer;
    if (answerWithoutFile(message.kind, request, answer))
        return answer;
    HandedFile file(std::move(message.file));
    const QString path = HandedFile::name();
    constexpr auto kLastFormat = static_cast<std::uint64_t>(TagFormat::Mp4);
    switch (message.kind) {
    case Kind::ReadTags:
        answer.putRecord(readTags(static_cast<TagFormat>(request.takeNumber(kLastFormat)), path));
        break;
    case Kind::EditTags: {
        const auto format = static_cast<TagFormat>(request.takeNumber(kLastFormat));
        answerEdits(answer, editTags(format, path, request), file);
        break;
    }
    case Kind::ReadStored:
        answer.putStoredTags(storedTags::read(static_cast<TagFormat>(request.takeNumber(kLastFormat)), path));
        break;
    case Kind::ReplaceStored: {
        const auto format = static_cast<TagFormat>(request.takeNumber(kLastFormat));
        storedTags::replace(format, path, request.takeStoredTags());
        answerEdits(answer, {}, file);
        break;
    }
    case Kind::TryTags: {
        const auto format = static_cast<TagFormat>(request.takeNumber(kLastFormat));
        const bool writeEmptyTags = request.takeNumber(1) == 1;
        const TagTrial trial = tryTags(format, path, request.takeRecord(), writeEmptyTags);
        answer.putStoredTags(trial.before);
        answer.putStoredTags(trial.after);
        break;
    }
    case Kind::ReadInventory: answer.putInventory(MetadataInventory::of(path)); break;
    default: throw NurvFailure(u"nobody asks that"_s);
    }
    return answer;
}

bool answer(TagsChannel &channel, TagsChannel::Message message)
{
    const auto fail = [&channel](bool isUnavailable, const QString &reason) {
        TagsMessageWriter failure;
        failure.putNumber(isUnavailable ? 1 : 0);
        failure.putText(reason);
        return channel.send(Kind::Failed, failure.bytes());
    };
    try {
        return channel.send(Kind::Done, answerTo(std::move(message)).bytes());
    } catch (const TagsUnavailable &reason) {
        return fail(true, reason.reason());
    } catch (const NurvFailure &reason) {
        return fail(false, reason.reason());
    } catch (const std::bad_alloc &) {
        return fail(true, u"there is not enough memory to read its tags"_s);
    } catch (const std::exception &reason) {
        return fail(true, QString::fromUtf8(reason.what()));
    }
}

/// Answers the first request with the reason, since one that ends before it is asked could not give it.
int refuse(TagsChannel &channel, const QString &reason)
{
    TagsMessageWriter refusal;
    refusal.putText(reason);
    if (channel.receive())
        static_cast<void>(channel.send(Kind::Refused, refusal.bytes()));
    return 1;
}

TagsChannel *logChannel = nullptr;

/// Lines of the log are the other process's to write, or not.
void logElsewhere(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    TagsMessageWriter line;
    line.putNumber(static_cast<std::uint64_t>(type));
    line.putText(text);
    if (logChannel != nullptr && !logChannel->send(Kind::Logged, line.bytes()))
        ::_exit(0);
}

/// Ends the process as soon as the other one is gone, whatever it is busy with.
void endWithTheOther(int socket)
{
    std::thread([socket] {
        pollfd fd{socket, 0, 0};
        while (::poll(&fd, 1, -1) <= 0) {
        }
        ::_exit(0);
    }).detach();
}

} // namespace

int runTagsService(int socket)
{
    TagsChannel channel(socket);
    try {
        tagsSandbox::enter();
    } catch (const NurvFailure &failure) {
        return refuse(channel, failure.reason());
    }
    endWithTheOther(socket);
    PictureMemory::askElsewhere([&channel](std::int64_t bytes) {
        TagsMessageWriter request;
        request.putNumber(static_cast<std::uint64_t>(bytes));
        if (!channel.send(Kind::NeedMemory, request.bytes()) || !channel.receive())
            ::_exit(0);
    });
    qInstallMessageHandler(logElsewhere);
    while (std::optional<TagsChannel::Message> message = channel.receive()) {
        try {
            tagsSandbox::allowProcessorTime(message->kind == Kind::ReadInventory ? kInventoryTime : kTagsTime);
        } catch (const NurvFailure &failure) {
            TagsMessageWriter refusal;
            refusal.putText(failure.reason());
            static_cast<void>(channel.send(Kind::Refused, refusal.bytes()));
            return 1;
        }
        logChannel = &channel;
        const bool isAnswered = answer(channel, std::move(*message));
        logChannel = nullptr;
        if (!isAnswered)
            break;
    }
    return 0;
}

} // namespace nurv
