// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fix/FixTab.h"

#include "app/NURVController.h"
#include "engine/NURVTaskQueue.h"
#include "fix/FixTask.h"

using namespace Qt::StringLiterals;

namespace nurv {

FixTab::FixTab(NURVController &controller)
    : BaseTab(controller, u"fix SBE"_s), outputFormatMatrix({u"SHN"_s, u"FLAC"_s, u"AIFF"_s, u"WAV"_s}),
      flacLevelSlider(0, 8, 1, 4), shnMd5Option({u"No MD5"_s, u"1 MD5"_s, u"MD5 by disc*"_s}), md5Label(QString())
{
    outputFormatMatrix.bindToSetting(u"fixOutputFormat"_s);
    flacLevelSlider.bindToSetting(u"fixFlacLevel"_s);
    originals.follow(deleteOriginalsButton);
    connect(&outputFormatMatrix, &Control::valueChanged, this, &FixTab::displayRelevantOptions);
    displayRelevantOptions();
}

void FixTab::displayRelevantOptions()
{
    const QString format = outputFormatMatrix.selectedTitle();
    const bool isShn = format == u"SHN";
    const bool isFlac = format == u"FLAC";
    flacLevelSlider.setEnabled(isFlac);
    shnMd5Option.setHidden(!isShn);
    flacFingerprintButton.setHidden(!isFlac);
    md5Label.setHidden(!isShn && !isFlac);
    if (isShn)
        md5Label.setText(u"MD5 Options"_s);
    else if (isFlac)
        md5Label.setText(u"FLAC Fingerprint"_s);
}

QString FixTab::md5Option() const
{
    const bool wantsFingerprints = flacFingerprintButton.isOn() && outputFormatMatrix.selectedTitle() == u"FLAC";
    return wantsFingerprints ? u"FFP"_s : shnMd5Option.selectedTitle();
}

std::shared_ptr<FixTask> FixTab::makeTask(const QString &outputFolder)
{
    auto task = std::make_shared<FixTask>(&nurvController().taskQueue(), fileNames(),
                                          outputFormatMatrix.selectedTitle().toLower(), outputFolder, md5Option(),
                                          flacLevelSlider.integerValue(), this);
    task->setDeleteOriginal(deleteOriginalsButton.isOn());
    task->setDeletionNeeds(originals.proveButton.isOn(), !originals.dropMetadataButton.isOn());
    return task;
}

void FixTab::executeCommand()
{
    // Without a format there is nothing to be made.
    if (fileNames().isEmpty() || outputFormatMatrix.selectedTitle().isEmpty())
        return;
    if (!confirmDeletingOriginals(deleteOriginalsButton.isOn()))
        return;
    const std::optional<QString> folder = chooseOutputFolder();
    if (!folder)
        return;
    nurvController().taskQueue().addTask(makeTask(*folder));
    deleteOriginalsButton.setOn(false);
}

NeededPrograms FixTab::neededPrograms() const
{
    if (fileNames().isEmpty())
        return {};
    // Which programs there are does not depend on where the outputs go.
    return FixTask(nullptr, fileNames(), outputFormatMatrix.selectedTitle().toLower(), QString(), md5Option(),
                   flacLevelSlider.integerValue(), nullptr)
        .neededPrograms();
}

} // namespace nurv
