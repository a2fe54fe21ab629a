// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/BaseTab.h"
#include "app/Control.h"
#include "originals/OriginalsControls.h"

#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace nurv {

class EditPreview;
class NURVTask;
class NURVTaskQueue;
class SHNToolEditTask;
class SHNToolSplitTask;

/// The tab that runs shntool on its files: lengths, facts, comparisons, trims, pads, strips, splits, joins, cue sheets.
class SHNtoolTab final : public BaseTab {
    Q_OBJECT

public:
    explicit SHNtoolTab(NURVController &controller);

    /// "len", "info", "cmp", "trim", "pad", "strip", "split", "join", "cue".
    ChoiceControl shntoolCommandMatrix;
    /// The kinds of length reports: see SHNToolLenTask.
    ChoiceControl shnLenMatrix;
    LabelControl outputFormatText;
    /// SHN, FLAC, AIFF, WAV.
    ChoiceControl outputFormatMatrix;
    CheckControl sourceEncodeButton;
    CheckControl deleteOriginalsButton;
    /// Shows the track-names window.
    LabelControl namesButton;
    /// What a deletion takes.
    OriginalsControls originals;
    /// Shows what an edit will make, and asks, before it starts.
    CheckControl previewButton;
    /// Tells what an edit would make, in a report, and makes nothing.
    CheckControl previewOnlyButton;

    /// The names of the tracks for set lists; nothing: those of the files.
    [[nodiscard]] const std::optional<QStringList> &names() const { return m_names; }
    void trackNamesEntered(const QStringList &names);
    /// The length of the longest name, in characters.
    [[nodiscard]] static int getMaxTrackNamesLength(const QStringList &names);

    void showNamesWindow();
    void displayRelevantOptions() override;
    void executeCommand() override;
    [[nodiscard]] NeededPrograms neededPrograms() const override;

private:
    using Edit = std::shared_ptr<SHNToolEditTask>;

    void execute(const QString &command);
    void handleSHNtoolLen();
    void handleSHNtoolLenByDisc(const QStringList &names, int longestName);
    void handleSHNtoolInfo();
    void handleSHNtoolCompare();
    void handleSHNtoolEdit(const QString &command);
    void handleSHNtoolSplit();
    void handleSHNtoolCue();
    [[nodiscard]] std::optional<QString> chooseSplitPointFile();
    /// The folder for the outputs; nothing when the user gave it up.
    [[nodiscard]] std::optional<QString> outputFolder();
    [[nodiscard]] QString format() const { return outputFormatMatrix.selectedTitle().toLower(); }
    /// The jobs of an edit but a split.
    [[nodiscard]] std::vector<Edit> editsFor(const QString &command, const QString &folder) const;
    /// Nothing when the user has given up waiting for it.
    [[nodiscard]] std::optional<EditPreview> previewBy(
        const std::function<EditPreview(const std::function<bool()> &isUnwanted)> &make);
    /// Whether the edit is to start: the preview was shown and agreed to, or is not wanted.
    [[nodiscard]] bool mayStart(const EditPreview &preview);
    void queue(const std::shared_ptr<NURVTask> &job);
    [[nodiscard]] QStringList namesForReport() const;

    std::optional<QStringList> m_names;
};

} // namespace nurv
