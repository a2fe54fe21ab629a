// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/DoctorCommand.h"

#include "cli/BatchOptions.h"
#include "cli/ColumnWidth.h"
#include "cli/Console.h"
#include "programs/ExternalPrograms.h"
#include "tags/TagsProcess.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

struct Finding {
    const ExternalProgram &program;
    ProgramStatus status;
};

bool isFound(const Finding &finding)
{
    return finding.status.state == ProgramStatus::State::Found;
}

/// No program that jobs start, but the one that reads tags for them.
const ExternalProgram &tagsProgram()
{
    static const ExternalProgram program{.name = u"nurv-tags"_s,
                                         .isBundled = true,
                                         .package = {},
                                         .purpose = u"reads tags and pictures, apart from everything else"_s,
                                         .isRequired = true};
    return program;
}

std::vector<Finding> findAll()
{
    std::vector<Finding> findings;
    for (const ExternalProgram &program : externalPrograms())
        findings.push_back({program, checkProgram(program)});
    findings.push_back({tagsProgram(), checkProgram(tagsProgram(), TagsProcess::installedProgram())});
    return findings;
}

QString stateText(const Finding &finding)
{
    switch (finding.status.state) {
    case ProgramStatus::State::Found: return u"found"_s;
    case ProgramStatus::State::NotExecutable: return u"not executable"_s;
    case ProgramStatus::State::NotFound: break;
    }
    return u"not found"_s;
}

QString providerOf(const ExternalProgram &program)
{
    if (!program.isBundled)
        return program.package;
    if (!isPartOfThisBuild(program))
        return u"not included yet"_s;
    return u"bundled"_s;
}

QString table(const std::vector<QStringList> &rows)
{
    std::vector<int> widths;
    for (const QStringList &row : rows) {
        widths.resize(std::max(widths.size(), static_cast<std::size_t>(row.size())));
        for (qsizetype i = 0; i < row.size(); ++i) {
            int &width = widths[static_cast<std::size_t>(i)];
            width = std::max(width, displayWidth(row[i]));
        }
    }
    QString text;
    for (const QStringList &row : rows) {
        for (qsizetype i = 0; i < row.size(); ++i) {
            const int padding = widths[static_cast<std::size_t>(i)] - displayWidth(row[i]) + 2;
            text += row[i];
            if (i + 1 < row.size())
                text += QString(padding, u' ');
        }
        text += u'\n';
    }
    return text;
}

QString readableReport(const std::vector<Finding> &findings)
{
    std::vector<QStringList> rows{{u"PROGRAM"_s, u"STATE"_s, u"VERSION"_s, u"PACKAGE"_s, u"WHERE"_s, u"PURPOSE"_s}};
    for (const Finding &finding : findings) {
        const QString version = finding.status.version.isEmpty() ? u"-"_s : finding.status.version;
        rows.push_back({finding.program.name, stateText(finding), version, providerOf(finding.program),
                        finding.status.path, finding.program.purpose});
    }
    return table(rows);
}

void printJsonReport(Console &console, const std::vector<Finding> &findings, const QStringList &missing,
                     ExitStatus status)
{
    for (const Finding &finding : findings) {
        console.writeJson({{u"type"_s, u"program"_s},
                           {u"name"_s, finding.program.name},
                           {u"found"_s, isFound(finding)},
                           {u"state"_s, stateText(finding)},
                           {u"path"_s, finding.status.path},
                           {u"version"_s, finding.status.version},
                           {u"package"_s, finding.program.package},
                           {u"bundled"_s, finding.program.isBundled},
                           {u"required"_s, finding.program.isRequired},
                           {u"purpose"_s, finding.program.purpose}});
    }
    console.writeJson({{u"type"_s, u"doctor"_s},
                       {u"missing"_s, QJsonArray::fromStringList(missing)},
                       {u"exitStatus"_s, static_cast<int>(status)}});
}

CommandSpec makeSpec()
{
    return {.name = u"doctor"_s,
            .summary = u"tell which external programs are there, and what provides the others"_s,
            .synopsis = u"[OPTION]..."_s,
            .details = u"Looks every external program up in the folder of the tools and asks it for its\n"
                       "version. flac, metaflac, shntool and nurv-tags are required; the others are needed\n"
                       "for the formats that they stand for. nurv-tags is a part of this program: where it\n"
                       "is missing, no tags are copied, and their sources stay."_s,
            .takesPaths = false,
            .options = joined(joined({{.name = u"json"_s,
                                       .summary = u"print one JSON object per program and one for the whole"_s},
                                      {.name = u"quiet"_s, .summary = u"print nothing; the exit status tells"_s},
                                      {.name = u"yes"_s, .summary = u"accepted as everywhere; there are no questions"_s},
                                      {.name = u"no"_s, .summary = u"accepted as everywhere; there are no questions"_s}},
                                     unusedOptions()),
                              standingOptions())};
}

} // namespace

const CommandSpec &DoctorCommand::spec() const
{
    static const CommandSpec spec = makeSpec();
    return spec;
}

ExitStatus DoctorCommand::run(const ParsedArguments &arguments, Console &console) const
{
    const std::vector<Finding> findings = findAll();
    QStringList missing;
    bool requiredIsMissing = false;
    for (const Finding &finding : findings) {
        if (isFound(finding))
            continue;
        missing.append(finding.program.name);
        requiredIsMissing = requiredIsMissing || finding.program.isRequired;
    }
    const ExitStatus status = requiredIsMissing ? ExitStatus::MissingProgram : ExitStatus::Ok;
    if (arguments.has(u"json"_s))
        printJsonReport(console, findings, missing, status);
    else if (!arguments.has(u"quiet"_s))
        console.writeOutput(readableReport(findings));
    return status;
}

} // namespace nurv
