// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later

// Preloaded into a program that test::ResidentProgram starts. Once the program's libraries are in
// their places it waits, before main(), for requests on the socket kServerSocket; each is answered
// by a fork, in which main() runs with the arguments, environment, folder and descriptors of the request.
#include "support/ResidentRequest.h"

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using nurv::test::kServerSocket;
using nurv::test::ResidentRequest;
using Main = int (*)(int, char **, char **);
using Start = int (*)(Main, int, char **, void (*)(), void (*)(), void (*)(), void *);

Main g_main = nullptr;

bool readAll(void *bytes, std::size_t size)
{
    auto *at = static_cast<char *>(bytes);
    while (size > 0) {
        const ssize_t got = ::read(kServerSocket, at, size);
        if (got <= 0)
            return false;
        at += got;
        size -= static_cast<std::size_t>(got);
    }
    return true;
}

bool tell(std::int32_t number)
{
    return ::send(kServerSocket, &number, sizeof number, MSG_NOSIGNAL) == sizeof number;
}

/// The head of a request, and its three descriptors.
bool receive(ResidentRequest &head, int (&descriptors)[3])
{
    iovec piece{&head, sizeof head};
    alignas(cmsghdr) char room[CMSG_SPACE(sizeof descriptors)];
    msghdr message{};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    message.msg_control = room;
    message.msg_controllen = sizeof room;
    if (::recvmsg(kServerSocket, &message, MSG_WAITALL) != sizeof head)
        return false;
    const cmsghdr *control = CMSG_FIRSTHDR(&message);
    if (!control || control->cmsg_type != SCM_RIGHTS || control->cmsg_len != CMSG_LEN(sizeof descriptors))
        return false;
    std::memcpy(descriptors, CMSG_DATA(control), sizeof descriptors);
    return true;
}

/// Never returns: runs the program, as the child that the request asked for.
[[noreturn]] void act(const ResidentRequest &head, std::string &words, const int (&descriptors)[3])
{
    std::vector<char *> strings;
    for (std::size_t at = 0; at < words.size(); at += std::strlen(&words[at]) + 1)
        strings.push_back(&words[at]);
    const char *const folder = strings.at(0);
    std::vector<char *> arguments(strings.begin() + 1, strings.begin() + 1 + head.argumentCount);
    arguments.push_back(nullptr);
    std::vector<char *> environment(strings.begin() + 1 + head.argumentCount, strings.end());
    environment.push_back(nullptr);
    environ = environment.data();
    ::umask(static_cast<mode_t>(head.umask));
    for (int i = 0; i < 3; ++i) {
        if (::dup2(descriptors[i], i) < 0)
            ::_exit(127);
        ::close(descriptors[i]);
    }
    ::close(kServerSocket);
    if (::chdir(folder) != 0)
        ::_exit(127);
    std::exit(g_main(static_cast<int>(head.argumentCount), arguments.data(), environ));
}

/// Answers one request; false when there will be none after it.
bool serve()
{
    ResidentRequest head;
    int descriptors[3];
    if (!receive(head, descriptors))
        return false;
    std::string words(head.size, '\0');
    if (!readAll(words.data(), words.size()))
        return false;
    const pid_t child = ::fork();
    if (child == 0)
        act(head, words, descriptors);
    for (const int descriptor : descriptors)
        ::close(descriptor);
    int status = 0;
    return child > 0 && tell(child) && ::waitpid(child, &status, 0) == child && tell(status);
}

int waitForRequests(int, char **, char **)
{
    // Nobody's child: the test process has no children but those of the code under test.
    const pid_t server = ::fork();
    if (server != 0)
        ::_exit(server < 0 ? 127 : 0);
    ::setsid();
    ::closefrom(kServerSocket + 1);
    if (tell(::getpid())) {
        while (serve()) {
        }
    }
    ::_exit(0);
}

} // namespace

extern "C" int __libc_start_main(Main program, int count, char **arguments, void (*begin)(), void (*end)(),
                                 void (*loaderEnd)(), void *stackEnd)
{
    g_main = program;
    const auto start = reinterpret_cast<Start>(::dlsym(RTLD_NEXT, "__libc_start_main"));
    return start(waitForRequests, count, arguments, begin, end, loaderEnd, stackEnd);
}
