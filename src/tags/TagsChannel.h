// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"
#include "tags/TagsMessage.h"

#include <QByteArray>

#include <chrono>
#include <optional>

namespace nurv {

/// Messages over a socket: kind, size, bytes, and at most one open file with each. Both processes use
/// it; each takes the other for hostile. Belongs to one thread at a time.
class TagsChannel {
public:
    using Deadline = std::optional<std::chrono::steady_clock::time_point>;

    struct Message {
        TagsMessageKind kind;
        QByteArray bytes;
        FileDescriptor file;
    };

    enum class Fault { None, Ended, TooLate, Damaged };

    /// The socket stays its owner's.
    explicit TagsChannel(int socket) : m_socket(socket) {}

    void setDeadline(Deadline deadline) { m_deadline = deadline; }
    /// False when it could not be sent whole; `fault` tells why.
    [[nodiscard]] bool send(TagsMessageKind kind, const QByteArray &bytes, int file = -1);
    /// Nothing when there is none; `fault` tells why. Blocks.
    [[nodiscard]] std::optional<Message> receive();
    [[nodiscard]] Fault fault() const { return m_fault; }

    /// What TagLibGuard lets through, as UTF-16, with a picture.
    static constexpr qsizetype kMostBytes = qsizetype{256} << 20;

private:
    [[nodiscard]] bool waitFor(short events);
    [[nodiscard]] bool receiveHead(char *head, FileDescriptor &file);
    [[nodiscard]] bool receiveAll(char *bytes, qsizetype size);
    [[nodiscard]] bool fail(Fault fault);

    int m_socket;
    Deadline m_deadline;
    Fault m_fault = Fault::None;
};

} // namespace nurv
