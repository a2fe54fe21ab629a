// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/JournalContents.h"

#include "base/SystemError.h"
#include "journal/JournalFile.h"
#include "journal/JournalLine.h"

#include <cerrno>
#include <unistd.h>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qsizetype kBlock = 256 * 1024;
/// Two paths of PATH_MAX bytes, each of which may need three.
constexpr qsizetype kLongestLine = 2 * 3 * 4096 + 1024;
constexpr qsizetype kLongestPath = 4096;

bool isPath(const QByteArray &path)
{
    return path.startsWith('/') && path.size() < kLongestPath && !path.contains('\0');
}

} // namespace

QByteArray NameState::toText() const
{
    if (!isKnown)
        return "?";
    return file ? file->toText() : QByteArray("-");
}

NameState NameState::fromText(const QByteArray &text)
{
    if (text == "-")
        return {.isKnown = true, .file = std::nullopt};
    const std::optional<FileIdentity> file = FileIdentity::fromText(text);
    return {.isKnown = file.has_value(), .file = file};
}

NameState NameState::of(const QByteArray &path, bool follow)
{
    struct stat facts = {};
    if ((follow ? ::stat(path.constData(), &facts) : ::lstat(path.constData(), &facts)) == 0)
        return {.isKnown = true, .file = FileIdentity::of(facts)};
    return {.isKnown = errno == ENOENT, .file = std::nullopt};
}

JournalContents JournalContents::read(int descriptor)
{
    JournalContents contents;
    contents.isWhole = true;
    QByteArray rest;
    std::size_t lineCount = 0;
    for (std::int64_t at = 0; at < JournalFile::kLargest;) {
        QByteArray block(kBlock, Qt::Uninitialized);
        const ssize_t count = ::pread(descriptor, block.data(), static_cast<std::size_t>(kBlock), at);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            contents.defect = systemErrorText(errno);
        if (count <= 0)
            break;
        at += count;
        rest += QByteArrayView(block).first(count);
        qsizetype from = 0;
        for (qsizetype end = rest.indexOf('\n'); end >= 0; end = rest.indexOf('\n', from)) {
            contents.take(QByteArrayView(rest).sliced(from, end - from), lineCount++);
            from = end + 1;
        }
        rest.remove(0, from);
        if (rest.size() > kLongestLine)
            contents.defect = u"it is no journal"_s;
        if (!contents.defect.isEmpty())
            break;
    }
    // The end of a line that was being written, or the beginning of a strange file.
    if (!rest.isEmpty())
        contents.isWhole = false;
    if (lineCount == 0 && contents.defect.isEmpty())
        contents.defect = u"it is no journal"_s;
    return contents;
}

void JournalContents::take(QByteArrayView line, std::size_t number)
{
    const std::optional<QList<QByteArray>> words =
        line.size() <= kLongestLine ? journalWords(line) : std::optional<QList<QByteArray>>();
    if (number == 0) {
        if (!words || !takeHeader(*words))
            defect = defect.isEmpty() ? u"it is no journal"_s : defect;
        return;
    }
    if (number == 1) {
        isWhole = isWhole && words && *words == QList<QByteArray>{"marks", "whole"};
        return;
    }
    // An empty line is the place where somebody went on behind a line without an end.
    if (!line.isEmpty() && (!words || !takeWords(*words)))
        isWhole = false;
}

bool JournalContents::takeHeader(const QList<QByteArray> &words)
{
    if (words.size() < 2 || words[0] != "nurv-journal")
        return false;
    if (words[1] != "1" || words.size() != 7) {
        defect = u"it was written by another version"_s;
        return false;
    }
    const std::optional<std::int64_t> began = wholeNumber(words[6]);
    boot = words[3];
    processMark = words[5];
    beganNs = began.value_or(0);
    return began.has_value();
}

QByteArray FolderMark::toText() const
{
    if (!isKnown())
        return "-";
    return QByteArray::number(static_cast<qulonglong>(device)) + '.' + QByteArray::number(static_cast<qulonglong>(inode));
}

FolderMark FolderMark::fromText(const QByteArray &text)
{
    const qsizetype point = text.indexOf('.');
    bool isDevice = false;
    bool isInode = false;
    const qulonglong device = text.left(point).toULongLong(&isDevice);
    const qulonglong inode = text.mid(point + 1).toULongLong(&isInode);
    return point > 0 && isDevice && isInode ? FolderMark{device, inode} : FolderMark{};
}

FolderMark FolderMark::of(const QByteArray &path)
{
    struct stat facts = {};
    const QByteArray folder = path.left(path.lastIndexOf('/') + 1);
    return ::stat(folder.constData(), &facts) == 0 ? FolderMark{facts.st_dev, facts.st_ino} : FolderMark{};
}

bool JournalContents::takeWords(const QList<QByteArray> &words)
{
    if (words[0] == "plan")
        return takePlan(words);
    if (words[0] == "temporary" || words[0] == "gone")
        return takeTemporary(words);
    return takeMark(words);
}

bool JournalContents::takePlan(const QList<QByteArray> &words)
{
    const std::optional<std::int64_t> number = words.size() == 6 ? wholeNumber(words[1]) : std::nullopt;
    if (!number || !isPath(words[2]) || !isPath(words[4]))
        return false;
    if (!m_placeOfNumber.emplace(*number, outputs.size()).second)
        return false;
    PlannedOutput planned;
    planned.number = *number;
    planned.output = words[2];
    planned.formerOutput = NameState::fromText(words[3]);
    planned.source = words[4];
    planned.formerSource = NameState::fromText(words[5]);
    outputs.push_back(planned);
    return true;
}

bool JournalContents::takeMark(const QList<QByteArray> &words)
{
    const std::optional<std::int64_t> number = words.size() >= 2 ? wholeNumber(words[1]) : std::nullopt;
    const auto place = number ? m_placeOfNumber.find(*number) : m_placeOfNumber.end();
    if (place == m_placeOfNumber.end())
        return false;
    PlannedOutput &planned = outputs[place->second];
    if (words[0] == "begun" && (words.size() == 3 || words.size() == 4)) {
        planned.begunNs = wholeNumber(words[2]);
        planned.folder = words.size() > 3 ? FolderMark::fromText(words[3]) : FolderMark(); // older versions told none
        planned.hasEnded = false;
        return planned.begunNs.has_value();
    }
    if (words[0] == "ended" && words.size() == 2) {
        planned.hasEnded = true;
        return true;
    }
    if (words[0] == "aside" && words.size() == 4 && isPath(words[2])) {
        planned.aside = words[2];
        planned.formerOutput = NameState::fromText(words[3]);
        planned.isAsideSettled = false;
        return true;
    }
    planned.isAsideSettled = planned.isAsideSettled || words[0] == "back";
    return words[0] == "back" && words.size() == 2;
}

bool JournalContents::takeTemporary(const QList<QByteArray> &words)
{
    if (words.size() != 2 || !isPath(words[1]))
        return false;
    if (words[0] == "temporary")
        temporaries.insert(words[1]);
    else
        temporaries.remove(words[1]);
    return true;
}

} // namespace nurv
