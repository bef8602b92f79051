// The .sdp file of a display profile: writing, reading and the file's words
// for targets and flags.

#include "melodex/display/song_display_profile.h"

#include <cerrno>
#include <cstdio>
#include <optional>

#include "melodex/foundation/color_names.h"
#include "melodex/foundation/file_system.h"
#include "melodex/foundation/value.h"
#include "melodex/foundation/xml.h"
#include "melodex/song/vocabulary.h"

namespace melodex {

namespace {

struct NamedBit {
    const char* name;
    int mask;
};

// The target elements, in the order the file has them.
constexpr NamedBit Targets[] = {
    {"screen", DisplayTarget::Screen},         {"print", DisplayTarget::Print},
    {"projection", DisplayTarget::Projection}, {"beamwrightfollower", DisplayTarget::Follower},
    {"editor", DisplayTarget::Editor},         {"viewer", DisplayTarget::Viewer},
};

// The flag elements of "display", in the order the file has them (which is
// not the order of the bits). Shrink-to-fit has none: it is never stored.
constexpr NamedBit DisplayFlags[] = {
    {"words", ProfileFlag::ShowWords},
    {"chords", ProfileFlag::ShowChords},
    {"bass", ProfileFlag::ShowBass},
    {"music", ProfileFlag::ShowMusic},
    {"header", ProfileFlag::ShowHeader},
    {"footer", ProfileFlag::ShowFooter},
    {"author", ProfileFlag::ShowAuthor},
    {"tempo", ProfileFlag::ShowTempo},
    {"timesignature", ProfileFlag::ShowTimeSignature},
    {"copyright", ProfileFlag::ShowCopyright},
    {"capochordsinbrackets", ProfileFlag::CapoChordsInBrackets},
    {"annotations", ProfileFlag::ShowAnnotations},
    {"sequence", ProfileFlag::ShowSequence},
    {"localtranspose", ProfileFlag::ShowLocalTranspose},
    {"multicolumns", ProfileFlag::MultiColumns},
    {"variablecolumnwidths", ProfileFlag::VariableColumnWidths},
    {"key", ProfileFlag::ShowKey},
    {"wraplines", ProfileFlag::WrapText},
};

constexpr int SingerTypeCount = 10;

const char* bit(bool on) {
    return on ? "1" : "0";
}

// True for "1" (any non-zero number), "true" and "yes".
bool isTrue(const XmlNode& node) {
    const String text = node.text();
    const std::string_view word = trimBlanks(text);
    return toInteger(word, 0) != 0 || equalsIgnoreCase(word, "true") ||
           equalsIgnoreCase(word, "yes");
}

// A missing element reads as 0.
int integerOf(const XmlNode& node) {
    return toInteger(node.text(), 0);
}

// An index attribute that names a key or a note: a decimal number from 0 to 11.
std::optional<int> noteIndex(const XmlNode& node) {
    const std::optional<long long> index = parseInteger(node.attribute("index"));
    if (!index || *index < 0 || *index >= 12) return std::nullopt;
    return int(*index);
}

}  // namespace

String SongDisplayProfile::saveToText() const {
    String out;
    out.reserve(12000);
    out += "<?xml version=\"1.0\"?>\n<profile xmlns=\"brackwell/songdisplayprofile\">\n";
    // Encoded although the older writers put these in as they were: a name
    // with "&" or "<" would otherwise make a file that no reader takes.
    XmlString::appendElement(out, 1, "name", XmlString::encodeText(m_name));
    XmlString::appendElement(out, 1, "title", XmlString::encodeText(m_title));

    out += "\t<target>\n";
    for (const NamedBit& target : Targets)
        XmlString::appendElement(out, 2, target.name, bit((m_type & target.mask) != 0));
    out += "\t</target>\n";

    out += "\t<display>\n";
    XmlString::appendElement(out, 2, "pagebackgroundcolor", getColorName(m_pageBackgroundColor));
    for (const NamedBit& flag : DisplayFlags)
        XmlString::appendElement(out, 2, flag.name, bit(isFlagSet(flag.mask)));
    XmlString::appendElement(out, 2, "transpose", std::to_string(m_transpose));
    XmlString::appendElement(out, 2, "highlightFadeTime", Value(m_highlightFadeTime).toString());
    XmlString::appendElement(out, 2, "highlightBgColor", getColorName(m_highlightBackgroundColor));
    out += "\t</display>\n";

    out += "\t<linecolors>\n";
    for (int singers = 0; singers < SingerTypeCount; ++singers)
        XmlString::appendElement(out, 2, singerTypeToString(singers),
                                 getColorName(getLineColor(singers)));
    out += "\t</linecolors>\n";

    out += "\t<textstyles>\n\t\t<default>\n";
    const SongTextStyle& base = style(StyleKind::Default);
    out += base.saveToText();
    out += "\t\t</default>\n";
    for (int kind = 1; kind < StyleKind::Count; ++kind) {
        out += "\t\t<style";
        out += XmlString::attribute("name", SongTextStyle::getStyleName(kind));
        out += ">\n";
        out += style(kind).saveToText(base);
        out += "\t\t</style>\n";
    }
    out += "\t</textstyles>\n";

    out += "\t<keys>\n";
    for (int key = 0; key < 12; ++key) {
        out += "\t\t<key index=\"" + std::to_string(key) + "\"";
        out += XmlString::attribute("name", getKeyName(key));
        out += ">\n";
        XmlString::appendElement(out, 3, "capo", std::to_string(defaultCapoPosition(key)));
        XmlString::appendElement(out, 3, "localtranspose",
                                 std::to_string(defaultLocalTranspose(key)));
        for (int note = 0; note < 12; ++note) {
            out += "\t\t\t<chord index=\"" + std::to_string(note) + "\">";
            out += XmlString::encodeText(getNoteName(key, note, 0));
            out += "</chord>\n";
        }
        out += "\t\t</key>\n";
    }
    out += "\t</keys>\n";
    out += "</profile>\n";
    return out;
}

Status SongDisplayProfile::loadFromXml(const XmlNode& node) {
    clear();
    const XmlNode profile =
        equalsIgnoreCase(node.name(), "profile") ? node : node.findChild("profile");
    if (!profile) return StatusFailed;

    m_name = profile.findChild("name").text();
    m_title = profile.findChild("title").text();

    if (const XmlNode target = profile.findChild("target")) {
        for (const NamedBit& bit : Targets) {
            if (const XmlNode element = target.findChild(bit.name); element && isTrue(element))
                m_type |= bit.mask;
        }
    }

    if (const XmlNode display = profile.findChild("display")) {
        m_pageBackgroundColor = getColorByName(display.findChild("pagebackgroundcolor").text(), 0);
        for (const NamedBit& flag : DisplayFlags) {
            if (const XmlNode element = display.findChild(flag.name); element && isTrue(element))
                setFlag(flag.mask);
        }
        m_transpose = integerOf(display.findChild("transpose"));
        if (const XmlNode color = display.findChild("highlightBgColor"))
            m_highlightBackgroundColor = getColorByName(color.text(), 0);
        // Written as a decimal number but read as whole seconds, as the
        // other programs of the family read it.
        if (const XmlNode fade = display.findChild("highlightFadeTime"))
            m_highlightFadeTime = double(integerOf(fade));
    }

    if (const XmlNode lineColors = profile.findChild("linecolors")) {
        for (int singers = 0; singers < SingerTypeCount; ++singers) {
            if (const XmlNode color = lineColors.findChild(singerTypeToString(singers)))
                setLineColor(singers, getColorByName(color.text(), 0));
        }
    }

    if (const XmlNode textStyles = profile.findChild("textstyles")) {
        SongTextStyle base;
        if (const XmlNode defaults = textStyles.findChild("default")) base.loadFromXml(defaults);
        m_styles.assign(std::size_t(StyleKind::Count), base);
        // A style name that is no style kind loads into style 0, after the
        // copies were made: files in use rely on that.
        for (const XmlNode& child : textStyles.childElements()) {
            if (!equalsIgnoreCase(child.name(), "style") || !child.hasAttribute("name")) continue;
            m_styles[std::size_t(SongTextStyle::getStyleType(child.attribute("name")))].loadFromXml(
                child);
        }
    }

    const XmlNode keys = profile.findChild("keys");
    if (!keys) return StatusSuccess;
    for (const XmlNode& key : keys.childElements()) {
        if (!equalsIgnoreCase(key.name(), "key")) continue;
        const std::optional<int> index = noteIndex(key);
        if (!index) continue;
        if (key.hasAttribute("name")) setKeyName(*index, key.attribute("name"));
        defaultCapoPosition(*index, integerOf(key.findChild("capo")));
        defaultLocalTranspose(*index, integerOf(key.findChild("localtranspose")));
        for (const XmlNode& chord : key.childElements()) {
            if (!equalsIgnoreCase(chord.name(), "chord")) continue;
            if (const std::optional<int> note = noteIndex(chord))
                setNoteName(*index, *note, chord.text());
        }
    }
    return StatusSuccess;
}

Status SongDisplayProfile::loadFromText(std::string_view text) {
    m_lastError.clear();
    XmlFile file;
    Status status = file.loadFromString(text);
    if (status == StatusSuccess) status = loadFromXml(file.root());
    m_lastError.record(FileError::Action::Read, {}, status);
    return status;
}

Status SongDisplayProfile::loadFromFile(const String& path) {
    m_lastError.clear();
    XmlFile file;
    Status status = file.load(path);
    if (status == StatusSuccess) {
        status = loadFromXml(file.root());
        m_filename = path;
    }
    m_lastError.record(FileError::Action::Read, path, status);
    return status;
}

Status SongDisplayProfile::saveToFile(const String& path) {
    m_lastError.clear();
    const Status status = writeFileAtomically(path, saveToText());
    if (status == StatusSuccess) m_filename = path;
    m_lastError.record(FileError::Action::Write, path, status);
    return status;
}

Status SongDisplayProfile::save() {
    if (m_filename.empty()) {
        m_lastError.clear();
        m_lastError.record(FileError::Action::Write, {}, Status(ENOENT));
        return Status(ENOENT);
    }
    return saveToFile(m_filename);
}

String SongDisplayProfile::targetsToString(int type) {
    StringArray words;
    for (const NamedBit& target : Targets) {
        if (type & target.mask) words.push_back(target.name);
    }
    if (const int others = type & ~0x3F; others != 0) words.push_back(std::to_string(others));
    return words.empty() ? String("none") : join(words, ", ");
}

std::optional<int> SongDisplayProfile::targetsFromString(std::string_view text) {
    if (const std::optional<long long> number = parseInteger(text)) {
        if (*number < 0 || *number > 0x7FFFFFFF) return std::nullopt;
        return int(*number);
    }
    const StringArray words = split(text, ", \t", EmptyPieces::Skip);
    if (words.empty()) return std::nullopt;
    int type = 0;
    for (const String& word : words) {
        const NamedBit* found = nullptr;
        for (const NamedBit& target : Targets) {
            if (equalsIgnoreCase(word, target.name)) found = &target;
        }
        if (!found) return std::nullopt;
        type |= found->mask;
    }
    return type;
}

StringArray SongDisplayProfile::flagNames(int flags) {
    StringArray names;
    for (int bitIndex = 0; bitIndex < 31; ++bitIndex) {
        const int mask = 1 << bitIndex;
        if (!(flags & mask)) continue;
        String name;
        if (mask == ProfileFlag::ShrinkToFit) name = "shrinktofit";
        for (const NamedBit& flag : DisplayFlags) {
            if (flag.mask == mask) name = flag.name;
        }
        if (name.empty()) {
            char hex[16];
            std::snprintf(hex, sizeof hex, "0x%X", unsigned(mask));
            name = hex;
        }
        names.push_back(name);
    }
    return names;
}

}  // namespace melodex
