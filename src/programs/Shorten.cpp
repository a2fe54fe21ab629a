// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Shorten.h"

using namespace Qt::StringLiterals;

namespace nurv::shorten {

const ExternalProgram &program()
{
    static const ExternalProgram program{
        .name = u"shorten"_s, .isBundled = true, .package = {}, .purpose = u"encodes and decodes Shorten"_s};
    return program;
}

ProgramStage encoding(const QString &input, const QString &output)
{
    return {.name = program().name, .arguments = {input, output}, .parse = parse};
}

ChunkReport parse(QStringView chunk)
{
    return {.status = {}, .progress = {}, .results = chunk.toString()};
}

} // namespace nurv::shorten
