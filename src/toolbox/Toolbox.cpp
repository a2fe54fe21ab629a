// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolbox/Toolbox.h"

#include "checksum/ChecksumTab.h"
#include "convert/DecodeTab.h"
#include "convert/EncodeTab.h"
#include "fix/FixTab.h"
#include "lossy/LossyTab.h"
#include "shntool/SHNtoolTab.h"
#include "tagging/TagsTab.h"
#include "toolbox/ToolSettings.h"
#include "util/UtilTab.h"

#include <QtGlobal>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

QStringList words(const QString &text)
{
    return text.split(u' ');
}

template<typename Tab>
std::unique_ptr<BaseTab> make(NURVController &controller)
{
    return std::make_unique<Tab>(controller);
}

} // namespace

const std::vector<Tool> &toolbox()
{
    static const std::vector<Tool> tools{
        {.label = u"decode"_s,
         .title = QT_TRANSLATE_NOOP("Tool", "Decode"),
         .extensions = words(u"FLAC SHN WV M4A TTA APE"_s),
         .settings = decodeSettings(),
         .makeTab = make<DecodeTab>},
        {.label = u"encode"_s,
         .title = QT_TRANSLATE_NOOP("Tool", "Encode"),
         .extensions = words(u"WAV AIF AIFF FLAC SHN WV TTA APE"_s),
         .takesAppleLossless = true,
         .takesAppleLosslessFromFolders = true,
         .settings = encodeSettings(),
         .makeTab = make<EncodeTab>},
        {.label = u"checksum"_s,
         .title = QT_TRANSLATE_NOOP("Tool", "Checksum"),
         .extensions = words(u"WAV AIFF AIF FLAC SHN MD5 FFP TXT APE WV TTA ST5"_s),
         .takesAllFiles = true,
         .settings = checksumSettings(),
         .makeTab = make<ChecksumTab>},
        {.label = u"shntool"_s,
         .title = QT_TRANSLATE_NOOP("Tool", "SHNtool"),
         .extensions = words(u"FLAC SHN WAV AIF AIFF TTA WV APE"_s),
         .settings = shntoolSettings(),
         .makeTab = make<SHNtoolTab>},
        {.label = u"fix SBE"_s,
         .title = QT_TRANSLATE_NOOP("Tool", "Fix SBE"),
         .extensions = words(u"FLAC SHN WAV AIF AIFF WV TTA"_s),
         .settings = fixSettings(),
         .makeTab = make<FixTab>},
        {.label = u"util"_s,
         .title = QT_TRANSLATE_NOOP("Tool", "Util"),
         .settings = utilSettings(),
         .makeTab = make<UtilTab>},
        {.label = u"Tags"_s,
         .title = QT_TRANSLATE_NOOP("Tool", "Tags"),
         .extensions = words(u"FLAC M4A MP3 WV APE"_s),
         .takesFilesWithoutExtension = false,
         .settings = tagsSettings(),
         .makeTab = make<TagsTab>},
        {.label = u"lossy"_s,
         .title = QT_TRANSLATE_NOOP("Tool", "Lossy"),
         .extensions = words(u"FLAC SHN WAV AIFF AIF WV TTA"_s),
         .takesAppleLossless = true,
         .settings = lossySettings(),
         .makeTab = make<LossyTab>},
    };
    return tools;
}

} // namespace nurv
