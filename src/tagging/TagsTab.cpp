// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagging/TagsTab.h"

#include "app/NURVController.h"
#include "app/Panel.h"
#include "app/PathNames.h"
#include "app/TrackNameInputController.h"
#include "base/GuiThread.h"
#include "base/Log.h"
#include "base/NotificationCenter.h"
#include "base/NurvFailure.h"
#include "files/TextFile.h"
#include "journal/OutputJournal.h"
#include "tagging/CueSheetTagImporter.h"
#include "tagging/FolderArt.h"
#include "tagging/TagFields.h"
#include "tagging/TagFiles.h"
#include "tags/AACTagsHelper.h"
#include "tags/PictureView.h"
#include "tags/TagLibTagsHelper.h"
#include "text/PrintableText.h"

#include <QLocale>
#include <QPointer>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Most selections are read before anybody can see that they were not; a window must answer after 100 ms.
constexpr std::chrono::milliseconds kUnnoticed{50};
constexpr QStringView kVarious = u"various";

struct ControlOfField {
    const TagsObject::Text &(TagsObject::*text)() const;
    TextControl TagsTab::*control;
};

constexpr std::array<ControlOfField, 11> kControls = {{{&TagsObject::titleText, &TagsTab::titleText},
                                                       {&TagsObject::artistText, &TagsTab::artistText},
                                                       {&TagsObject::albumText, &TagsTab::albumText},
                                                       {&TagsObject::dateText, &TagsTab::dateText},
                                                       {&TagsObject::genreText, &TagsTab::genreText},
                                                       {&TagsObject::composerText, &TagsTab::composerText},
                                                       {&TagsObject::trackText, &TagsTab::trackText},
                                                       {&TagsObject::trackTotalText, &TagsTab::trackTotalText},
                                                       {&TagsObject::discText, &TagsTab::discText},
                                                       {&TagsObject::discTotalText, &TagsTab::discTotalText},
                                                       {&TagsObject::commentText, &TagsTab::commentText}}};

QString quoted(const QString &path)
{
    return u'“' + printableLine(lastPathComponent(path)) + u'”';
}

QString counted(qsizetype count)
{
    return count == 1 ? u"1 file"_s : u"%1 files"_s.arg(QLocale().toString(count));
}

/// What to do about a picture that the file cannot get.
QString adviceOn(const QString &reason)
{
    return reason.contains(u"picture"_s) ? u"\nWith an empty well the other tags can be written."_s : QString();
}

} // namespace

TagsTab::TagsTab(NURVController &controller)
    : BaseTab(controller, u"Tags"_s), usePreviousTagsButton(u"Use Previous Tags"_s),
      m_customTagsPanel(controller.prompts())
{
    previewButton.bindToSetting(u"tagsPreview"_s);
    NotificationCenter::instance().subscribe(QString::fromUtf16(NURVTrackNamesEnteredNotification), this,
                                             [this](const QVariant &names, const QVariantMap &information) {
                                                 trackNamesEntered(names.toStringList(),
                                                                   information.value(u"source"_s).toString());
                                             });
    // A file that was taken off the list is a new one when it comes again.
    connect(this, &BaseTab::fileNamesChanged, this,
            [this] { m_knownFiles.intersect(QSet<QString>(fileNames().begin(), fileNames().end())); });
    enableFields();
    displayRelevantOptions();
}

void TagsTab::trackNamesEntered(const QStringList &names, const QString &source)
{
    m_names = names.isEmpty() ? std::nullopt : std::optional(names);
    if (!m_names || source != u"CueSheetTagImporter")
        return;
    nurvController().trackNameInputController().setNames(names.join(u'\n') + u'\n');
    autoNameButton.setOn(true);
    showNamesWindow();
}

void TagsTab::showNamesWindow()
{
    nurvController().trackNameInputController().show(static_cast<int>(selectedRows().size()));
}

void TagsTab::autoNameClick()
{
    if (autoNameButton.isOn())
        showNamesWindow();
}

void TagsTab::loadTagsFromCueSheet()
{
    finishReading();
    CueSheetTagImporter importer(nurvController().prompts());
    const std::optional<TagsObject> album = importer.loadTagsFromCueSheet();
    if (!album)
        return;
    if (album->albumText())
        albumText.setText(*album->albumText());
    if (album->artistText())
        artistText.setText(*album->artistText());
}

