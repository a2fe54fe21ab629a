// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "FuzzedFolder.h"
#include "settings/SettingsFile.h"

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

using namespace nurv;

void require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

/// Only plain values come out of a file, and lists of them.
bool isPlain(const QVariant &value)
{
    switch (value.metaType().id()) {
    case QMetaType::QVariantList: {
        const QVariantList values = value.toList();
        return std::all_of(values.begin(), values.end(), isPlain);
    }
    case QMetaType::UnknownType:
    case QMetaType::QString:
    case QMetaType::QStringList:
    case QMetaType::QByteArray:
    case QMetaType::QRect:
    case QMetaType::QSize:
    case QMetaType::QPoint: return true;
    default: return false;
    }
}

} // namespace

/// A settings file of any bytes: it is healthy, damaged or of no use, and tells which; what was
/// put into a healthy one is in it then.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using State = SettingsFile::State;
    const SettingsFile file(fuzz::FuzzedFolder::instance().write(u"settings.conf"_s, {data, size}));
    const SettingsFile::Contents contents = file.read();
    require(contents.state != State::Missing && contents.state != State::Inaccessible);
    require(contents.defect.isEmpty() == (contents.state == State::Healthy));
    require(std::all_of(contents.values.begin(), contents.values.end(), isPlain));
    if (contents.state != State::Healthy)
        return 0;
    const QString key = u"own/key"_s;
    require(!file.change({{key, QVariant(u"some, \"value\" \u266B"_s)}}));
    const SettingsFile::Contents changed = file.read();
    require(changed.state == State::Healthy && changed.values.value(key).toString() == u"some, \"value\" \u266B"_s);
    return 0;
}
