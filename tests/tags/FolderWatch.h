// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFile>
#include <QList>
#include <QString>

#include <gtest/gtest.h>

#include <cstdint>

#include <sys/inotify.h>
#include <unistd.h>

namespace nurv::test {

/// While it lives it notes what happens to the names in a folder.
class FolderWatch {
public:
    explicit FolderWatch(const QString &folder) : m_watch(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        EXPECT_GE(::inotify_add_watch(m_watch, QFile::encodeName(folder).constData(),
                                      IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO),
                  0);
    }
    ~FolderWatch() { ::close(m_watch); }
    FolderWatch(const FolderWatch &) = delete;
    FolderWatch &operator=(const FolderWatch &) = delete;

    struct Event {
        std::uint32_t kind;
        QString name;
    };
    [[nodiscard]] QList<Event> events() const
    {
        QList<Event> events;
        alignas(inotify_event) char buffer[8192];
        const ssize_t size = ::read(m_watch, buffer, sizeof buffer);
        for (ssize_t at = 0; at < size;) {
            const auto *const event = reinterpret_cast<const inotify_event *>(buffer + at);
            events.append({event->mask, QString::fromUtf8(event->name)});
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
        return events;
    }

private:
    int m_watch;
};

} // namespace nurv::test
