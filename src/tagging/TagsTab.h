// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/BaseTab.h"
#include "app/Control.h"
#include "app/TextControl.h"
#include "tagging/AlbumArtControl.h"
#include "tagging/NURVCustomTagsPanel.h"
#include "tagging/PendingResult.h"
#include "tagging/SelectedTags.h"
#include "tagging/TagPreview.h"
#include "tags/AlbumArt.h"
#include "tags/TagsObject.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <optional>

namespace nurv {

/// The tab that shows and writes the tags of FLAC, MP3, Monkey's Audio, WavPack and M4A files, of one file or of many
/// at a time. It queues no jobs: its button writes at once, file after file.
///
///     selection ──> worker reads ──> fields ──> the user ──> preview ──> files
///
/// While files are being read nothing can be typed and nothing is written.
class TagsTab final : public BaseTab {
    Q_OBJECT

public:
    explicit TagsTab(NURVController &controller);

    TextControl titleText;
    TextControl artistText;
    TextControl dateText;
    TextControl albumText;
    TextControl commentText;
    TextControl discText;
    TextControl trackText;
    TextControl trackTotalText;
    TextControl discTotalText;
    TextControl genreText;
    TextControl composerText;
    LabelControl multipleSelectionsLabel{QString()};
    AlbumArtControl albumArtImageView;
    LabelControl usePreviousTagsButton;
    /// Titles and track numbers come from the entered track names.
    CheckControl autoNameButton;
    /// Empty fields are written, too.
    CheckControl writeEmptyTagsButton;
    /// Shows what a press of the button will change, and asks, before anything is written.
    CheckControl previewButton;
    /// What was done last, or why something was not, in a sentence.
    LabelControl note{QString()};
    /// "various", beside the button of the custom tags.
    LabelControl customTagsNote{QString()};

    [[nodiscard]] bool autoName() const { return autoNameButton.isOn(); }
    void setAutoName(bool autoName) { autoNameButton.setOn(autoName); }
    [[nodiscard]] bool writeEmptyTags() const { return writeEmptyTagsButton.isOn(); }
    void setWriteEmptyTags(bool writeEmptyTags) { writeEmptyTagsButton.setOn(writeEmptyTags); }
    [[nodiscard]] NURVCustomTagsPanel &customTagsPanel() { return m_customTagsPanel; }
    [[nodiscard]] const std::optional<QStringList> &names() const { return m_names; }
    /// The record that was written last.
    [[nodiscard]] const std::optional<TagsObject> &previousTagsObject() const { return m_previousTagsObject; }

    void trackNamesEntered(const QStringList &names, const QString &source = {});
    void showNamesWindow();
    /// The user has switched automatic naming on or off.
    void autoNameClick();
    void loadTagsFromCueSheet();
    void openCustomTagsPanel();
    void usePreviousTags();
    void fillFromTagsObject(const TagsObject &record);
    /// What the first and the last of the selected files share. Reads them; blocks.
    [[nodiscard]] std::optional<TagsObject> getCommonTags() const;
    /// Whether all files of the list have equal records. Reads them; blocks.
    [[nodiscard]] bool allTagsEqual() const;

    /// The picture in the file, or in the bytes, goes into the well; the user is told why when it cannot be used.
    void takePictureFile(const QString &path);
    void takePicture(const QByteArray &bytes, const QString &name);
    void removePicture();
    /// Asks for a name and saves the picture of the well as it is.
    void savePictureAs();

    /// Whether the selected files, or a picture, are still being read.
    [[nodiscard]] bool isReading() const { return m_reading.isPending() || m_examining.isPending(); }
    /// Waits for what is being read.
    void finishReading();

    void clearFiles() override;
    void displayRelevantOptions() override;
    void executeCommand() override;
    [[nodiscard]] bool usesTableViewContextMenu() const override { return false; }

Q_SIGNALS:
    /// Reading has begun or ended.
    void readingChanged();

protected:
    void filesAdded() override;
    void selectionChanged() override;

private:
    /// What is to be written, as far as there are names for it.
    struct Plan {
        QList<TagWriting> writings;
        bool lacksNames = false; ///< and the action ends there with a message
    };

    void clearFields();
    void enableFields();
    void takeSelectedTags(const SelectedTags &selected);
    void showDifferences(const SelectedTags &selected);
    void noteProgress(qsizetype count);
    void beginExamining(const QString &name, const std::function<PictureReading()> &examine);
    [[nodiscard]] QStringList selectedFiles() const;
    /// False when the user wants a picture that cannot be used, and was told.
    [[nodiscard]] bool detectAlbumArt();
    [[nodiscard]] Plan makePlan();
    [[nodiscard]] TagsObject recordOfFields() const;
    /// False when a name of a custom tag cannot be written, and the user was told.
    [[nodiscard]] bool canWriteCustomTags(const Plan &plan);
    [[nodiscard]] bool mayWrite(const Plan &plan);
    /// False when it failed, and the user was told.
    [[nodiscard]] bool write(const QList<TagWriting> &writings);
    void tellLackOfNames();

    NURVCustomTagsPanel m_customTagsPanel;
    std::optional<QStringList> m_names;
    std::optional<TagsObject> m_previousTagsObject;
    QSet<QString> m_knownFiles;
    /// Of the selected files, those that the panel has no row for.
    NURVCustomTagsPanel::Tags m_hiddenCustomTags;
    std::uint64_t m_selection = 0; ///< how many there have been
    QString m_filledDiscTotal; ///< the DISCTOTAL that the panel was filled with
    bool m_isPictureRefused = false; ///< since the button was pressed
    bool m_hasUnread = false;      ///< of the selected files
    PendingResult<SelectedTags> m_reading;
    PendingResult<PictureReading> m_examining;
};

} // namespace nurv
