// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/BaseTab.h"
#include "app/Control.h"
#include "audio/AudioFormatObject.h"
#include "util/BatchRename.h"
#include "util/CDExtractSCSIProviderHelper.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace nurv {

class NURVTask;
struct FormatScan;

/// Where the system tells of discs.
struct DiscSystem {
    QString mountTable = QStringLiteral("/proc/self/mounts"); ///< in the format of fstab(5)
    QString rootFolder = QStringLiteral("/");                 ///< with "dev" in it
    QString programFolder = QStringLiteral("/usr/bin");       ///< of gio and udisksctl
    bool (*isDrive)(const struct stat &facts) = isBlockDevice;
};

/// The tab of the commands that no other one has: CDs copied, DVD-Audio discs authored, replay gain, de-emphasis, files
/// renamed.
///
/// While "DVD Audio Disc" is the command, the list shows the formats of its files, which are looked at whenever it grows and
/// have to match.
class UtilTab final : public BaseTab {
    Q_OBJECT

public:
    explicit UtilTab(NURVController &controller);

    static const QString kCdExtraction;
    static const QString kDvdAudioDisc;
    static const QString kReplayGain;
    static const QString kDeEmphasis;
    static const QString kBatchRename;

    /// The five commands; none at first. The user chooses with `utilCommandMatrix` and `commandClick`.
    ChoiceControl utilCommandMatrix;
    /// "Add", "Remove".
    ChoiceControl replayGainMatrix;
    /// CD extraction makes one file of all tracks.
    CheckControl oneTrackButton;
    /// Of all files of a disc.
    LabelControl totalTimeLabel;
    LabelControl totalTimeField{QString()};
    LabelControl totalSizeLabel;
    LabelControl totalSizeField{QString()};
    /// Shows the new names, and asks, before files are renamed.
    CheckControl renamePreviewButton;
    /// Undoes the last renaming; enabled while there is one.
    LabelControl undoRenameButton;

    [[nodiscard]] bool oneTrack() const { return oneTrackButton.isOn(); }
    void setOneTrack(bool oneTrack) { oneTrackButton.setOn(oneTrack); }

    /// The command that counts; empty: none.
    [[nodiscard]] QString command() const;
    /// The command without a question.
    void setCommand(const QString &title);
    /// The user has clicked the cell that was selected already.
    void commandClick();
    /// Gives the files of the last renaming their former names, and tells what stays.
    void undoRename();

    /// Looks at the formats of all files; blocks until that is done. A list in which they do not match, or with a file
    /// of a kind that no disc takes, is cleared. One whose scan was given up stays, without formats.
    void findFormatInfo();

    [[nodiscard]] QStringList columnTitles() const override;
    [[nodiscard]] QString columnText(int row, int column) const override;
    void clearFiles() override;
    void displayRelevantOptions() override;
    void executeCommand() override;
    [[nodiscard]] NeededPrograms neededPrograms() const override;

    /// The machine's own unless set.
    void setDiscSystem(const DiscSystem &system) { m_discSystem = system; }
    /// How long the matrix shows a choice that does not count; 100 ms unless set.
    void setRevertDelay(int milliseconds) { m_revertDelayMs = milliseconds; }

protected:
    void filesAdded() override;

private:
    void commandChosen();
    void revertCommand(int index);
    /// The list shows the formats of its files, or no longer.
    void showFormats(bool isShown);
    void showTotals();
    /// The files of these format words. When there is none, a message says so, and the list is cleared.
    [[nodiscard]] QStringList filesOf(const QStringList &formatWords, const QString &messageForNone);
    [[nodiscard]] FormatScan scanFormats(const QStringList &paths);
    void takeFormats(const QStringList &paths, const FormatScan &scan);
    void dropFiles(const QStringList &paths);
    void handleCDExtraction();
    [[nodiscard]] bool isDriveBusy(const QString &address);
    void queueCDExtraction(const QString &folder, const QString &range, const QString &address);
    [[nodiscard]] bool runDiscProgram(const QString &what,
                                      const std::function<QString(const std::function<bool()> &isUnwanted)> &run);
    void handleDVDAudioDisc();
    void handleReplayGain();
    void handleDeEmphasis();
    void handleBatchRename();
    [[nodiscard]] std::optional<QString> promptForBatchNameInput();
    [[nodiscard]] bool isNameTaken(const QList<Renaming> &plan);
    [[nodiscard]] bool mayRename(const QList<Renaming> &plan);
    void tellOutcome(const QString &title, const QStringList &problems);
    void showError(const QString &message);
    void queue(const std::shared_ptr<NURVTask> &job);

    int m_command = -1; ///< the cell that counts
    bool m_showsFormats = false;
    bool m_isScanning = false;
    bool m_mustScanAgain = false;
    QHash<QString, AudioFormatObject> m_formatObjects; ///< by path, of the files of the list
    DiscSystem m_discSystem;
    int m_revertDelayMs = 100;
};

} // namespace nurv