void TagsTab::openCustomTagsPanel()
{
    finishReading();
    m_customTagsPanel.runPanel();
}

void TagsTab::usePreviousTags()
{
    finishReading();
    if (m_previousTagsObject)
        fillFromTagsObject(*m_previousTagsObject);
}

void TagsTab::fillFromTagsObject(const TagsObject &record)
{
    for (const ControlOfField &field : kControls) {
        if (const TagsObject::Text &text = (record.*field.text)())
            (this->*field.control).setText(*text);
    }
    if (record.albumArt())
        albumArtImageView.setPicture(record.albumArt());
    NURVCustomTagsPanel::Tags customTags = record.customTagsDictionary();
    // Of rows without a name, whose place another tag may have.
    customTags.remove(QString());
    m_customTagsPanel.fillTags(customTags);
    m_filledDiscTotal = customTags.value(u"DISCTOTAL"_s);
    m_hiddenCustomTags.clear();
    int row = 0;
    for (auto tag = customTags.cbegin(); tag != customTags.cend(); ++tag) {
        if (++row > NURVCustomTagsPanel::kRows)
            m_hiddenCustomTags.insert(tag.key(), tag.value());
    }
    customTagsNote.setText(m_hiddenCustomTags.isEmpty()
                               ? QString()
                               : u"%1 more than the panel shows; they are kept"_s.arg(m_hiddenCustomTags.size()));
}

void TagsTab::clearFields()
{
    for (const ControlOfField &field : kControls) {
        (this->*field.control).setText({});
        (this->*field.control).setPlaceholder({});
    }
    m_customTagsPanel.clearTags();
    m_hiddenCustomTags.clear();
    m_filledDiscTotal.clear();
    customTagsNote.setText({});
    albumArtImageView.setPicture(nullptr);
    albumArtImageView.setPlaceholder({});
}

void TagsTab::enableFields()
{
    const bool isReady = !m_reading.isPending();
    for (const ControlOfField &field : kControls)
        (this->*field.control).setEnabled(isReady);
    const bool isOne = selectedRows().size() == 1;
    titleText.setEnabled(isReady && isOne);
    trackText.setEnabled(isReady && isOne);
    albumArtImageView.setEnabled(isReady);
}

// Selection

void TagsTab::filesAdded()
{
    BaseTab::filesAdded();
    QList<int> newRows;
    for (int row = 0; row < fileNames().size(); ++row) {
        if (!m_knownFiles.contains(fileNames().at(row)))
            newRows.append(row);
    }
    m_knownFiles = QSet<QString>(fileNames().begin(), fileNames().end());
    setSelectedRows(newRows);
}

void TagsTab::clearFiles()
{
    BaseTab::clearFiles();
    m_knownFiles.clear();
    autoNameButton.setOn(false);
}

QStringList TagsTab::selectedFiles() const
{
    QStringList paths;
    for (const int row : selectedRows())
        paths.append(fileNames().at(row));
    return paths;
}

void TagsTab::selectionChanged()
{
    m_reading.giveUp();
    m_examining.giveUp();
    clearFields();
    note.setText({});
    const QStringList paths = selectedFiles();
    m_hasUnread = false;
    multipleSelectionsLabel.setText(paths.size() > 1 ? u"multiple selections"_s : QString());
    if (!paths.isEmpty()) {
        const auto report = [tab = QPointer<TagsTab>(this), selection = ++m_selection](qsizetype count) {
            postToGuiThread([tab, selection, count] {
                if (tab && tab->m_selection == selection)
                    tab->noteProgress(count);
            });
        };
        m_reading.begin(
            this,
            [paths, report](const std::function<bool()> &isUnwanted) {
                return readSelectedTags(paths, isUnwanted, report);
            },
            [this](const SelectedTags &selected) { takeSelectedTags(selected); });
        m_reading.waitFor(kUnnoticed);
    }
    enableFields();
    Q_EMIT readingChanged();
}

void TagsTab::noteProgress(qsizetype count)
{
    if (m_reading.isPending())
        note.setText(u"Reading tags: %1 of %2"_s.arg(QLocale().toString(count), counted(selectedRows().size())));
}

