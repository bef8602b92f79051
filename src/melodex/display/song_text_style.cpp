#include "melodex/display/song_text_style.h"

#include <array>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "melodex/foundation/color_names.h"
#include "melodex/foundation/ini_file.h"
#include "melodex/foundation/value.h"
#include "melodex/foundation/xml.h"
#include "melodex/platform/settings_store.h"

namespace melodex {

namespace {

constexpr std::array<const char*, StyleKind::Count> StyleNames = {
    "Default",
    "Verse",
    "Chorus",
    "Bridge",
    "PreChorus",
    "Tag",
    "Intro",
    "Ending",
    "Misc",
    "Chord",
    "Instruction",
    "Number",
    "Reference",
    "Copyright",
    "PageNo",
    "SongInfo",
    "SectionInfoTitle",
    "SectionInfoValue",
    "BookIndexEntry",
    "BookTitleEntry",
};

// One element at the indentation styles have inside a profile file.
void appendElement(String& out, std::string_view name, std::string_view value) {
    XmlString::appendElement(out, 3, name, value);
}

String decimal(double number) {
    return Value(number).toString();
}

std::optional<double> finiteNumber(std::string_view text) {
    const std::optional<double> number = parseDouble(text);
    if (!number || !std::isfinite(*number)) return std::nullopt;
    return number;
}

bool isTrue(std::string_view text) {
    const std::string_view word = trimBlanks(text);
    return toInteger(word, 0) != 0 || equalsIgnoreCase(word, "true") ||
           equalsIgnoreCase(word, "yes");
}

String valueName(const String& key, std::string_view name) {
    return key.empty() ? String(name) : key + "\\" + String(name);
}

}  // namespace

String SongTextStyle::getStyleName(int kind) {
    if (kind < 0 || kind >= StyleKind::Count) return {};
    return StyleNames[std::size_t(kind)];
}

int SongTextStyle::getStyleType(std::string_view name) {
    for (int kind = 0; kind < StyleKind::Count; ++kind) {
        if (equalsIgnoreCase(name, StyleNames[std::size_t(kind)])) return kind;
    }
    return StyleKind::Default;
}

GFont SongTextStyle::font(double scale) const {
    double size = scale * FontPtSize;
    if (size < FontMinPtSize) size = FontMinPtSize;
    if (size > FontMaxPtSize) size = FontMaxPtSize;
    GFont result;
    result.face = FontName;
    result.size = size;
    result.bold = (FontStyle & Bold) != 0;
    result.italic = (FontStyle & Italic) != 0;
    result.color = FontColor;
    return result;
}

String SongTextStyle::saveToText() const {
    String out;
    appendElement(out, "FontName", XmlString::encodeText(FontName));
    appendElement(out, "FontPtSize", decimal(FontPtSize));
    appendElement(out, "FontMinPtSize", decimal(FontMinPtSize));
    appendElement(out, "FontMaxPtSize", decimal(FontMaxPtSize));
    appendElement(out, "FontColor", getColorName(FontColor));
    appendElement(out, "Indent", std::to_string(Indent));
    appendElement(out, "Bold", (FontStyle & Bold) ? "1" : "0");
    appendElement(out, "Italic", (FontStyle & Italic) ? "1" : "0");
    return out;
}

String SongTextStyle::saveToText(const SongTextStyle& base) const {
    String out;
    if (FontName != base.FontName) appendElement(out, "FontName", XmlString::encodeText(FontName));
    if (FontPtSize != base.FontPtSize) appendElement(out, "FontPtSize", decimal(FontPtSize));
    if (FontMinPtSize != base.FontMinPtSize)
        appendElement(out, "FontMinPtSize", decimal(FontMinPtSize));
    if (FontMaxPtSize != base.FontMaxPtSize)
        appendElement(out, "FontMaxPtSize", decimal(FontMaxPtSize));
    if (FontColor != base.FontColor) appendElement(out, "FontColor", getColorName(FontColor));
    if (Indent != base.Indent) appendElement(out, "Indent", std::to_string(Indent));
    if (FontStyle != base.FontStyle) {
        appendElement(out, "Bold", (FontStyle & Bold) ? "1" : "0");
        appendElement(out, "Italic", (FontStyle & Italic) ? "1" : "0");
    }
    return out;
}

void SongTextStyle::loadFromXml(const XmlNode& node) {
    if (const XmlNode name = node.findChild("FontName")) FontName = name.text();
    const std::pair<const char*, double*> sizes[] = {{"FontPtSize", &FontPtSize},
                                                     {"FontMinPtSize", &FontMinPtSize},
                                                     {"FontMaxPtSize", &FontMaxPtSize}};
    for (const auto& [element, field] : sizes) {
        if (const XmlNode size = node.findChild(element)) {
            if (const std::optional<double> number = finiteNumber(size.text())) *field = *number;
        }
    }
    if (const XmlNode color = node.findChild("FontColor"))
        FontColor = getColorByName(color.text(), 0);
    if (const XmlNode indent = node.findChild("Indent")) Indent = toInteger(indent.text(), 0);
    // One way only: a 0 never clears a bit that the default style set.
    if (const XmlNode bold = node.findChild("Bold"); bold && isTrue(bold.text())) FontStyle |= Bold;
    if (const XmlNode italic = node.findChild("Italic"); italic && isTrue(italic.text()))
        FontStyle |= Italic;
}

Status SongTextStyle::saveToRegistry(const String& key, SettingsStore store) const {
    return store.setStrings({{valueName(key, "FontName"), FontName},
                             {valueName(key, "FontStyle"), std::to_string(FontStyle)},
                             {valueName(key, "FontPtSize"), decimal(FontPtSize)},
                             {valueName(key, "FontMinPtSize"), decimal(FontMinPtSize)},
                             {valueName(key, "FontMaxPtSize"), decimal(FontMaxPtSize)},
                             {valueName(key, "FontColor"), getColorName(FontColor)},
                             {valueName(key, "Indent"), std::to_string(Indent)}});
}

bool SongTextStyle::loadFromRegistry(const String& key, const SettingsStore& store) {
    const ConfigKey settings = store.snapshot();
    bool found = false;
    if (const ConfigValue* name = settings.findValue(valueName(key, "FontName"))) {
        FontName = name->value();
        found = true;
    }
    if (const ConfigValue* style = settings.findValue(valueName(key, "FontStyle"))) {
        FontStyle = toInteger(style->value(), FontStyle);
        found = true;
    }
    const std::pair<const char*, double*> sizes[] = {{"FontPtSize", &FontPtSize},
                                                     {"FontMinPtSize", &FontMinPtSize},
                                                     {"FontMaxPtSize", &FontMaxPtSize}};
    for (const auto& [name, field] : sizes) {
        if (const ConfigValue* size = settings.findValue(valueName(key, name))) {
            if (const std::optional<double> number = finiteNumber(size->value())) *field = *number;
            found = true;
        }
    }
    if (const ConfigValue* color = settings.findValue(valueName(key, "FontColor"))) {
        FontColor = getColorByName(color->value(), FontColor);
        found = true;
    }
    if (const ConfigValue* indent = settings.findValue(valueName(key, "Indent"))) {
        Indent = toInteger(indent->value(), Indent);
        found = true;
    }
    return found;
}

}  // namespace melodex
