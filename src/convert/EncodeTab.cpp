// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeTab.h"

#include "app/NURVController.h"
#include "app/PathNames.h"
#include "app/UserPrompts.h"
#include "checksum/ChecksumList.h"
#include "checksum/CreateFFPTask.h"
#include "checksum/CreateMD5Task.h"
#include "convert/Conversion.h"
#include "convert/EncodeALACTask.h"
#include "convert/EncodeALACToAPETask.h"
#include "convert/EncodeALACToFlacTask.h"
#include "convert/EncodeALACToTTATask.h"
#include "convert/EncodeALACToWavpackTask.h"
#include "convert/EncodeApeTask.h"
#include "convert/EncodeFlacTask.h"
#include "convert/EncodeSHNTask.h"
#include "convert/EncodeSHNToFlacTask.h"
#include "convert/EncodeThroughWavTask.h"
#include "convert/EncodeTTATask.h"
#include "convert/EncodeWavpackTask.h"
#include "convert/EncodeWavpackToFlacTask.h"
#include "engine/NURVTaskQueue.h"
#include "engine/NURVTaskResults.h"
#include "process/ResourceFolder.h"
#include "programs/Shntool.h"
#include "settings/SettingsStore.h"

#include <QDir>
#include <QMap>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

QString EncodeTab::outputFor(const Batch &batch, const QString &source) const
{
    return outputPath(folderFor(batch, source), source, outputFormat().toLower());
}

EncodeTab::EncodeTab(NURVController &controller)
    : ConversionTab(controller, u"encode"_s, u"encodeToSourceDirectory"_s),
      outputFormatMatrix({u"SHN"_s, u"WV"_s, u"FLAC"_s, u"TTA"_s, u"APE"_s, u"M4A"_s}, 2), flacSlider(0, 8, 1, 5),
      apeSlider(1000, 5000, 1000, 2000), wavepackFormatMatrix({u"Fast"_s, u"High"_s}, 2)
{
    outputFormatMatrix.bindToSetting(u"encodeOutputFormat"_s);
    flacSlider.bindToSetting(u"encodeFlacLevel"_s);
    const SettingsStore &settings = SettingsStore::instance();
    flacVerifyButton.setOn(settings.integer(u"flacVerifyButton"_s) != 0);
    flacKeepForeignMetadataButton.setOn(settings.integer(u"flacKeepForeignMetadataButton"_s) != 0);
    generateFFPButton.setOn(settings.integer(u"flacGenerateFFPButton"_s) != 0);
    connect(&outputFormatMatrix, &Control::valueChanged, this, &EncodeTab::displayRelevantOptions);
}

QString EncodeTab::outputFormat() const
{
    return outputFormatMatrix.selectedTitle();
}

void EncodeTab::displayRelevantOptions()
{
    const QString format = outputFormat();
    const bool isFlac = format == u"FLAC";
    generateMD5Button.setEnabled(format == u"SHN");
    flacVerifyButton.setEnabled(isFlac);
    flacLaxButton.setEnabled(isFlac);
    flacSlider.setEnabled(isFlac);
    flacKeepForeignMetadataButton.setEnabled(isFlac);
    apeSlider.setEnabled(format == u"APE");
    wavepackFormatMatrix.setEnabled(format == u"WV");
    generateFFPButton.setEnabled(isFlac);

    SettingsStore &settings = SettingsStore::instance();
    settings.setValue(u"flacVerifyButton"_s, flacVerifyButton.isOn() ? 1 : 0);
    settings.setValue(u"flacKeepForeignMetadataButton"_s, flacKeepForeignMetadataButton.isOn() ? 1 : 0);
    settings.setValue(u"flacGenerateFFPButton"_s, generateFFPButton.isOn() ? 1 : 0);
}

bool EncodeTab::sharesResults() const
{
    return outputFormat() == u"SHN" || outputFormat() == u"FLAC";
}

bool EncodeTab::confirmBesideSources(Batch &batch)
{
    if (originals.existingOutputs != ExistingOutputs::AsTold || outputFormat() != u"FLAC" || !anyOutputExists())
        return true;
    const Alert question{.title = u"One of the output files already exists and will be overwritten.  "
                                  "Are you sure you want to continue?"_s,
                         .message = {},
                         .buttons = {u"No"_s, u"Yes"_s}};
    batch.overwrite = nurvController().prompts().ask(question) == u"Yes";
    return batch.overwrite;
}

bool EncodeTab::anyOutputExists() const
{
    QMap<QString, QSet<QString>> outputsByFolder;
    for (const QString &source : fileNames())
        outputsByFolder[folderOf(source)].insert(outputPath(folderOf(source), source, u"flac"_s));
    for (auto folder = outputsByFolder.cbegin(); folder != outputsByFolder.cend(); ++folder) {
        if (isFileClash(getFilesFromOutputDirectory(folder.key(), u"flac"_s), folder.value()))
            return true;
    }
    return false;
}

QStringList EncodeTab::getFilesFromOutputDirectory(const QString &folder, const QString &extension)
{
    QStringList paths;
    const QStringList names =
        QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        if (formatWord(name) == extension.toUpper())
            paths.append(joinPath(folder, name));
    }
    return paths;
}

bool EncodeTab::isFileClash(const QStringList &existing, const QSet<QString> &outputFiles)
{
    return std::any_of(existing.begin(), existing.end(),
                       [&](const QString &path) { return outputFiles.contains(path); });
}

