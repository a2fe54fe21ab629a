// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPointer>
#include <QScrollArea>

namespace nurv {

/// The column of a page's options: wide enough for them, and scrolls up and down only. What is chosen later may make it
/// wider, never narrower.
class OptionArea final : public QScrollArea {
    Q_OBJECT

public:
    explicit OptionArea(QWidget *options, QWidget *parent = nullptr);

    /// All options are there now.
    void measure();
    /// Gives the areas one width from now on: that of the widest, so that nothing moves when another page is chosen.
    static void align(const QList<OptionArea *> &areas);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject *object, QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    QList<QPointer<OptionArea>> m_aligned; ///< the others of its width
    int m_ownWidth = 0; ///< what its own options need
};

} // namespace nurv
