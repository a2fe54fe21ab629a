// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Mkisofs.h"

#include "programs/ProgramOutput.h"
#include "text/TextNumbers.h"

using namespace Qt::StringLiterals;

namespace nurv::mkisofs {

namespace {

QStringList startedPrograms(const QStringList &)
{
    return {u"genisoimage"_s};
}

} // namespace

const ExternalProgram &program()
{
    static const ExternalProgram program{.name = u"mkisofs"_s,
                                         .isBundled = true,
                                         .package = u"genisoimage"_s,
                                         .purpose = u"makes disc images"_s,
                                         .versionArguments = {u"-version"_s},
                                         .startedBy = startedPrograms};
    return program;
}

QStringList imageArguments(const QString &image, const QString &folder)
{
    return {u"-o"_s, image, u"-dvd-audio"_s, folder};
}

std::optional<double> parseProgress(QStringView chunk)
{
    static constexpr QStringView kMarker = u"% done,";
    const QString text = trimBackspaces(chunk);
    if (!text.contains(kMarker))
        return std::nullopt;
    // As long as the marker: six places and the sign.
    return leadingNumber(QStringView(text).first(kMarker.size()));
}

QString reasonOfFailure(QStringView text)
{
    // What genisoimage has told stands below: its last line says why.
    const QString message = programOutput::lastMessage(text, program().name);
    const QString last = trimWhitespaceAndNewlines(text).section(u'\n', -1);
    return message.endsWith(u':') && !last.endsWith(message) ? message + u' ' + last : message;
}

} // namespace nurv::mkisofs
