// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileStatus.h"
#include "journal/OutputJournal.h"

#include <QString>

namespace nurv {

/// Keeps a temporary file in the journal while it lives, and for as long as the file is
/// there after that. Made right after the file, destroyed after its end.
class NotedTemporary {
public:
    explicit NotedTemporary(const QString &path) : m_path(path) { OutputJournal::noteTemporary(m_path); }
    ~NotedTemporary()
    {
        if (!isThere(m_path))
            OutputJournal::forgetTemporary(m_path);
    }
    NotedTemporary(const NotedTemporary &) = delete;
    NotedTemporary &operator=(const NotedTemporary &) = delete;

private:
    QString m_path;
};

} // namespace nurv
