// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace nurv {

/// Whether the finished image of a DVD-Audio disc holds what the folder does that it was made of.
///
/// Reads both: the image by its ISO 9660 directory (ECMA-119). AUDIO_TS of both have the same files, and these the same
/// bytes; only the sectors in AUDIO_PP.IFO, which count from the start of the image, are held against where the sound lies
/// in it.
class DiscImageCheck {
public:
    /// Absolute paths.
    DiscImageCheck(const QString &image, const QString &folder);

    /// Returns nothing when all is right, else what is not, as a line without a full stop. Blocks for the reading of
    /// everything. `showProgress` is called with percents; once `isUnwanted` returns true that is the fault.
    [[nodiscard]] std::optional<QString> fault(const std::function<void(double percent)> &showProgress,
                                               const std::function<bool()> &isUnwanted) const;

private:
    QString m_image;
    QString m_folder;
};

} // namespace nurv
