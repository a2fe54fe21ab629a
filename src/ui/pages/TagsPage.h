// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/pages/TabPage.h"

#include <QStringList>

class QGridLayout;
class QLineEdit;

namespace nurv {

class TagsTab;
class TextControl;

/// The page that shows and writes tags.
///
///     +--------------------+----------------------+
///     | file list          | fields               |
///     |                    | cover picture        |
///     |                    | names, custom tags   |
///     +--------------------+----------------------+
class TagsPage final : public TabPage {
    Q_OBJECT

public:
    explicit TagsPage(TagsTab &tab, QWidget *parent = nullptr);

protected:
    [[nodiscard]] bool canExecute() const override;
    [[nodiscard]] QString plan() const override;

private:
    void addFields();
    void addNames();
    void addWriting();
    void disableWhileReading(QWidget *widget);
    QLineEdit *addField(QGridLayout *grid, int row, int column, int span, const QString &caption, TextControl &control,
                        const QString &objectName, const QString &accessibleName);

    TagsTab &m_tagsTab;
};

} // namespace nurv
