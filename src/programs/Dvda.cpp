// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Dvda.h"

#include "programs/ProgramOutput.h"
#include "text/TextNumbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv::dvda {

const ExternalProgram &program()
{
    static const ExternalProgram program{
        .name = u"dvda"_s, .isBundled = true, .package = {}, .purpose = u"authors DVD-Audio discs"_s};
    return program;
}

QStringList authoringArguments(const QString &log, const QString &folder, const QStringList &sources)
{
    return QStringList{u"-l"_s, log, u"-P0"_s, u"-S"_s, u"-f"_s, u"-o"_s, folder, u"-g"_s} + sources;
}

std::optional<BegunFile> parseAuthoring(QStringView chunk, int sources)
{
    static constexpr QStringView kMarker = u"[Nurv]  Processing ";
    constexpr qsizetype kNumberDigits = 2;
    const QString text = trimBackspaces(chunk);
    if (sources <= 0 || !text.contains(kMarker))
        return std::nullopt;
    const QStringView rest = QStringView(text).sliced(kMarker.size());
    const int number = leadingInteger(rest.first(std::min(kNumberDigits, rest.size())));
    const QString path = trimWhitespaceAndNewlines(rest.sliced(std::min(kNumberDigits + 1, rest.size())));
    return BegunFile{.name = path.sliced(path.lastIndexOf(u'/') + 1), .progress = (number * 100 + 100) / sources};
}

QString reasonOfFailure(QStringView text)
{
    return programOutput::lastMessage(text, program().name);
}

} // namespace nurv::dvda
