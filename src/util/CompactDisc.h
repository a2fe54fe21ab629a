// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace nurv {

// The mounted audio CD behind a folder of track files, and the numbers of its tracks.

/// Whether it can be the name of a device in /dev: letters, digits and underlines of ASCII, not many of them.
[[nodiscard]] bool isDeviceName(const QString &name);
/// Whether it is the name that the kernel gives to an optical drive: "sr0".
[[nodiscard]] bool isOpticalDriveName(const QString &name);

/// Whether the folder is one in which gvfs shows the tracks of an audio CD: ".../gvfs/cdda:host=sr0", or a folder there
/// whose name is a translated one that ends with the drive's.
[[nodiscard]] bool isGvfsDisc(const QString &volumePath);

/// The device that is mounted at the folder: "sr0". Where nothing is, the path is tried less 1 to 5 characters of its
/// last component. Empty: none. `mountTable`: in the format of fstab(5); reads it.
[[nodiscard]] QString discIdForVolumePath(const QString &volumePath,
                                          const QString &mountTable = QStringLiteral("/proc/self/mounts"));

/// The names of the track files, with two digits for the number at their start, sorted. A path stands for its last
/// component. Where gvfs shows the disc, "Track 3.wav", in whatever language, counts as "3 Track.wav".
[[nodiscard]] QStringList reNumberCdTracks(const QStringList &paths);
/// The same of one name.
[[nodiscard]] QString reNumberedCdTrack(const QString &path);

/// The number of the track that the name begins with; 0 when that is none that a disc can have.
[[nodiscard]] int cdTrackNumber(const QString &name);
/// The first unbroken run of numbers, "1+3"; "-1+0" without names.
[[nodiscard]] QString getTrackNumberForExtract(const QStringList &names);

/// Who has mounted a disc, and so who unmounts it.
enum class DiscMount {
    FileSystem, ///< the kernel, in the name of udisks or of the administrator
    Gvfs,       ///< the user's desktop; nothing holds the device but its daemon
};
[[nodiscard]] DiscMount discMount(const QString &volumePath);

// Both return what the program has told, for the log: nothing of it is success for sure. Nobody is asked for a
// password. They block until it has ended, `isUnwanted` returns true or a minute and a half are over; `device` is no
// other than a device's name, or nothing is started. `programFolder`: where gio and udisksctl are.
QString unMountDisc(const QString &device, DiscMount mount, const QString &programFolder = QStringLiteral("/usr/bin"),
                    const std::function<bool()> &isUnwanted = {});
QString mountDisc(const QString &device, DiscMount mount, const QString &programFolder = QStringLiteral("/usr/bin"),
                  const std::function<bool()> &isUnwanted = {});

} // namespace nurv
