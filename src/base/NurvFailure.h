// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <exception>
#include <utility>

namespace nurv {

/// A failure with a text for the user. It never crosses a thread or an event
/// handler: the job that meets it sets its error flag and keeps the text.
class NurvFailure : public std::exception {
public:
    explicit NurvFailure(QString reason) : m_reason(std::move(reason)), m_utf8(m_reason.toUtf8()) {}

    /// The text as it stands in the result text of the job.
    [[nodiscard]] const QString &reason() const { return m_reason; }
    [[nodiscard]] const char *what() const noexcept override { return m_utf8.constData(); }

private:
    QString m_reason;
    QByteArray m_utf8;
};

} // namespace nurv
