// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QStringList>

namespace nurv {

struct FileIntake;

/// The folders that files came from, the last one first. They are kept for the next start. GUI thread.
class RecentFolders final : public QObject {
    Q_OBJECT

public:
    static constexpr qsizetype kMost = 8;

    explicit RecentFolders(QObject *parent = nullptr) : QObject(parent) {}

    /// Those that are there still. Asks the file system.
    [[nodiscard]] QStringList paths() const;
    /// Takes the folders that were given, and those of files that were, if anything came of them.
    void note(const FileIntake &found);
    void forget();

private:
    void store(const QStringList &paths);
};

} // namespace nurv