void TagsTab::takeSelectedTags(const SelectedTags &selected)
{
    note.setText({});
    if (selected.record)
        fillFromTagsObject(*selected.record);
    if (selectedRows().size() > 1) {
        titleText.setText({});
        trackText.setText({});
        showDifferences(selected);
    }
    m_hasUnread = !selected.problems.isEmpty() || selected.pictureFault;
    if (!selected.problems.isEmpty()) {
        const QString more =
            selected.problems.size() > 1 ? u" (and %1 more)"_s.arg(selected.problems.size() - 1) : QString();
        note.setText(u"Tags that cannot be read: "_s + printableLine(selected.problems.first()) + more);
    } else if (selected.pictureFault) {
        const QString whose = selectedRows().size() > 1 ? u"A picture cannot be shown: "_s : u"Its picture cannot be shown: "_s;
        albumArtImageView.setPlaceholder(whose + printableLine(*selected.pictureFault));
    }
    enableFields();
    Q_EMIT readingChanged();
}

void TagsTab::showDifferences(const SelectedTags &selected)
{
    for (std::size_t i = 0; i < kControls.size(); ++i) {
        if (selected.common.differs(i))
            (this->*kControls.at(i).control).setPlaceholder(kVarious.toString());
    }
    if (selected.common.picturesDiffer())
        albumArtImageView.setPlaceholder(kVarious.toString());
    if (selected.common.customTagsDiffer())
        customTagsNote.setText(kVarious.toString());
}

void TagsTab::finishReading()
{
    m_reading.waitFor();
    m_examining.waitFor();
}

std::optional<TagsObject> TagsTab::getCommonTags() const
{
    const QStringList paths = selectedFiles();
    return readSelectedTags(paths, [] { return false; }).common.common();
}

bool TagsTab::allTagsEqual() const
{
    std::optional<TagsObject> first;
    std::optional<TagsObject> record;
    for (const QString &path : fileNames()) {
        if (std::optional<TagsObject> found = tagFiles::read(path))
            record = std::move(found);
        if (!first)
            first = record;
        else if (!first->isEqualToTagsObject(*record))
            return false;
    }
    return true;
}

// Pictures

void TagsTab::takePictureFile(const QString &path)
{
    beginExamining(lastPathComponent(path), [path] { return examinePictureFile(path); });
}

void TagsTab::takePicture(const QByteArray &bytes, const QString &name)
{
    beginExamining(name, [bytes] { return examinePicture(bytes); });
}

void TagsTab::beginExamining(const QString &name, const std::function<PictureReading()> &examine)
{
    m_examining.begin(
        this, [examine](const std::function<bool()> &) { return examine(); },
        [this, name](const PictureReading &reading) {
            Q_EMIT readingChanged();
            note.setText({});
            if (reading.picture) {
                albumArtImageView.setPicture(reading.picture);
                return;
            }
            m_isPictureRefused = true;
            nurvController().prompts().ask({.title = u"The picture %1 cannot be used."_s.arg(quoted(name)),
                                            .message = reading.fault.value_or(u"It is empty."_s),
                                            .buttons = {u"OK"_s}});
        });
    if (!m_examining.waitFor(kUnnoticed))
        note.setText(u"Reading the picture…"_s);
    Q_EMIT readingChanged();
}

void TagsTab::removePicture()
{
    if (m_examining.isPending())
        note.setText({});
    m_examining.giveUp();
    albumArtImageView.setPicture(nullptr);
    Q_EMIT readingChanged();
}

void TagsTab::savePictureAs()
{
    const AlbumArt picture = albumArtImageView.picture();
    if (!picture)
        return;
    const std::optional<QString> path =
        openSavePanel(u"cover."_s + pictureExtension(picture->bytes()), u"Save picture as"_s);
    // Without a list there is no file of it that would have to make way, but no sound makes way in any case.
    const QStringList files = fileNames().isEmpty() ? QStringList(QString()) : fileNames();
    if (!path || !canBeText(*path, files, u"the picture"_s, u"It is one of the files of the list."_s))
        return;
    QString reason;
    if (!writeFileAtomically(*path, picture->bytes(), &reason))
        nurvController().prompts().ask({.title = u"The picture could not be saved as %1."_s.arg(quoted(*path)),
                                        .message = reason,
                                        .buttons = {u"OK"_s}});
}

// Writing

