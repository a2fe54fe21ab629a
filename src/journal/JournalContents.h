// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "journal/FileIdentity.h"

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include <sys/types.h>

namespace nurv {

// The lines of a journal, after the first two (see JournalFile):
//
//     plan <number> <output> <what has its name> <source> <what the source is>
//     begun <number> <time> <folder>     ended <number>
//     aside <number> <path> <what is moved there>     back <number>
//     temporary <path>          gone <path>

/// What is under a name: "-" for nothing, "?" when nobody can tell, else a FileIdentity.
struct NameState {
    bool isKnown = false;
    std::optional<FileIdentity> file; ///< nothing: the name is free

    [[nodiscard]] bool isFree() const { return isKnown && !file; }
    [[nodiscard]] QByteArray toText() const;
    [[nodiscard]] static NameState fromText(const QByteArray &text);
    /// Of the name itself when it is a link; `follow`: of what it leads to.
    [[nodiscard]] static NameState of(const QByteArray &path, bool follow);
};

/// Which folder a file lies in, as long as the system runs: "-" when nobody can tell, else "<device>.<inode>".
struct FolderMark {
    dev_t device = 0;
    ino_t inode = 0;

    [[nodiscard]] bool isKnown() const { return inode != 0; }
    [[nodiscard]] bool operator==(const FolderMark &) const = default;
    [[nodiscard]] QByteArray toText() const;
    /// Unknown for anything else than such a text.
    [[nodiscard]] static FolderMark fromText(const QByteArray &text);
    /// Of the folder that the path leads into, links followed.
    [[nodiscard]] static FolderMark of(const QByteArray &path);
};

/// One output of a batch, as its journal tells it. Paths are bytes, and absolute.
struct PlannedOutput {
    std::int64_t number = 0;
    QByteArray output;
    QByteArray source;
    NameState formerOutput;
    NameState formerSource;
    std::optional<std::int64_t> begunNs; ///< when its making began, since 1970
    FolderMark folder;                   ///< that it was begun in
    bool hasEnded = false;
    QByteArray aside; ///< where the former output waits; empty: it never was moved
    bool isAsideSettled = false;

    [[nodiscard]] bool hasOpenAside() const { return !aside.isEmpty() && !isAsideSettled; }
};

/// A journal that has been read. Whatever is damaged in it leaves something out; nothing
/// comes out of it that was not written whole.
struct JournalContents {
    /// Why it is no journal that can be understood; empty when it is one.
    QString defect;
    QByteArray boot;
    QByteArray processMark;
    std::int64_t beganNs = 0;
    /// Whether no line is missing or damaged.
    bool isWhole = false;
    std::vector<PlannedOutput> outputs;
    QSet<QByteArray> temporaries; ///< noted and not gone

    /// Reads an open file from its beginning. Memory grows with what the file holds, up to
    /// JournalFile::kLargest. Blocks.
    [[nodiscard]] static JournalContents read(int descriptor);

private:
    void take(QByteArrayView line, std::size_t number);
    [[nodiscard]] bool takeHeader(const QList<QByteArray> &words);
    [[nodiscard]] bool takeWords(const QList<QByteArray> &words);
    [[nodiscard]] bool takePlan(const QList<QByteArray> &words);
    [[nodiscard]] bool takeMark(const QList<QByteArray> &words);
    [[nodiscard]] bool takeTemporary(const QList<QByteArray> &words);

    std::unordered_map<std::int64_t, std::size_t> m_placeOfNumber;
};

} // namespace nurv