std::shared_ptr<NURVTask> EncodeTab::afterBatchTask(const Batch &batch) const
{
    if (generateMD5Button.isOn() && outputFormat() == u"SHN")
        return md5Task(batch);
    if (generateFFPButton.isOn() && outputFormat() == u"FLAC")
        return ffpTask(batch);
    return nullptr;
}

std::shared_ptr<NURVTask> EncodeTab::md5Task(const Batch &batch) const
{
    QStringList outputs;
    for (const QString &source : fileNames())
        outputs.append(outputFor(batch, source));
    const QString folder = folderFor(batch, fileNames().first());
    const bool namedAfterFolder = SettingsStore::instance().boolean(u"checksumFileUsesOutputDirName"_s);
    const QString list = joinPath(folder, checksumList::md5FileName(folder, namedAfterFolder));
    return std::make_shared<CreateMD5Task>(&nurvController().taskQueue(), outputs, list);
}

std::shared_ptr<NURVTask> EncodeTab::ffpTask(const Batch &batch) const
{
    QMap<QString, QStringList> outputsByFolder;
    for (const QString &source : fileNames())
        outputsByFolder[folderFor(batch, source)].append(outputFor(batch, source));
    const QString extension = SettingsStore::instance().string(u"ffpExtension"_s);
    return std::make_shared<CreateFFPTask>(&nurvController().taskQueue(), outputsByFolder,
                                           checksumList::ffpFileName(QString(), extension, false));
}

std::shared_ptr<Conversion> EncodeTab::makeConversion(const Batch &batch, const QString &source) const
{
    NURVTaskQueue *const queue = &nurvController().taskQueue();
    const QString folder = folderFor(batch, source);
    const QString format = outputFormat();
    const QString type = formatWord(source);
    const bool isAlac = type == u"M4A";
    if (EncodeThroughWavTask::suits(type, format) || EncodeThroughWavTask::suitsShapeOf(source, format))
        return encodeThroughWav(batch, source);
    if (format == u"SHN")
        return encodeSHN(source, folder, queue, batch.results);
    if (format == u"FLAC")
        return encodeFLAC(source, folder, queue, batch.results, batch.overwrite);
    if (format == u"WV") {
        if (isAlac)
            return std::make_shared<EncodeALACToWavpackTask>(queue, source, folder, wavpackLevel());
        return std::make_shared<EncodeWavpackTask>(queue, source, wavpackLevel(), folder);
    }
    if (format == u"TTA") {
        if (isAlac)
            return std::make_shared<EncodeALACToTTATask>(queue, source, folder);
        return std::make_shared<EncodeTTATask>(queue, source, folder);
    }
    if (format == u"APE") {
        if (isAlac)
            return std::make_shared<EncodeALACToAPETask>(queue, source, folder, apeSlider.stringValue());
        return std::make_shared<EncodeApeTask>(queue, source, apeSlider.stringValue(), folder);
    }
    if (format == u"M4A")
        return std::make_shared<EncodeALACTask>(queue, source, folder);
    return nullptr;
}

flac::Encoding EncodeTab::flacEncoding(bool overwrite) const
{
    return {.level = flacSlider.integerValue(),
            .lax = flacLaxButton.isOn(),
            .keepForeignMetadata = flacKeepForeignMetadataButton.isOn(),
            .verify = flacVerifyButton.isOn(),
            .overwrite = overwrite};
}

std::shared_ptr<Conversion> EncodeTab::encodeThroughWav(const Batch &batch, const QString &source) const
{
    EncodeThroughWavTask::Encoding encoding{
        .format = outputFormat(), .level = {}, .flac = flacEncoding(batch.overwrite)};
    if (encoding.format == u"WV")
        encoding.level = wavpackLevel();
    else if (encoding.format == u"APE")
        encoding.level = apeSlider.stringValue();
    return std::make_shared<EncodeThroughWavTask>(&nurvController().taskQueue(), source, folderFor(batch, source),
                                                  encoding, batch.results);
}

QString EncodeTab::wavpackLevel() const
{
    return wavepackFormatMatrix.selectedColumn() == 0 ? u"-f"_s : u"-h"_s;
}

std::shared_ptr<Conversion> EncodeTab::encodeSHN(const QString &source, const QString &outputFolder,
                                                 NURVTaskQueue *queue,
                                                 const std::shared_ptr<NURVTaskResults> &results) const
{
    return std::make_shared<EncodeSHNTask>(queue, programPath(shntool::program().name),
                                           shntool::toShortenArguments(source, outputFolder), results);
}

std::shared_ptr<Conversion> EncodeTab::encodeFLAC(const QString &source, const QString &outputFolder,
                                                  NURVTaskQueue *queue, const std::shared_ptr<NURVTaskResults> &results,
                                                  bool overwrite) const
{
    const flac::Encoding encoding = flacEncoding(overwrite);
    const QString type = formatWord(source);
    if (type == u"SHN" || type == u"APE") {
        return std::make_shared<EncodeSHNToFlacTask>(queue, programPath(shntool::program().name),
                                                     shntool::toFlacArguments(encoding, source, outputFolder),
                                                     type, results);
    }
    if (type == u"M4A") {
        return std::make_shared<EncodeALACToFlacTask>(queue, source, outputFolder, encoding.level, encoding.verify,
                                                      results);
    }
    if (type == u"WV") {
        return std::make_shared<EncodeWavpackToFlacTask>(queue, source, outputFolder, encoding.level, encoding.verify,
                                                         results);
    }
    const QString output = outputPath(outputFolder, source, u"flac"_s);
    return std::make_shared<EncodeFlacTask>(source, queue, programPath(flac::program().name),
                                            flac::encodingArguments(encoding, source, output), results);
}

} // namespace nurv
