// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "process/ChildProcess.h"
#include "programs/ExternalProgram.h"

#include <QString>
#include <QStringList>
#include <QStringView>

namespace nurv::metaflac {

// `metaflac`, one key of the Vorbis comment a run. Nothing here runs it. Paths are absolute.

[[nodiscard]] const ExternalProgram &program();

[[nodiscard]] QStringList showTagArguments(const QString &path, QStringView tagKey);
[[nodiscard]] QStringList removeTagArguments(const QString &path, QStringView tagKey);
[[nodiscard]] QStringList setTagArguments(const QString &path, QStringView tagKey, const QString &tagValue);
[[nodiscard]] QStringList showFormatArguments(const QString &path, const QString &formatSwitch);
[[nodiscard]] QStringList showDigestArguments(const QString &path);

/// Adds the gains of the files, which count as one album, to each of them, or takes such tags out.
[[nodiscard]] QStringList addReplayGainArguments(const QStringList &paths);
[[nodiscard]] QStringList removeReplayGainArguments(const QStringList &paths);
/// The reason in the text of a run that failed: the last line with one. Empty: none.
[[nodiscard]] QString reasonOfFailure(QStringView text);

/// Whether no argument is longer than the kernel takes: otherwise the run could not start.
[[nodiscard]] bool canBeStartedWith(const QStringList &arguments);

/// What it must find in its environment to leave texts as they are.
void setEnvironment(ChildEnvironment &environment);

/// The value in the output of a run with `showTagArguments`: of a value with "=" only what
/// follows the last one. Empty when the file lacks the key.
[[nodiscard]] QString valueInOutput(const QString &output, QStringView tagKey);
/// Whether the output of a run with `showDigestArguments` is a complaint instead
/// of a digest.
[[nodiscard]] bool tellsOfError(QStringView output);

} // namespace nurv::metaflac
