// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

namespace nurv {

class CheckControl;
struct OriginalsControls;

/// Says below the box for deleting originals what ticking it means, by the other boxes and the preferences as they are now.
class DeletionNote final : public QLabel {
    Q_OBJECT

public:
    /// The controls must outlive the label.
    DeletionNote(const CheckControl &deleteOriginals, const OriginalsControls &originals, QWidget *parent = nullptr);

private:
    [[nodiscard]] QString words() const;
    void showWords();

    const CheckControl &m_deleteOriginals;
    const OriginalsControls &m_originals;
};

} // namespace nurv
