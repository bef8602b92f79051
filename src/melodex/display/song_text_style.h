#pragma once

// The font and colour of one kind of text in a displayed song: a section
// kind (Verse, Chorus ...), chords, instructions, the copyright line, page
// numbers, song-book entries. A display profile holds one per style kind and
// its .sdp file stores them as XML elements.
//
//     SongTextStyle chorus;               // Arial 12 pt, 6 to 24, black
//     chorus.FontStyle = SongTextStyle::Italic;
//     GFont font = chorus.font(1.5);      // 18 pt, italic
//     String xml = chorus.saveToText(SongTextStyle());  // "\t\t\t<Bold>0</Bold>\n..."
//
// The fields are public and named as the files name them. Reading is
// lenient and one-way for the two style bits: an element "Bold" or "Italic"
// that says 1 sets its bit, and one that says 0 leaves it as it was, so a
// style read on top of a bold default stays bold. Profiles written by the
// other programs of the family depend on that.

#include <string_view>

#include "melodex/display/gfont.h"
#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"
#include "melodex/platform/settings_store.h"

namespace melodex {

class XmlNode;

// The style kinds, which index a profile's styles.
namespace StyleKind {
inline constexpr int Default = 0;
inline constexpr int Verse = 1;
inline constexpr int Chorus = 2;
inline constexpr int Bridge = 3;
inline constexpr int PreChorus = 4;
inline constexpr int Tag = 5;
inline constexpr int Intro = 6;
inline constexpr int Ending = 7;
inline constexpr int Misc = 8;
inline constexpr int Chord = 9;
inline constexpr int Instruction = 10;
inline constexpr int Number = 11;
inline constexpr int Reference = 12;
inline constexpr int Copyright = 13;
inline constexpr int PageNo = 14;
inline constexpr int SongInfo = 15;
inline constexpr int SectionInfoTitle = 16;
inline constexpr int SectionInfoValue = 17;
inline constexpr int BookIndexEntry = 18;
inline constexpr int BookTitleEntry = 19;
inline constexpr int Count = 20;
}  // namespace StyleKind

class SongTextStyle {
public:
    // Bits of FontStyle.
    static constexpr int Bold = 0x1;
    static constexpr int Italic = 0x2;

    String FontName = "Arial";
    double FontPtSize = 12.0;     // nominal size in points
    double FontMinPtSize = 6.0;   // font() never goes below ...
    double FontMaxPtSize = 24.0;  // ... nor above these (the maximum wins)
    int FontStyle = 0;            // Bold | Italic
    unsigned long FontColor = 0;  // 0x00BBGGRR
    int Indent = 0;               // indentation steps

    // "Default", "Verse" ... "BookTitleEntry"; empty for a kind outside 0 to 19.
    static String getStyleName(int kind);

    // The kind of a style name, ignoring case; 0 (the default style) for a
    // name that is none of them.
    static int getStyleType(std::string_view name);

    // The font at `scale` times the nominal size, kept between the minimum
    // and the maximum size.
    GFont font(double scale) const;

    // Every field as one XML element per line at three tabs of indentation:
    // FontName, FontPtSize, FontMinPtSize, FontMaxPtSize, FontColor (a colour
    // name), Indent, Bold, Italic.
    String saveToText() const;

    // Only the elements whose fields differ from `base`'s; both Bold and
    // Italic when FontStyle differs at all. Empty for a style equal to base.
    String saveToText(const SongTextStyle& base) const;

    // Reads the elements present under `node` (names ignoring case) over the
    // fields as they are. A size that is not a finite decimal number leaves
    // its field alone; an unknown colour name reads as black.
    void loadFromXml(const XmlNode& node);

    // Keeps the style in the settings store under `key`: the values
    // key\FontName, key\FontStyle, key\FontMaxPtSize, key\FontColor and
    // key\Indent, and key\FontPtSize and key\FontMinPtSize so that no field
    // is lost; sizes as decimal numbers, the colour as a colour name. All
    // values are written in one change of the settings file. 0 or the
    // status of the failed write.
    [[nodiscard]] Status saveToRegistry(const String& key,
                                        SettingsStore store = SettingsStore()) const;

    // Reads the values saveToRegistry writes; a missing or unreadable value
    // leaves its field as it is. True when the store held any of them.
    bool loadFromRegistry(const String& key, const SettingsStore& store = SettingsStore());

    friend bool operator==(const SongTextStyle&, const SongTextStyle&) = default;
};

}  // namespace melodex
