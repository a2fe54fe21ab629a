// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/TextControl.h"
#include "settings/Setting.h"

#include <QObject>

namespace nurv {

/// A field for the text of a setting. What is typed is stored at once; what the setting does not take stays in the field,
/// with the reason beside it, and the stored text stays what it was.
///
///     typed ── taken ────> store, `objection` empty
///           └─ refused ──> `objection` says why
///
/// Lives on the GUI thread.
class SettingField final : public QObject {
    Q_OBJECT

public:
    /// `name` begins the sentence of the objection: "The ending".
    SettingField(Setting setting, QString name);

    TextControl text;
    LabelControl objection{QString()}; ///< a whole sentence; empty and hidden while the text is taken

    /// Shows the stored text again, whatever was typed.
    void restore();

private:
    void take();
    void object(const QString &sentence);

    const Setting m_setting;
    const QString m_name;
};

} // namespace nurv
