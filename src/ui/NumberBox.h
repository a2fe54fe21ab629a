// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSpinBox>

namespace nurv {

/// A field for a whole number with buttons to step it. It takes any text: the number is the one
/// at the start of what was typed, 0 where there is none.
class NumberBox final : public QSpinBox {
    Q_OBJECT

public:
    using QSpinBox::QSpinBox;

protected:
    [[nodiscard]] QValidator::State validate(QString &text, int &position) const override;
    [[nodiscard]] int valueFromText(const QString &text) const override;
    void fixup(QString &text) const override;
};

} // namespace nurv
