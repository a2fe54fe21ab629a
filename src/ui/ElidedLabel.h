// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>
#include <QString>

namespace nurv {

/// A line of plain text that takes the room there is: what does not fit is cut off at its end, and stands in the tool tip.
class ElidedLabel final : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    void setLine(const QString &line);
    [[nodiscard]] const QString &line() const { return m_line; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void showWhatFits();

    QString m_line;
};

} // namespace nurv
