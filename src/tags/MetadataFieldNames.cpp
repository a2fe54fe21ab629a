// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/MetadataFieldNames.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv::metadataFields {

namespace {

using Row = std::pair<std::string_view, std::string_view>;

constexpr std::array kWords = {
    Row{"ACOUSTID FINGERPRINT", "ACOUSTID_FINGERPRINT"},
    Row{"ACOUSTID ID", "ACOUSTID_ID"},
    Row{"ALBUM ARTIST", "ALBUMARTIST"},
    Row{"ALBUM_ARTIST", "ALBUMARTIST"},
    Row{"DESCRIPTION", "COMMENT"},
    Row{"DISC", "DISCNUMBER"},
    Row{"DISCC", "DISCTOTAL"},
    Row{"DISK", "DISCNUMBER"},
    Row{"ENCODED BY", "ENCODEDBY"},
    Row{"ENCODED-BY", "ENCODEDBY"},
    Row{"ENCODED_BY", "ENCODEDBY"},
    Row{"MIXARTIST", "REMIXER"},
    Row{"MUSICBRAINZ ALBUM ARTIST ID", "MUSICBRAINZ_ALBUMARTISTID"},
    Row{"MUSICBRAINZ ALBUM ID", "MUSICBRAINZ_ALBUMID"},
    Row{"MUSICBRAINZ ALBUM RELEASE COUNTRY", "RELEASECOUNTRY"},
    Row{"MUSICBRAINZ ALBUM STATUS", "RELEASESTATUS"},
    Row{"MUSICBRAINZ ALBUM TYPE", "RELEASETYPE"},
    Row{"MUSICBRAINZ ARTIST ID", "MUSICBRAINZ_ARTISTID"},
    Row{"MUSICBRAINZ RELEASE GROUP ID", "MUSICBRAINZ_RELEASEGROUPID"},
    Row{"MUSICBRAINZ RELEASE TRACK ID", "MUSICBRAINZ_RELEASETRACKID"},
    Row{"MUSICBRAINZ TRACK ID", "MUSICBRAINZ_TRACKID"},
    Row{"MUSICBRAINZ WORK ID", "MUSICBRAINZ_WORKID"},
    Row{"TOTALDISCS", "DISCTOTAL"},
    Row{"TOTALTRACKS", "TRACKTOTAL"},
    Row{"TRACK", "TRACKNUMBER"},
    Row{"TRACKC", "TRACKTOTAL"},
    Row{"UNSYNCEDLYRICS", "LYRICS"},
    Row{"YEAR", "DATE"},
};

constexpr std::array kId3Frames = {
    Row{"COMM", "COMMENT"},
    Row{"GRP1", "GROUPING"},
    Row{"MVIN", "MOVEMENTNUMBER"},
    Row{"MVNM", "MOVEMENTNAME"},
    Row{"PCST", "PODCAST"},
    Row{"SYLT", "SYNCEDLYRICS"},
    Row{"TALB", "ALBUM"},
    Row{"TBPM", "BPM"},
    Row{"TCAT", "PODCASTCATEGORY"},
    Row{"TCMP", "COMPILATION"},
    Row{"TCOM", "COMPOSER"},
    Row{"TCON", "GENRE"},
    Row{"TCOP", "COPYRIGHT"},
    Row{"TDEN", "ENCODINGTIME"},
    Row{"TDES", "PODCASTDESC"},
    Row{"TDLY", "PLAYLISTDELAY"},
    Row{"TDOR", "ORIGINALDATE"},
    Row{"TDRC", "DATE"},
    Row{"TDRL", "RELEASEDATE"},
    Row{"TDTG", "TAGGINGDATE"},
    Row{"TENC", "ENCODEDBY"},
    Row{"TEXT", "LYRICIST"},
    Row{"TFLT", "ENCODING"},
    Row{"TGID", "PODCASTID"},
    Row{"TIPL", "INVOLVEDPEOPLE"},
    Row{"TIT1", "CONTENTGROUP"},
    Row{"TIT2", "TITLE"},
    Row{"TIT3", "SUBTITLE"},
    Row{"TKEY", "INITIALKEY"},
    Row{"TLAN", "LANGUAGE"},
    Row{"TLEN", "ENCODING"},
    Row{"TMCL", "MUSICIANCREDITS"},
    Row{"TMED", "MEDIA"},
    Row{"TMOO", "MOOD"},
    Row{"TOAL", "ORIGINALALBUM"},
    Row{"TOFN", "ORIGINALFILENAME"},
    Row{"TOLY", "ORIGINALLYRICIST"},
    Row{"TOPE", "ORIGINALARTIST"},
    Row{"TORY", "ORIGINALDATE"},
    Row{"TOWN", "OWNER"},
    Row{"TPE1", "ARTIST"},
    Row{"TPE2", "ALBUMARTIST"},
    Row{"TPE3", "CONDUCTOR"},
    Row{"TPE4", "REMIXER"},
    Row{"TPOS", "DISCNUMBER"},
    Row{"TPRO", "PRODUCEDNOTICE"},
    Row{"TPUB", "LABEL"},
    Row{"TRCK", "TRACKNUMBER"},
    Row{"TRSN", "RADIOSTATION"},
    Row{"TRSO", "RADIOSTATIONOWNER"},
    Row{"TSIZ", "ENCODING"},
    Row{"TSO2", "ALBUMARTISTSORT"},
    Row{"TSOA", "ALBUMSORT"},
    Row{"TSOC", "COMPOSERSORT"},
    Row{"TSOP", "ARTISTSORT"},
    Row{"TSOT", "TITLESORT"},
    Row{"TSRC", "ISRC"},
    Row{"TSSE", "ENCODING"},
    Row{"TSST", "DISCSUBTITLE"},
    Row{"TYER", "DATE"},
    Row{"USLT", "LYRICS"},
    Row{"WCOP", "COPYRIGHTURL"},
    Row{"WFED", "PODCASTURL"},
    Row{"WOAF", "FILEWEBPAGE"},
    Row{"WOAR", "ARTISTWEBPAGE"},
    Row{"WOAS", "AUDIOSOURCEWEBPAGE"},
    Row{"WORS", "RADIOSTATIONWEBPAGE"},
    Row{"WPAY", "PAYMENTWEBPAGE"},
    Row{"WPUB", "PUBLISHERWEBPAGE"},
};

constexpr std::array kFramesOfVersion2 = {
    Row{"COM", "COMM"}, Row{"GEO", "GEOB"}, Row{"PIC", "APIC"}, Row{"POP", "POPM"}, Row{"SLT", "SYLT"},
    Row{"TAL", "TALB"}, Row{"TBP", "TBPM"}, Row{"TCM", "TCOM"}, Row{"TCO", "TCON"}, Row{"TCP", "TCMP"},
    Row{"TCR", "TCOP"}, Row{"TDA", "TDAT"}, Row{"TDY", "TDLY"}, Row{"TEN", "TENC"}, Row{"TFT", "TFLT"},
    Row{"TIM", "TIME"}, Row{"TKE", "TKEY"}, Row{"TLA", "TLAN"}, Row{"TLE", "TLEN"}, Row{"TMT", "TMED"},
    Row{"TOA", "TOPE"}, Row{"TOF", "TOFN"}, Row{"TOL", "TOLY"}, Row{"TOR", "TORY"}, Row{"TOT", "TOAL"},
    Row{"TP1", "TPE1"}, Row{"TP2", "TPE2"}, Row{"TP3", "TPE3"}, Row{"TP4", "TPE4"}, Row{"TPA", "TPOS"},
    Row{"TPB", "TPUB"}, Row{"TRC", "TSRC"}, Row{"TRK", "TRCK"}, Row{"TS2", "TSO2"}, Row{"TSA", "TSOA"},
    Row{"TSC", "TSOC"}, Row{"TSI", "TSIZ"}, Row{"TSP", "TSOP"}, Row{"TSS", "TSSE"}, Row{"TST", "TSOT"},
    Row{"TT1", "TIT1"}, Row{"TT2", "TIT2"}, Row{"TT3", "TIT3"}, Row{"TXT", "TEXT"}, Row{"TXX", "TXXX"},
    Row{"TYE", "TYER"}, Row{"UFI", "UFID"}, Row{"ULT", "USLT"}, Row{"WAF", "WOAF"}, Row{"WAR", "WOAR"},
    Row{"WAS", "WOAS"}, Row{"WCM", "WCOM"}, Row{"WCP", "WCOP"}, Row{"WPB", "WPUB"}, Row{"WXX", "WXXX"},
};

constexpr std::array kMp4Items = {
    Row{"aART", "ALBUMARTIST"},
    Row{"catg", "PODCASTCATEGORY"},
    Row{"cpil", "COMPILATION"},
    Row{"cprt", "COPYRIGHT"},
    Row{"desc", "PODCASTDESC"},
    Row{"disk", "DISCNUMBER"},
    Row{"egid", "PODCASTID"},
    Row{"gnre", "GENRE"},
    Row{"ownr", "OWNER"},
    Row{"pcst", "PODCAST"},
    Row{"pgap", "GAPLESSPLAYBACK"},
    Row{"purl", "PODCASTURL"},
    Row{"shwm", "SHOWWORKMOVEMENT"},
    Row{"soaa", "ALBUMARTISTSORT"},
    Row{"soal", "ALBUMSORT"},
    Row{"soar", "ARTISTSORT"},
    Row{"soco", "COMPOSERSORT"},
    Row{"sonm", "TITLESORT"},
    Row{"sosn", "SHOWSORT"},
    Row{"tmpo", "BPM"},
    Row{"trkn", "TRACKNUMBER"},
    Row{"tven", "TVEPISODEID"},
    Row{"tves", "TVEPISODE"},
    Row{"tvnn", "TVNETWORK"},
    Row{"tvsh", "TVSHOW"},
    Row{"tvsn", "TVSEASON"},
    Row{"\251ART", "ARTIST"},
    Row{"\251alb", "ALBUM"},
    Row{"\251cmt", "COMMENT"},
    Row{"\251day", "DATE"},
    Row{"\251enc", "ENCODEDBY"},
    Row{"\251gen", "GENRE"},
    Row{"\251grp", "GROUPING"},
    Row{"\251lyr", "LYRICS"},
    Row{"\251mvc", "MOVEMENTCOUNT"},
    Row{"\251mvi", "MOVEMENTNUMBER"},
    Row{"\251mvn", "MOVEMENTNAME"},
    Row{"\251nam", "TITLE"},
    Row{"\251too", "ENCODER"},
    Row{"\251wrk", "WORK"},
    Row{"\251wrt", "COMPOSER"},
};

constexpr std::array kInfoChunks = {
    Row{"IART", "ARTIST"},   Row{"ICMT", "COMMENT"},      Row{"ICNT", "RELEASECOUNTRY"}, Row{"ICOP", "COPYRIGHT"},
    Row{"ICRD", "DATE"},     Row{"IDIT", "ENCODINGTIME"}, Row{"IENC", "ENCODEDBY"},      Row{"IENG", "ENGINEER"},
    Row{"IGNR", "GENRE"},    Row{"IKEY", "KEYWORDS"},     Row{"ILNG", "LANGUAGE"},       Row{"IMED", "MEDIA"},
    Row{"IMUS", "COMPOSER"}, Row{"INAM", "TITLE"},        Row{"IPRD", "ALBUM"},          Row{"IPRT", "TRACKNUMBER"},
    Row{"ISBJ", "SUBJECT"},  Row{"ISFT", "ENCODER"},      Row{"ISRC", "SOURCE"},         Row{"ITRK", "TRACKNUMBER"},
    Row{"IWRI", "LYRICIST"},
};

// Stamps of encoders, what gapless players need of one encoder's padding, and what ffmpeg copies
// from the head of a container into the tags of another.
constexpr std::array kOfTheEncoding = {
    QStringView(u"COMPATIBLE_BRANDS"),
    QStringView(u"ENCODEDBY"),
    QStringView(u"ENCODER"),
    QStringView(u"ENCODER SETTINGS"),
    QStringView(u"ENCODERSETTINGS"),
    QStringView(u"ENCODER_OPTIONS"),
    QStringView(u"ENCODER_SETTINGS"),
    QStringView(u"ENCODING"),
    QStringView(u"ENCODINGTIME"),
    QStringView(u"GAPLESSPLAYBACK"),
    QStringView(u"ITUNPGAP"),
    QStringView(u"ITUNSMPB"),
    QStringView(u"MAJOR_BRAND"),
    QStringView(u"MINOR_VERSION"),
    QStringView(u"TAGGINGDATE"),
    QStringView(u"TLEN"),
    QStringView(u"TSSE"),
    QStringView(u"WAVEFORMATEXTENSIBLE_CHANNEL_MASK"),
};

template<std::size_t rows>
std::string_view found(const std::array<Row, rows> &table, std::string_view name)
{
    const auto *const row =
        std::find_if(table.begin(), table.end(), [&](const Row &each) { return each.first == name; });
    return row == table.end() ? std::string_view() : row->second;
}

std::string_view viewOf(const QByteArray &bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

template<std::size_t rows>
QString nameIn(const std::array<Row, rows> &table, const QByteArray &name)
{
    const std::string_view row = found(table, viewOf(name));
    return row.empty() ? QString::fromLatin1(name)
                       : QString::fromLatin1(row.data(), static_cast<qsizetype>(row.size()));
}

} // namespace

QString fromWords(const QString &name)
{
    const QString capitals = name.trimmed().toUpper();
    const std::string_view row = found(kWords, viewOf(capitals.toUtf8()));
    return row.empty() ? capitals : QString::fromLatin1(row.data(), static_cast<qsizetype>(row.size()));
}

QString fromId3Frame(const QByteArray &id)
{
    return nameIn(kId3Frames, id);
}

QByteArray id3FrameOfVersion2(const QByteArray &id)
{
    const std::string_view row = found(kFramesOfVersion2, viewOf(id));
    return row.empty() ? id : QByteArray(row.data(), static_cast<qsizetype>(row.size()));
}

QString fromMp4Item(const QByteArray &item)
{
    return nameIn(kMp4Items, item);
}

QString fromInfoChunk(const QByteArray &chunk)
{
    return nameIn(kInfoChunks, chunk);
}

bool describesTheEncoding(const QString &field)
{
    return std::find(kOfTheEncoding.begin(), kOfTheEncoding.end(), field) != kOfTheEncoding.end();
}

bool isNumber(const QString &field)
{
    return field == u"TRACKNUMBER" || field == u"TRACKTOTAL" || field == u"DISCNUMBER" || field == u"DISCTOTAL";
}

QString totalOf(const QString &field)
{
    if (field == u"TRACKNUMBER")
        return u"TRACKTOTAL"_s;
    return field == u"DISCNUMBER" ? u"DISCTOTAL"_s : QString();
}

} // namespace nurv::metadataFields
