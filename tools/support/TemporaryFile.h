// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"

#include <cstddef>
#include <functional>
#include <string>

namespace nurv {

/// A new file in the folder of the file that it shall become. It has no name until it is
/// complete, so that nothing is left however the program ends.
///
/// Where the file system knows no files without a name, and for the moment in which it takes
/// the place of another one, it has a hidden name of its own. That is removed with this
/// object, and by a signal that ends the program once `removeTemporaryFilesOnSignals` was
/// called. At most 512 of those live at a time.
class TemporaryFile {
public:
    /// Open for writing and reading, with the mode of the file that it shall replace, or else that of
    /// any new file. Throws ToolError(Write).
    explicit TemporaryFile(const std::string &destination);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    [[nodiscard]] int descriptor() const { return m_descriptor.get(); }

    /// The one that it is in.
    [[nodiscard]] std::string folder() const;

    /// Closes the file and gives it the destination's name, in place of what had it when
    /// this object was made; then it is on the disk before. Blocks.
    /// Throws ToolError(Write), also when a file without a name finds its place taken.
    void moveToDestination();

    /// The same with another name of that file system, which nothing has.
    void moveTo(const std::string &destination);

    /// Waits until it is on the disk. Throws ToolError(Write).
    void flush();

private:
    void takeName(const std::function<void()> &make);
    void nameUnnamed();
    void openNamed();
    void forget();

    std::string m_destination;
    std::string m_path; ///< empty: it has none yet
    size_t m_slot = 0;
    bool m_replaces = false;
    FileDescriptor m_descriptor;
};

/// From here on the ending signals (see EndingSignals.h) remove the temporary files, then
/// end the program as they would have. One that was ignored stays ignored.
void removeTemporaryFilesOnSignals();

} // namespace nurv
