// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Mkisofs.h"

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
    return lastMessage(text, program().name);
}

QString lastMessage(QStringView text, const QString &name)
{
    const QString prefix = name + u": "_s;
    QString message;
    for (const QStringView line : text.split(u'\n')) {
        if (line.startsWith(prefix))
            message = trimWhitespaceAndNewlines(line.sliced(prefix.size()));
    }
    return message;
}

} // namespace nurv::mkisofs
