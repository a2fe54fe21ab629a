// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;

namespace nurv {

/// A small window that shows how far something is: a line of text and a bar. Whoever does the work tells it; it asks and
/// cancels nothing. GUI thread.
class StatusPanelController final : public QWidget {
    Q_OBJECT

public:
    explicit StatusPanelController(QWidget *parent = nullptr);

    void setText(const QString &text);
    /// The bar goes from `minimum` to `maximum`; a maximum that is not above the minimum leaves it empty.
    void setDeterminate(double minimum, double maximum);
    /// The bar tells only that something is done, while it is animated.
    void setInDeterminate();
    void startAnimation();
    void stopAnimation();
    /// Values outside of the bar's go to its ends.
    void setProgress(double value);
    void incrementProgress(double step);

    [[nodiscard]] QLabel *textField() const { return m_textField; }
    [[nodiscard]] QProgressBar *progressBar() const { return m_progressBar; }

private:
    void showProgress();

    QLabel *m_textField;
    QProgressBar *m_progressBar;
    double m_minimum = 0.0;
    double m_maximum = 100.0;
    double m_value = 0.0;
    bool m_isDeterminate = true;
    bool m_isAnimated = false;
};

} // namespace nurv
