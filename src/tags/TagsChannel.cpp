// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagsChannel.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>

namespace nurv {

namespace {

constexpr std::size_t kHeadSize = 9; // kind, size
using Clock = std::chrono::steady_clock;

} // namespace

bool TagsChannel::fail(Fault fault)
{
    m_fault = fault;
    return false;
}

bool TagsChannel::waitFor(short events)
{
    while (true) {
        int milliseconds = -1;
        if (m_deadline) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(*m_deadline - Clock::now()).count();
            milliseconds = static_cast<int>(std::clamp<std::int64_t>(left, 0, 1'000'000));
        }
        pollfd fd{m_socket, events, 0};
        const int ready = ::poll(&fd, 1, milliseconds);
        if (ready > 0)
            return true;
        if (ready == 0 && m_deadline && Clock::now() >= *m_deadline)
            return fail(Fault::TooLate);
        if (ready < 0 && errno != EINTR)
            return fail(Fault::Ended);
    }
}

bool TagsChannel::send(TagsMessageKind kind, const QByteArray &bytes, int file)
{
    std::array<char, kHeadSize> head{};
    head[0] = static_cast<char>(kind);
    qToLittleEndian<quint64>(static_cast<quint64>(bytes.size()), head.data() + 1);
    std::size_t done = 0;
    const auto total = kHeadSize + static_cast<std::size_t>(bytes.size());
    while (done < total) {
        if (!waitFor(POLLOUT))
            return false;
        std::array<iovec, 2> parts{};
        const std::size_t headLeft = done < kHeadSize ? kHeadSize - done : 0;
        const std::size_t bytesDone = done < kHeadSize ? 0 : done - kHeadSize;
        parts[0] = {head.data() + (kHeadSize - headLeft), headLeft};
        parts[1] = {const_cast<char *>(bytes.constData()) + bytesDone,
                    static_cast<std::size_t>(bytes.size()) - bytesDone};
        msghdr message = {};
        message.msg_iov = parts.data();
        message.msg_iovlen = parts.size();
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
        if (file >= 0 && done == 0) {
            message.msg_control = control.data();
            message.msg_controllen = control.size();
            cmsghdr *const rights = CMSG_FIRSTHDR(&message);
            rights->cmsg_level = SOL_SOCKET;
            rights->cmsg_type = SCM_RIGHTS;
            rights->cmsg_len = CMSG_LEN(sizeof(int));
            std::memcpy(CMSG_DATA(rights), &file, sizeof file);
        }
        const ssize_t sent = ::sendmsg(m_socket, &message, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && errno != EINTR && errno != EAGAIN)
            return fail(Fault::Ended);
        done += sent > 0 ? static_cast<std::size_t>(sent) : 0;
    }
    return true;
}

bool TagsChannel::receiveHead(char *head, FileDescriptor &file)
{
    std::size_t done = 0;
    while (done < kHeadSize) {
        if (!waitFor(POLLIN))
            return false;
        iovec part{head + done, kHeadSize - done};
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
        msghdr message = {};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        const ssize_t got = ::recvmsg(m_socket, &message, MSG_CMSG_CLOEXEC | MSG_DONTWAIT);
        if (got < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (got <= 0)
            return fail(Fault::Ended);
        const cmsghdr *const rights = CMSG_FIRSTHDR(&message);
        if (rights != nullptr && rights->cmsg_level == SOL_SOCKET && rights->cmsg_type == SCM_RIGHTS
            && rights->cmsg_len == CMSG_LEN(sizeof(int))) {
            int descriptor = -1;
            std::memcpy(&descriptor, CMSG_DATA(rights), sizeof descriptor);
            file = FileDescriptor(descriptor);
        }
        done += static_cast<std::size_t>(got);
    }
    return true;
}

bool TagsChannel::receiveAll(char *bytes, qsizetype size)
{
    qsizetype done = 0;
    while (done < size) {
        if (!waitFor(POLLIN))
            return false;
        const ssize_t got = ::recv(m_socket, bytes + done, static_cast<std::size_t>(size - done), MSG_DONTWAIT);
        if (got < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (got <= 0)
            return fail(Fault::Ended);
        done += got;
    }
    return true;
}

std::optional<TagsChannel::Message> TagsChannel::receive()
{
    std::array<char, kHeadSize> head{};
    Message message{};
    if (!receiveHead(head.data(), message.file))
        return std::nullopt;
    const auto size = qFromLittleEndian<quint64>(head.data() + 1);
    if (size > static_cast<quint64>(kMostBytes)) {
        m_fault = Fault::Damaged;
        return std::nullopt;
    }
    message.kind = static_cast<TagsMessageKind>(head[0]);
    message.bytes = QByteArray(static_cast<qsizetype>(size), Qt::Uninitialized);
    if (!receiveAll(message.bytes.data(), message.bytes.size()))
        return std::nullopt;
    return message;
}

} // namespace nurv
