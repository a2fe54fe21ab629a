// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/ProcessEnvironment.h"

#include <QFile>

#include <unistd.h>

namespace nurv {

ChildEnvironment processEnvironment()
{
    ChildEnvironment result;
    for (char **entry = environ; entry && *entry; ++entry) {
        const QByteArray text(*entry);
        const qsizetype equals = text.indexOf('=');
        if (equals > 0)
            result.insert(QFile::decodeName(text.left(equals)), QFile::decodeName(text.mid(equals + 1)));
    }
    return result;
}

} // namespace nurv
