// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

class ReadAheadSound;

/// Throws NurvFailure where the formats alone tell that the sounds are not the same.
void checkFormats(const ReadAheadSound &source, const ReadAheadSound &output);

/// Throws NurvFailure where outputs keep their samples in fewer bits than sources.
void checkWidths(const ReadAheadSound &source, const ReadAheadSound &output);

} // namespace nurv
