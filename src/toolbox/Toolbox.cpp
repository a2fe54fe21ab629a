// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolbox/Toolbox.h"

#include "checksum/ChecksumTab.h"
#include "convert/DecodeTab.h"
#include "convert/EncodeTab.h"
#include "fix/FixTab.h"
#include "lossy/LossyTab.h"
#include "shntool/SHNtoolTab.h"

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
         .defaults = {{u"decodeToSourceDirectory"_s, 0}},
         .makeTab = make<DecodeTab>},
        {.label = u"encode"_s,
         .title = QT_TRANSLATE_NOOP("Tool", "Encode"),
         .extensions = words(u"WAV AIF AIFF FLAC SHN WV TTA APE"_s),
         .takesAppleLossless = true,
         .takesAppleLosslessFromFolders = true,
         .defaults = {{u"encodeOutputFormat"_s, 2},
                      {u"encodeFlacLevel"_s, 5},
                      {u"flacVerifyButton"_s, 0},
                      {u"flacKeepForeignMetadataButton"_s, 0},
                      {u"flacGenerateFFPButton"_s, 0},
                      {u"encodeToSourceDirectory"_s, 0}},
         .makeTab = make<EncodeTab>},
        {.label = u"checksum"_s,
         .title = QT_TRANSLATE_NOOP("Tool", "Checksum"),
         .extensions = words(u"WAV AIFF AIF FLAC SHN MD5 FFP TXT APE WV TTA ST5"_s),
         .takesAllFiles = true,
         .defaults = {{u"ffpExtension"_s, u"ffp.txt"_s}, {u"checksumFileUsesOutputDirName"_s, false},
                      {u"checksumAnyList"_s, 0}},
         .makeTab = make<ChecksumTab>},
        {.label = u"shntool"_s,
         .title = QT_TRANSLATE_NOOP("Tool", "SHNtool"),
         .extensions = words(u"FLAC SHN WAV AIF AIFF TTA WV APE"_s),
         .defaults = {{u"shntoolNamesFormat"_s, u"%number. %name %time"_s},
                      {u"shntoolCommandOption"_s, 0},
                      {u"shntoolLenOption"_s, 0},
                      {u"shntoolOutputFormat"_s, 1},
                      {u"shntoolPreview"_s, 1}},
         .makeTab = make<SHNtoolTab>},
        {.label = u"fix SBE"_s,
         .title = QT_TRANSLATE_NOOP("Tool", "Fix SBE"),
         .extensions = words(u"FLAC SHN WAV AIF AIFF WV TTA"_s),
         .defaults = {{u"fixOutputFormat"_s, 1}, {u"fixFlacLevel"_s, 4}},
         .makeTab = make<FixTab>},
        {.label = u"util"_s, .title = QT_TRANSLATE_NOOP("Tool", "Util")},
        {.label = u"Tags"_s,
         .title = QT_TRANSLATE_NOOP("Tool", "Tags"),
         .extensions = words(u"FLAC M4A MP3 WV APE"_s),
         .takesFilesWithoutExtension = false},
        {.label = u"lossy"_s,
         .title = QT_TRANSLATE_NOOP("Tool", "Lossy"),
         .extensions = words(u"FLAC SHN WAV AIFF AIF WV TTA"_s),
         .takesAppleLossless = true,
         .defaults = {{u"lossySliderLevel"_s, 3},
                      {u"lossyStepperLevel"_s, 88},
                      {u"lossyComboLevel"_s, 160},
                      {u"opusFrameSizeIndex"_s, 3},
                      {u"encodeLossyToSourceDirectory"_s, 0},
                      {u"incomingSurroundOrder"_s, u"L R C LFE LS RS (STANDARD)"_s}},
         .makeTab = make<LossyTab>},
    };
    return tools;
}

} // namespace nurv
