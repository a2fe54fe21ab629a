// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/LinesControl.h"
#include "app/NURVTrimCharsPanel.h"
#include "app/TextHistory.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>

namespace nurv {

class UserPrompts;

/// The track-names window without its widgets: a text with one name a line, which the user types or
/// loads, cleans, and hands on with
///
///     inputOK() ── NURVTrackNamesEnteredNotification, the names ──> the tools that use them
///
/// The text stays when the window is hidden. Lives on the GUI thread, owned by `NURVController`.
class TrackNameInputController final : public QObject {
    Q_OBJECT

public:
    /// `prompts` must outlive the controller.
    explicit TrackNameInputController(UserPrompts &prompts);

    /// The text; what a user or a program changes of it directly is a step named "Typing".
    LinesControl inputText;
    /// What the last loading came to, in a sentence; empty once the text is another one.
    LabelControl note{QString()};

    /// Shows the window, in front of others. `fileCount`: how many files are waiting for names.
    void show(std::optional<int> fileCount = std::nullopt);
    [[nodiscard]] bool isVisible() const { return m_isVisible; }

    /// Hides the window and posts the lines that are not empty.
    void inputOK();
    /// Hides the window.
    void inputCancel();

    /// Each replaces the text in one step, which can be undone.
    void setNames(const QString &text);
    void setInputTextString(const QString &text);
    void clear();
    [[nodiscard]] const QString &namesText() const { return inputText.text(); }
    /// How many names there are, and for how many files.
    [[nodiscard]] QString countText() const;

    /// Asks for a file and loads it.
    void loadTrackNamesFromFile();
    /// The text becomes the track names of the set list in the file. When that cannot be read the user is
    /// told why, and the text stays.
    void loadTrackNames(const QString &path);
    /// The path of one file; nothing when the user cancels.
    [[nodiscard]] std::optional<QString> chooseTrackNamesFile();
    /// Asks how many characters to remove from which end of each selected line.
    void removeCharactersFromText();

    /// The name of the step that would be undone; nothing when there is none.
    [[nodiscard]] std::optional<QString> undoName() const { return m_history.undoName(); }
    [[nodiscard]] std::optional<QString> redoName() const { return m_history.redoName(); }
    void undo();
    void redo();

Q_SIGNALS:
    void shown();
    void hidden();
    /// The text, its steps or the number of files are others now.
    void stateChanged();

private:
    void hide();
    void noteStep();
    void change(const QString &text, const QString &stepName);
    void move(const TextChange &change);

    UserPrompts &m_prompts;
    NURVTrimCharsPanel m_trimPanel;
    TextHistory m_history;
    QString m_knownText;
    std::optional<QString> m_stepName; ///< while the text is changed as one step
    std::optional<int> m_fileCount;
    bool m_isMoving = false; ///< through the history
    bool m_isVisible = false;
};

} // namespace nurv