void TagsTab::displayRelevantOptions()
{
    usePreviousTagsButton.setHidden(!m_previousTagsObject);
}

void TagsTab::executeCommand()
{
    if (fileNames().isEmpty())
        return;
    m_isPictureRefused = false;
    finishReading();
    // Whoever has chosen it is told so, and may want another.
    if (m_isPictureRefused)
        return;
    if (m_hasUnread && writeEmptyTags()) {
        nurvController().prompts().ask(
            {.title = u"Empty fields cannot be written."_s,
             .message =
                 u"The tags or the picture of at least one of the files could not be read: nobody knows what would be lost."_s,
             .buttons = {u"OK"_s}});
        return;
    }
    if (!detectAlbumArt())
        return;
    const Plan plan = makePlan();
    if (!canWriteCustomTags(plan) || !mayWrite(plan) || !write(plan.writings))
        return;
    if (plan.lacksNames) {
        tellLackOfNames();
        return;
    }
    autoNameButton.setOn(false);
    displayRelevantOptions();
}

bool TagsTab::detectAlbumArt()
{
    const QStringList paths = selectedFiles();
    const std::optional<QString> path = onlyPictureBeside(paths);
    if (!path || !areWithoutPicture(paths))
        return true;
    const PictureReading reading = examinePictureFile(*path);
    const Alert question{
        .title = u"Nurv has detected an image file in the source directory. Would you like to use it for album art?"_s,
        .message = {},
        .buttons = {u"Yes"_s, u"No"_s},
        .picture = reading.picture ? reading.picture->bytes() : QByteArray()};
    if (nurvController().prompts().ask(question) != u"Yes")
        return true;
    qCInfo(taggingLog).noquote() << u"use album art: %1"_s.arg(*path);
    if (reading.picture) {
        albumArtImageView.setPicture(reading.picture);
        return true;
    }
    nurvController().prompts().ask({.title = u"The picture %1 cannot be used."_s.arg(quoted(*path)),
                                    .message = reading.fault.value_or(QString()),
                                    .buttons = {u"OK"_s}});
    return false;
}

TagsObject TagsTab::recordOfFields() const
{
    TagsObject record;
    record.setArtistText(artistText.text());
    record.setDateText(dateText.text());
    record.setAlbumText(albumText.text());
    record.setDiscText(discText.text());
    record.setCommentText(commentText.text());
    record.setGenreText(genreText.text());
    record.setComposerText(composerText.text());
    record.setDiscTotalText(discTotalText.text());
    record.setTrackTotalText(trackTotalText.text());
    if (albumArtImageView.picture())
        record.setAlbumArt(albumArtImageView.picture());
    return record;
}

TagsTab::Plan TagsTab::makePlan()
{
    Plan plan;
    const QList<int> rows = selectedRows();
    const bool takesNames = rows.size() > 1 && autoNameButton.isOn();
    const QStringList names = m_names.value_or(QStringList());
    if (takesNames && names.size() < rows.size()) {
        plan.lacksNames = true;
        return plan;
    }
    TagsObject record = recordOfFields();
    if (m_customTagsPanel.customTagDictionary()) {
        m_customTagsPanel.fillTagsDictionary();
        NURVCustomTagsPanel::Tags customTags = *m_customTagsPanel.customTagDictionary();
        // It is among them, too, and as it was read it would undo what was typed into its own field.
        if (!discTotalText.text().isEmpty() && customTags.value(u"DISCTOTAL"_s) == m_filledDiscTotal)
            customTags.remove(u"DISCTOTAL"_s);
        record.setCustomTagsDictionary(customTags);
        // The writer takes away what it is not given; nobody has seen these to want that.
        for (auto tag = m_hiddenCustomTags.cbegin(); writeEmptyTags() && tag != m_hiddenCustomTags.cend(); ++tag) {
            if (!customTags.contains(tag.key()) && (tag.key() != u"DISCTOTAL" || discTotalText.text().isEmpty()))
                record.customTagsDictionary().insert(tag.key(), tag.value());
        }
    }
    for (const int row : rows) {
        if (rows.size() == 1) {
            record.setTitleText(titleText.text());
            record.setTrackText(trackText.text());
        } else if (takesNames) {
            if (row >= names.size()) {
                plan.lacksNames = true;
                break;
            }
            record.setTitleText(names.at(row));
            record.setTrackText(QString::number(row + 1));
        }
        plan.writings.append({.path = fileNames().at(row), .record = record});
    }
    return plan;
}

