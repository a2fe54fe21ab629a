// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/pages/TabPage.h"

#include <QStringList>

namespace nurv {

class CheckControl;
class ChoiceControl;
struct OriginalsControls;

/// A page whose tool makes an output of every file: the options that all of these
/// tools have.
class ConversionPage : public TabPage {
    Q_OBJECT

public:
    using TabPage::TabPage;

protected:
    /// `plan` of what is made, where it goes and what becomes of the originals.
    [[nodiscard]] QString planWords(const QString &what, const QString &place, const CheckControl &deleteOriginals) const;
    /// What becomes of the source files: a part of the group that is last. `proof` as in `addOutputOptions`.
    void addDeletionOptions(QVBoxLayout *group, CheckControl &deleteOriginals, OriginalsControls &originals,
                            const QString &deletion, const QString &proof);
    /// What the outputs are. `shownTitles` stand for the control's own ones, in
    /// their order.
    void addFormats(ChoiceControl &formats, const QStringList &shownTitles);
    /// Where the outputs go, and what becomes of the source files. `proof`: what is compared before a deletion, where
    /// that is not every sample.
    void addOutputOptions(CheckControl &besideSource, const QString &besideSourceName, CheckControl &deleteOriginals,
                          OriginalsControls &originals, const QString &proof = {});
};

} // namespace nurv
