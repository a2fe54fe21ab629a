// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QToolButton>

#include <optional>

namespace nurv {

/// A flat button with a bar and a line of text, which ends in "…" where it has no room. GUI thread.
class ProgressLine final : public QToolButton {
    Q_OBJECT

public:
    explicit ProgressLine(QWidget *parent = nullptr);

    /// From 0 to 1; nothing hides the bar.
    void setShare(std::optional<double> share);
    [[nodiscard]] std::optional<double> share() const { return m_share; }
    /// The text is also what the tool tip and the accessible description say.
    void setLine(const QString &text);
    [[nodiscard]] const QString &line() const { return m_line; }
    /// Where the text stands.
    [[nodiscard]] QRect textRect() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    [[nodiscard]] QRect barRect() const;

    std::optional<double> m_share;
    QString m_line;
};

} // namespace nurv
