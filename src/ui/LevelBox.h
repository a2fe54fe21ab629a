// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSpinBox>

namespace nurv {

/// A number field with buttons to step it. Any text may be typed: the number at its start counts, 0 where there is
/// none, and one that is out of range gives way at once to the number that was there before.
class LevelBox final : public QSpinBox {
    Q_OBJECT

public:
    using QSpinBox::QSpinBox;

protected:
    [[nodiscard]] QValidator::State validate(QString &text, int &position) const override;
    [[nodiscard]] int valueFromText(const QString &text) const override;
};

} // namespace nurv
