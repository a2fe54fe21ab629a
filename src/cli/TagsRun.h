// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ArgumentParser.h"
#include "cli/ExitStatus.h"
#include "cli/InputFiles.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace nurv {

class Console;

/// One run of a command about tags: its files, and what is told of each.
class TagsRun {
public:
    /// Finds the files that the operands name, and tells which were refused.
    TagsRun(const ParsedArguments &arguments, const QList<QByteArray> &operands, Console &console);

    /// In the order of a file browser.
    [[nodiscard]] const QStringList &files() const { return m_files; }
    [[nodiscard]] QString nameOf(const QString &path) const { return m_input.names.nameOf(path); }

    /// Runs `work` for a file; what it throws is told and counts as a failure. JSON: what `work` returns, with what
    /// went wrong.
    void forFile(const QString &path, const std::function<QJsonObject()> &work);
    /// The file, or what should be one, cannot be worked on.
    void fail(const QString &path, const QString &reason);
    void note(const QString &line);
    /// Standard output, unless JSON is wanted.
    void print(const QString &text);
    /// Tells how it went: `done` is "written".
    [[nodiscard]] ExitStatus finish(const QString &done);

private:
    Console &m_console;
    bool m_isJson;
    bool m_isQuiet;
    InputFiles m_input;
    QStringList m_files;
    QStringList m_problems;
    int m_doneCount = 0;
};

} // namespace nurv
