// The song XML layouts (".song" and ".sng"), OpenSong songs and SongSmart
// data: Song's writers and readers, and the section and line writers.

#include "melodex/song/song.h"

#include <optional>
#include <string>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/text_encoding.h"
#include "melodex/foundation/text_file.h"
#include "melodex/foundation/xml.h"
#include "melodex/song/opensong_lyrics.h"
#include "melodex/song/vocabulary.h"

namespace melodex {

namespace {

constexpr std::string_view TimePattern = "%Y%m%d%H%M%S";

// The element that holds a section for each file type. Types that are not
// meant for writing get no name, so their sections come out as bare
// attribute lists; that is what the writer has always produced for them.
std::string_view sectionElement(int fileType) {
    switch (fileType) {
        case SongFileType::Song:
            return "block";
        case SongFileType::Sng:
            return "verse";
        default:
            return {};
    }
}

bool isReservedLineAttribute(std::string_view name) {
    return equalsIgnoreCase(name, "singers") || equalsIgnoreCase(name, "indent") ||
           equalsIgnoreCase(name, "repeat");
}

// "YYYYMMDDhhmmss", or an ISO date ("2023-05-14", "2023-05-14T10:22:00",
// "2023-05-14 10:22"), as SongSmart writes either.
std::optional<LocalTime> parseSongSmartTime(std::string_view text) {
    String trimmed = strip(text);
    if (auto time = LocalTime::parse(trimmed)) return time;
    if (trimmed.size() < 10 || trimmed[4] != '-' || trimmed[7] != '-') return std::nullopt;
    String digits;
    for (std::size_t i = 0; i < trimmed.size() && i < 19; ++i) {
        const char c = trimmed[i];
        if (c >= '0' && c <= '9') {
            digits += c;
        } else if (c != '-' && c != ':' && c != 'T' && c != ' ') {
            break;
        }
    }
    if (digits.size() != 8 && digits.size() != 12 && digits.size() != 14) return std::nullopt;
    digits.resize(14, '0');
    return LocalTime::parse(digits);
}

// One element of a song's information: index entries, categories and
// references go to their lists, anything else becomes an attribute named
// `name`. OpenSong and SongSmart elements are read this way too, so that a
// "theme" of theirs is a category already and stays one when the song is
// saved and read again.
void readInfoElement(SongInfo& info, const XmlNode& element, const String& name) {
    if (equalsIgnoreCase(name, "index")) {
        String text = element.text();
        if (!text.empty()) info.addIndex(text);
    } else if (equalsIgnoreCase(name, "category") || equalsIgnoreCase(name, "theme")) {
        String text = element.text();
        if (!text.empty()) info.addCategory(text);
    } else if (equalsIgnoreCase(name, "reference")) {
        SongReference reference(element.attribute("type", "other"), element.text());
        for (const auto& [key, value] : element.attributes()) {
            if (!equalsIgnoreCase(key, "type")) reference.setAttribute(key, value);
        }
        info.addReference(reference);
    } else {
        info.setAttribute(name, element.text());
    }
}

}  // namespace

// --- Writing -------------------------------------------------------------------

String SongLine::writeToText(int fileType) const {
    // Lyrics are element text: "&" and "<" are escaped, or a lyric such as
    // "Praise & glory" would make the whole file unreadable as XML and the
    // song would come back as lines of raw markup.
    if (fileType == SongFileType::Sng) return XmlString::encodeText(m_text) + '\n';
    if (fileType != SongFileType::Song) return m_text + '\n';

    String out = "<line";
    if (m_singers != 0) out += XmlString::attribute("singers", singerTypeToString(m_singers));
    if (m_indent != 0) out += XmlString::attribute("indent", std::to_string(m_indent));
    if (m_repeat != 0) out += XmlString::attribute("repeat", std::to_string(m_repeat));
    // A blank goes before every further attribute: written without one, as
    // older writers did, the element is no longer XML and the whole song
    // would read back as plain text.
    for (const LineAttribute& attribute : m_attributes) {
        if (!isReservedLineAttribute(attribute.name))
            out += XmlString::attribute(attribute.name, attribute.value.toString());
    }
    out += '>';

    // Chords are sorted by offset, so one pass from the front puts each chord
    // before the character it stands over. Chords at or past the end follow
    // the last character, in their order.
    std::size_t copied = 0;  // bytes of the text already in `out`
    std::size_t cursor = 0;  // byte position of code point `position`
    std::size_t position = 0;
    for (const auto& chord : m_chords) {
        const std::size_t offset = chord->offset() < 0 ? 0 : std::size_t(chord->offset());
        while (position < offset && cursor < m_text.size()) {
            decodeUtf8(m_text, cursor);
            ++position;
        }
        out += XmlString::encodeText(std::string_view(m_text).substr(copied, cursor - copied));
        copied = cursor;
        out += "<chord>";
        out += XmlString::encode(chord->toString(0, false));
        out += "</chord>";
    }
    out += XmlString::encodeText(std::string_view(m_text).substr(copied));
    out += "</line>\n";
    return out;
}

String SongSection::writeToText(int fileType) const {
    String out;
    if (fileType != SongFileType::Text) {
        const std::string_view element = sectionElement(fileType);
        out += "\n<";
        out += element;
        out += " type=\"";
        out += sectionTypeToString(m_type);
        out += '"';
        out += XmlString::attribute("id", m_id);
        // "singers" has always carried the repeat count and the indent has
        // always been spelt "ident"; readers never took either back. Files
        // exist in this form, so it is kept as it is.
        if (m_singers != 0) out += XmlString::attribute("singers", std::to_string(repeat()));
        if (repeat() > 1) out += XmlString::attribute("repeat", std::to_string(repeat()));
        if (m_indent != 0) out += XmlString::attribute("ident", std::to_string(m_indent));
        if (m_target != 0) out += XmlString::attribute("target", targetToString(m_target, ","));
        if (m_spaceBefore != 0)
            out += XmlString::attribute("spacebefore", m_spaceBefore == 1 ? "small" : "large");
        if (m_keepWithPrevious) out += " keepwithprevious=\"1\"";
        out += ">\n";
    }
    for (const auto& line : m_lines)
        out += line->writeToText(fileType);
    const std::string_view element = sectionElement(fileType);
    if (!element.empty()) {
        out += "</";
        out += element;
        out += ">\n";
    }
    return out;
}

String Song::saveToText(int fileType, bool withHeader) {
    if (!hasUUID()) generateUUID();
    const bool xml = isXmlFiletype(fileType);
    String out;
    if (xml) {
        if (withHeader) {
            out += fileType == SongFileType::Sng ? "<?xml version=\"1.0\" encoding=\"UNICODE\"?>\n"
                                                 : "<?xml version=\"1.0\"?>\n";
        }
        out += "<song xmlns=\"";
        out += getFileXmlNamespace(fileType);
        out += "\">\n";
    }
    // No line break after the time: in a ".txt" file the first lyric line
    // follows on the same line, and readers of those files expect it there.
    // A uuid read from a file may hold anything; escaped, it cannot break
    // the file. A plain UUID keeps its bytes.
    out += "<uuid>";
    out += xml ? XmlString::encodeText(m_uuid) : m_uuid;
    out += "</uuid><updated>";
    out += m_updated.format(TimePattern);
    out += "</updated>";
    out += m_info.writeToText(fileType);

    if (fileType == SongFileType::Text) {
        // A blank line separates sections, except where a section is kept
        // with the one before it; it then reads back as part of that one.
        for (std::size_t i = 0; i < m_sections.size(); ++i) {
            if (i > 0 && !m_sections[i]->keepWithPrevious()) out += '\n';
            out += m_sections[i]->writeToText(fileType);
        }
        return out;
    }

    if (fileType == SongFileType::Sng) out += "<verses>\n";
    for (const auto& section : m_sections)
        out += section->writeToText(fileType);
    if (fileType == SongFileType::Sng) out += "</verses>\n";
    if (xml) out += "</song>\n";
    return out;
}

std::string Song::saveToBytes(int fileType) {
    String text = saveToText(fileType, true);
    if (fileType == SongFileType::Text || fileType == SongFileType::Sng)
        text = replaceAll(text, "\n", "\r\n");
    if (fileType == SongFileType::Sng) return encodeUtf16LE(text, true);
    return text;
}

Status Song::saveToFile(std::string_view path, int fileType) {
    TextFile file;
    if (const Status status = file.open(path, TextFile::Mode::Write); status != StatusSuccess)
        return status;
    file.write(saveToBytes(fileType));
    return file.close();
}

// --- Reading: entry points -------------------------------------------------------

Status Song::loadFromFile(std::string_view path) {
    clear();
    std::string bytes;
    Status status = readFileBytes(path, bytes);
    if (status == StatusSuccess && loadFromXmlString(bytes) != StatusSuccess)
        status = loadFromTextString(bytes);
    m_filename.assign(path);
    return status;
}

Status Song::loadFromText(std::string_view text) {
    clear();
    Status status = loadFromXmlString(text);
    if (status != StatusSuccess) status = loadFromTextString(text);
    m_filename.clear();
    return status;
}

Status Song::loadFromXmlFile(std::string_view path) {
    XmlFile file;
    if (const Status status = file.load(path); status != StatusSuccess) return status;
    return loadFromXmlFile(file);
}

Status Song::loadFromXmlString(std::string_view text) {
    XmlFile file;
    if (const Status status = file.loadFromString(text); status != StatusSuccess) return status;
    return loadFromXmlFile(file);
}

Status Song::loadFromXmlFile(const XmlFile& file) {
    // A document has one top-level element (XmlFile refuses anything else).
    const XmlNode root = file.root();
    if (equalsIgnoreCase(root.name(), "song")) return loadFromXmlNode(root);
    if (equalsIgnoreCase(root.name(), "set")) return loadFromXmlSet(root);
    return StatusSuccess;
}

Status Song::loadFromXmlSet(const XmlNode& set) {
    // Level by level rather than recursively: a hostile file may nest
    // elements very deeply.
    std::vector<XmlNode> level{set};
    while (!level.empty()) {
        std::vector<XmlNode> next;
        for (const XmlNode& node : level) {
            for (const XmlNode& child : node.childElements()) {
                if (equalsIgnoreCase(child.name(), "song")) return loadFromXmlNode(child);
                next.push_back(child);
            }
        }
        level = std::move(next);
    }
    return StatusSuccess;
}

Status Song::loadFromXmlNode(const XmlNode& song) {
    if (song.isNull()) return StatusFailed;

    m_loadedFileType = SongFileType::Song;
    if (song.findChild("verses")) {
        m_loadedFileType = SongFileType::Sng;
    } else if (song.findChild("lyrics")) {
        m_loadedFileType = SongFileType::OpenSong;
    } else if (song.findChild("songdata")) {
        m_loadedFileType = SongFileType::SongSmart;
    }

    if (m_loadedFileType == SongFileType::SongSmart) {
        processSongSmartNode(song);
        generateSectionIDs();
        return StatusSuccess;
    }

    for (const XmlNode& child : song.childElements()) {
        const String name = toLowerAscii(child.name());
        if (name == "uuid") {
            m_uuid = strip(child.text());
        } else if (name == "updated") {
            if (auto time = LocalTime::parse(child.text())) m_updated = *time;
        } else if (name == "info" || name == "attributes") {
            processInfoNode(child);
        } else if (name == "block") {
            processBlockNode(child);
        } else if (name == "verses") {
            processVersesNode(child);
        } else if (name == "lyrics") {
            processLyricsNode(child);
        } else if (m_loadedFileType == SongFileType::OpenSong) {
            // OpenSong keeps the song's information directly in the song
            // element. The running order in "presentation" is not taken:
            // its names need not match the ids given here, so the sequence
            // stays automatic. "style", like "background", holds display
            // settings (fonts, and the word "author" for a subtitle), no
            // song data.
            if (name == "ccli" || name == "presentation" || name == "background" ||
                name == "style" || name == "user1" || name == "user2" || name == "user3" ||
                name == "key_line") {
                continue;
            }
            if (name == "aka") {
                for (const String& piece : split(child.text(), ";")) {
                    if (!piece.empty()) m_info.addIndex(piece);
                }
            } else if (name == "time_sig") {
                m_info.setAttribute("timesignature", child.text());
            } else {
                readInfoElement(m_info, child, name);
            }
        }
    }
    generateSectionIDs();
    return StatusSuccess;
}

// --- Reading: the steps ----------------------------------------------------------

void Song::processInfoNode(const XmlNode& info) {
    for (const XmlNode& child : info.childElements())
        readInfoElement(m_info, child, child.name());
}

void Song::processBlockNode(const XmlNode& block) {
    auto section = std::make_unique<SongSection>(SectionType::Verse);
    for (const auto& [key, value] : block.attributes()) {
        const String name = toLowerAscii(key);
        if (name == "type") {
            section->setType(sectionTypeFromString(value));
        } else if (name == "singers") {
            section->setSingers(singerTypeFromString(value));
        } else if (name == "target") {
            section->target(targetFromString(value));
        } else if (name == "repeat") {
            section->repeat(toInteger(value, 0));
        } else if (name == "indent") {
            section->indent(toInteger(value, 0));
        } else if (name == "spacebefore") {
            section->spaceBefore(equalsIgnoreCase(value, "small")   ? 1
                                 : equalsIgnoreCase(value, "large") ? 2
                                                                    : 0);
        } else if (name == "keepwithprevious" || name == "continue") {
            section->keepWithPrevious(toInteger(value, 0) != 0);
        }
    }
    for (const XmlNode& child : block.childElements()) {
        if (equalsIgnoreCase(child.name(), "line")) processLineNode(child, section.get());
    }
    m_sections.push_back(std::move(section));
}

void Song::processLineNode(const XmlNode& lineNode, SongSection* section) {
    auto* line = new SongLine;
    section->addLine(line);
    for (const auto& [key, value] : lineNode.attributes()) {
        if (equalsIgnoreCase(key, "indent")) {
            line->indent(toInteger(value, 0));
        } else if (equalsIgnoreCase(key, "singers")) {
            line->singers(singerTypeFromString(value));
        } else if (equalsIgnoreCase(key, "repeat")) {
            line->repeat(toInteger(value, 0));
        } else {
            line->setAttribute(key, value);
        }
    }
    // A chord stands over the character that follows it in the element, so
    // its offset is the number of characters gathered before it.
    String text;
    std::size_t length = 0;
    for (XmlNode node = lineNode.firstChild(); node; node = node.nextSibling()) {
        if (node.isText()) {
            String piece = node.text();
            length += codePointLength(piece);
            text += piece;
        } else if (node.isElement() && equalsIgnoreCase(node.name(), "chord")) {
            line->addChord(new SongChord(strip(node.text()), int(length)));
        }
    }
    line->setText(text);
}

void Song::processVersesNode(const XmlNode& verses) {
    for (const XmlNode& child : verses.childElements()) {
        if (equalsIgnoreCase(child.name(), "verse")) processVerseNode(child);
    }
}

void Song::processVerseNode(const XmlNode& verse) {
    // The type is read from the id only: the "type" attribute that the
    // writer puts on a verse has never been read, so a chorus whose id does
    // not begin with "chorus" comes back as a verse. Kept for the files out
    // there, which were written and read this way.
    const String id = verse.attribute("id");
    int type = SectionType::Verse;
    if (startsWithIgnoreCase(id, "chorus")) {
        type = SectionType::Chorus;
    } else if (startsWithIgnoreCase(id, "bridge")) {
        type = SectionType::Bridge;
    } else if (startsWithIgnoreCase(id, "coda")) {
        type = SectionType::Ending;
    }
    auto* section = new SongSection(type);
    addSection(section);
    for (const String& piece : split(verse.directText(), "\r\n", EmptyPieces::Skip)) {
        // Blank pieces are the indentation of hand-written files, not lines.
        if (strip(piece).empty()) continue;
        auto* line = new SongLine;
        line->setText(piece);
        section->addLine(line);
    }
}

void Song::processLyricsNode(const XmlNode& lyrics) {
    for (auto& section : OpenSongLyrics::read(lyrics.text()))
        m_sections.push_back(std::move(section.section));
}

void Song::processSongSmartNode(const XmlNode& song) {
    for (const XmlNode& child : song.childElements()) {
        const String name = toLowerAscii(child.name());
        if (name == "songsid") {
            m_uuid = strip(child.text());
        } else if (name == "artist") {
            m_info.setAuthor(child.text());
        } else if (name == "modifieddate") {
            if (auto time = parseSongSmartTime(child.text())) m_updated = *time;
        } else if (name == "title") {
            m_info.setTitle(child.text());
        } else if (name == "songdata") {
            processSongSmartData(child.text());
        } else {
            readInfoElement(m_info, child, name);
        }
    }
}

}  // namespace melodex
