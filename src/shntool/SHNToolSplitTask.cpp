// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNToolSplitTask.h"

#include "app/PathNames.h"
#include "files/FileRename.h"
#include "files/FileStatus.h"
#include "programs/ShntoolModes.h"
#include "shntool/SplitTitles.h"
#include "text/TextNumbers.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qsizetype kFormatPlace = 4;
constexpr qsizetype kFolderPlace = 6;
constexpr qsizetype kSourcePlace = 7;

std::vector<QStringList> firstPieceOf(const QStringList &arguments)
{
    return {{joinPath(arguments.at(kFolderPlace), shntool::pieceName(1, arguments.at(kFormatPlace)))}};
}

} // namespace

SHNToolSplitTask::SHNToolSplitTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments)
    : SHNToolEditTask(queue, launchPath, arguments,
                      {{.sources = {arguments.at(kSourcePlace)},
                        .outputs = firstPieceOf(arguments),
                        .hasMoreOutputs = true,
                        .relation = SoundComparison::Relation::Equal}}),
      m_outputPath(arguments.at(kFolderPlace))
{
}

QString SHNToolSplitTask::pathOf(const QString &name) const
{
    return joinPath(m_outputPath, name);
}

void SHNToolSplitTask::willStart()
{
    // The disk is asked: it may take several spellings for one name. A title before the first track names a piece 0, which
    // no program makes.
    for (int number = 0; number <= shntool::kMostPieces; ++number) {
        const QString name = shntool::pieceName(number, arguments().at(kFormatPlace));
        if (isThere(pathOf(name)))
            m_foreign.insert(name);
    }
}

void SHNToolSplitTask::findOutputs(Work &work)
{
    work.outputs.clear();
    for (int number = 1; number <= shntool::kMostPieces; ++number) {
        const QString name = shntool::pieceName(number, arguments().at(kFormatPlace));
        if (m_foreign.contains(name) || !isThere(pathOf(name)))
            return;
        // It may have got the name of its title by now.
        QStringList names{pathOf(name)};
        if (const QString title = m_trackTitleMap.value(name); splitTitles::canBeName(title))
            names.append(pathOf(title));
        work.outputs.push_back(names);
    }
}

void SHNToolSplitTask::showOutput(const QString &chunk)
{
    const shntool::EditReport report = shntool::parseEdit(chunk);
    if (report.progress)
        showProgress(u"Splitting: %1%"_s.arg(sixDecimals(*report.progress)), *report.progress);
    appendResultsForSelf(report.text);
    showMainLine(title());
}

void SHNToolSplitTask::cleanup()
{
    // Before that there was no piece of this split.
    if (hasRun())
        renamePieces();
    SHNToolEditTask::cleanup();
}

void SHNToolSplitTask::renamePieces()
{
    for (auto entry = m_trackTitleMap.cbegin(); entry != m_trackTitleMap.cend(); ++entry) {
        const QString &piece = entry.key();
        const QString &name = entry.value();
        if (piece == name || m_foreign.contains(piece) || !isThere(pathOf(piece)))
            continue;
        // A title may hold anything: the piece then keeps the name that it has.
        const bool isRenamed = splitTitles::canBeName(name)
                               && renameToFreeName(QFile::encodeName(pathOf(piece)), QFile::encodeName(pathOf(name)));
        if (!isRenamed)
            warn(u"%1 keeps its name instead of %2"_s.arg(piece, name));
    }
}

} // namespace nurv