bool TagsTab::canWriteCustomTags(const Plan &plan)
{
    for (const TagWriting &writing : plan.writings) {
        if (tagFiles::formatOf(writing.path) != TagFormat::Flac)
            continue;
        const NURVCustomTagsPanel::Tags &tags = writing.record.customTagsDictionary();
        for (auto tag = tags.cbegin(); tag != tags.cend(); ++tag) {
            // Neither row nor value: nothing is written.
            if (tag.value().isEmpty() || TagLibTagsHelper::isFlacFieldName(tag.key()))
                continue;
            nurvController().prompts().ask(
                {.title = u"No custom tag can be called “%1”."_s.arg(printableLine(tag.key())),
                 .message = u"FLAC files take names of the letters, digits and signs of ASCII, but for “=” and “~”."_s,
                 .buttons = {u"OK"_s}});
            return false;
        }
    }
    return true;
}

bool TagsTab::mayWrite(const Plan &plan)
{
    if (!previewButton.isOn() || plan.writings.isEmpty())
        return true;
    const QString end =
        plan.lacksNames ? u"There are no names for the files behind these: they are not written."_s : QString();
    QString text;
    const bool isWanted = nurvController().prompts().waitFor(
        u"Looking at what will change…"_s, [&](const std::function<bool()> &isUnwanted) {
            text = tagPreview::textOf(plan.writings, writeEmptyTags(), end, isUnwanted);
        });
    if (!isWanted)
        return false;
    LinesControl changes(text);
    changes.setReadOnly(true);
    return nurvController().prompts().runPanel(
        {.title = u"These tags will be written"_s,
         .message = writeEmptyTags() ? u"Empty fields are written, too."_s : u"Empty fields change nothing."_s,
         .fields = {{.name = u"changes"_s, .control = &changes}},
         .buttons = {{.title = u"Cancel"_s, .role = PanelButton::Role::Dismiss}, {.title = u"Write"_s}}});
}

bool TagsTab::write(const QList<TagWriting> &writings)
{
    QStringList withoutPicture;
    qsizetype written = 0;
    QStringList paths;
    for (const TagWriting &writing : writings)
        paths.append(writing.path);
    const std::shared_ptr<OutputJournal> journal = tagFiles::beginJournal(paths);
    for (const TagWriting &writing : writings) {
        if (!tagFiles::formatOf(writing.path))
            continue;
        try {
            if (const TagsObject::Text leftOut = tagFiles::write(writing.path, writing.record, writeEmptyTags()))
                withoutPicture.append(u"%1: %2"_s.arg(printableLine(lastPathComponent(writing.path)), *leftOut));
        } catch (const NurvFailure &failure) {
            const bool isWritten = dynamic_cast<const AACTagsHelper::Unoptimized *>(&failure) != nullptr;
            const QString before = written == 0 ? u"No other file was written."_s
                                                : u"%1 before it were written, and stay so."_s.arg(counted(written));
            note.setText({});
            displayRelevantOptions();
            nurvController().prompts().ask(
                {.title = (isWritten ? u"The tags of %1 were written, but its parts are in their old order."_s
                                     : u"The tags of %1 could not be written."_s)
                              .arg(quoted(writing.path)),
                 .message = failure.reason() + u'\n' + before + adviceOn(failure.reason()),
                 .buttons = {u"OK"_s}});
            return false;
        }
        journal->markEnded(writing.path);
        m_previousTagsObject = writing.record;
        ++written;
    }
    displayRelevantOptions();
    if (!writings.isEmpty())
        note.setText(u"The tags of %1 were written."_s.arg(counted(written)));
    if (!withoutPicture.isEmpty())
        nurvController().prompts().ask({.title = u"Pictures that could not be written"_s,
                                        .message = withoutPicture.join(u'\n'),
                                        .buttons = {u"OK"_s}});
    return true;
}

void TagsTab::tellLackOfNames()
{
    nurvController().prompts().ask(
        {.title = u"Error"_s,
         .message = u"Number of selected files to tag is greater than number of track names entered"_s,
         .buttons = {u"OK"_s}});
}

} // namespace nurv
