// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "FuzzedChoices.h"
#include "FuzzedFolder.h"
#include "tags/TagEditStream.h"

#include <cstdlib>
#include <string>

using namespace Qt::StringLiterals;

namespace {

using namespace nurv;
using nurv::fuzz::FuzzedChoices;
using nurv::fuzz::FuzzedFolder;

constexpr std::size_t kLongest = 1 << 20;
constexpr int kMostEdits = 200;

void require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

TagLib::ByteVector vectorOf(const std::string &bytes)
{
    return {bytes.data(), static_cast<unsigned int>(bytes.size())};
}

/// The stream under test, and a text that has to be the same after every edit.
class EditedTwice {
public:
    EditedTwice(const QString &path, std::string bytes)
        : m_stream(path, TagEditStream::Access::Edit), m_expected(std::move(bytes))
    {
        require(m_stream.isOpen());
    }

    void edit(FuzzedChoices &choices)
    {
        const unsigned kind = choices.small() % 7;
        const std::size_t start = choices.large();
        const std::size_t length = choices.large();
        const auto taken = choices.take(choices.small() % 32);
        const std::string added(taken.begin(), taken.end());
        const std::size_t from = std::min(start, m_expected.size());
        const std::size_t count = std::min(length, m_expected.size() - from);
        if (kind == 0) {
            m_stream.insert(vectorOf(added), static_cast<TagEditStream::Start>(start), length);
            m_expected.replace(from, count, added);
        } else if (kind == 1) {
            m_stream.removeBlock(static_cast<TagEditStream::Start>(start), length);
            m_expected.erase(from, count);
        } else if (kind == 2) {
            m_stream.truncate(static_cast<long>(start));
            m_expected.resize(from);
        } else if (kind == 3) {
            write(start, added);
        } else if (kind == 4) {
            // The rest of the file in front of its start, as edits that were made elsewhere.
            if (m_stream.isEdited() || from == 0 || from == m_expected.size())
                return;
            const auto middle = static_cast<std::int64_t>(from);
            m_stream.apply({.isEdited = true,
                            .pieces = {{.isNew = false, .offset = middle, .length = m_stream.fileLength() - middle},
                                       {.isNew = false, .offset = 0, .length = middle}},
                            .newBytes = {}});
            m_expected = m_expected.substr(from) + m_expected.substr(0, from);
        } else if (kind == 5) {
            m_stream.seek(static_cast<long>(start));
            require(m_stream.readBlock(length) == vectorOf(m_expected.substr(from, count)));
        } else {
            m_stream.seek(-static_cast<long>(start), TagLib::IOStream::End);
            require(m_stream.tell() >= 0);
        }
    }

    void check()
    {
        require(m_stream.length() == static_cast<long>(m_expected.size()));
        m_stream.seek(0);
        require(m_stream.readBlock(m_expected.size()) == vectorOf(m_expected));
        require(m_expected.size() <= kLongest * 2);
    }
    [[nodiscard]] bool isLong() const { return m_expected.size() > kLongest; }
    [[nodiscard]] TagEditStream &stream() { return m_stream; }
    [[nodiscard]] const std::string &expected() const { return m_expected; }

private:
    void write(std::size_t start, const std::string &added)
    {
        m_stream.seek(static_cast<long>(start));
        m_stream.writeBlock(vectorOf(added));
        // What lies between the end and a place behind it becomes zeros.
        if (start > m_expected.size())
            m_expected.resize(start, '\0');
        m_expected.replace(start, added.size(), added);
        require(m_stream.tell() == static_cast<long>(start + added.size()));
    }

    TagEditStream m_stream;
    std::string m_expected;
};

void commit(EditedTwice &edited, const QString &path, unsigned way)
{
    const FuzzedFolder &folder = FuzzedFolder::instance();
    QString written = path;
    if (way == 0) {
        require(!edited.stream().commit());
    } else {
        written = folder.write(u"copy"_s, {});
        require(!edited.stream().writeTo(written));
    }
    require(FuzzedFolder::read(written).toStdString() == edited.expected());
    for (const QString &name : folder.list())
        require(name == u"edited"_s || name == u"copy"_s);
}

} // namespace

/// Edits of a file in any order are those of a text in memory, in the stream and, now and
/// then, on the disk.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedChoices choices({data, size});
    const unsigned way = choices.small();
    const auto bytes = choices.take(choices.small());
    const QString path = FuzzedFolder::instance().write(u"edited"_s, bytes);
    EditedTwice edited(path, std::string(bytes.begin(), bytes.end()));
    for (int i = 0; i < kMostEdits && !choices.isEmpty() && !edited.isLong(); ++i)
        edited.edit(choices);
    edited.check();
    if (way % 3 < 2)
        commit(edited, path, way % 3);
    return 0;
}
