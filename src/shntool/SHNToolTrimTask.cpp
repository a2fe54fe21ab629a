// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNToolTrimTask.h"

#include "app/PathNames.h"
#include "programs/ShntoolModes.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

const QString kTrimming = u"Trimming"_s;
const QString kScanning = u"Scanning"_s;

} // namespace

SHNToolTrimTask::SHNToolTrimTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments)
    : SHNToolEditTask(queue, launchPath, arguments,
                      editsOfEach(arguments, u"-trimmed"_s, SoundComparison::Relation::Contained)),
      m_operation(kTrimming)
{
    if (!works().empty()) {
        works().front().whyItStays = u"trimming never deletes the first file of its list"_s;
        works().front().staysAlways = true;
    }
    setTextFieldString(u"Running SHNTool Trim"_s);
    setTextFieldValue();
}

void SHNToolTrimTask::showOutput(const QString &chunk)
{
    const shntool::EditReport report = shntool::parseEdit(chunk);
    const QString &text = report.text;
    const bool scans = text.contains(kScanning);
    const bool trims = text.contains(kTrimming);
    if (scans)
        m_operation = kScanning;
    if (trims)
        m_operation = kTrimming;
    if (scans || trims)
        appendResultsForSelf(text.section(u": "_s, 0, 0));
    if ((text.contains(u"Trimming ["_s) || text.contains(u"Scanning ["_s)) && text.contains(u"] ("_s)) {
        m_fileName = lastPathComponent(text.section(u'[', 1).section(u']', 0, 0));
        showMainLine(m_fileName);
    }
    if (text.contains(u"ERROR"_s) || text.contains(u"OK"_s))
        appendResultsForSelf(text);
    if (report.percent)
        showProgress(u"%1 Files: %2%"_s.arg(m_operation, *report.percent), *report.progress);
    appendResultsForSelf(text);
}

} // namespace nurv
