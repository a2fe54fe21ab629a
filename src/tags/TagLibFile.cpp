// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagLibFile.h"

namespace nurv::tagLibFile {

TagLib::ID3v2::FrameFactory *frameFactory()
{
    static TagLib::ID3v2::FrameFactory *const factory = [] {
        TagLib::ID3v2::FrameFactory *shared = TagLib::ID3v2::FrameFactory::instance();
        shared->setDefaultTextEncoding(TagLib::String::UTF8);
        return shared;
    }();
    return factory;
}

} // namespace nurv::tagLibFile
