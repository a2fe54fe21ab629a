// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/SystemCalls.h"

#include "support/ToolError.h"

#include <cerrno>
#include <system_error>

#include <poll.h>
#include <unistd.h>

namespace nurv {

namespace {

/// Whether a failed call is worth another try, after the wait it needs.
bool canTryAgain(int descriptor, short events)
{
    if (errno == EINTR)
        return true;
    if (errno != EAGAIN)
        return false;
    // Standard streams are shared: another process may have made them non-blocking.
    pollfd wait{descriptor, events, 0};
    return ::poll(&wait, 1, -1) >= 0 || errno == EINTR;
}

template<typename Write>
bool writeFully(int descriptor, std::span<const uint8_t> bytes, Write write)
{
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = write(bytes.subspan(done), done);
        if (count > 0) {
            done += static_cast<size_t>(count);
        } else if (count == 0) {
            errno = EIO;
            return false;
        } else if (!canTryAgain(descriptor, POLLOUT)) {
            return false;
        }
    }
    return true;
}

} // namespace

std::string errorText(int error)
{
    return std::generic_category().message(error);
}

void failRead(const std::string &name, int error)
{
    throw ToolError(ToolError::Kind::Read, "cannot read " + name + ": " + errorText(error));
}

void failWrite(const std::string &name, int error)
{
    throw ToolError(ToolError::Kind::Write, "cannot write " + name + ": " + errorText(error));
}

ssize_t readSome(int descriptor, std::span<uint8_t> bytes)
{
    ssize_t count = 0;
    do {
        count = ::read(descriptor, bytes.data(), bytes.size());
    } while (count < 0 && canTryAgain(descriptor, POLLIN));
    return count;
}

bool writeAll(int descriptor, std::span<const uint8_t> bytes)
{
    return writeFully(descriptor, bytes, [descriptor](std::span<const uint8_t> rest, size_t) {
        return ::write(descriptor, rest.data(), rest.size());
    });
}

bool writeAllAt(int descriptor, std::span<const uint8_t> bytes, uint64_t offset)
{
    return writeFully(descriptor, bytes, [descriptor, offset](std::span<const uint8_t> rest, size_t done) {
        return ::pwrite(descriptor, rest.data(), rest.size(), static_cast<off_t>(offset + done));
    });
}

} // namespace nurv
