#include "melodex/app/melodex.h"

#include "melodex/app/string_tables.h"
#include "melodex/music/notes.h"
#include "melodex/song/vocabulary.h"

namespace melodex {

int Melodex::getSingerType(const String& word) const {
    return singerTypeFromString(word);
}

String Melodex::getSingerTypeAsString(int singers) const {
    return singerTypeToString(singers);
}

String Melodex::getSectionTypeAsString(int type) const {
    return sectionTypeToString(type);
}

int Melodex::getSectionTypeFromString(const String& word) const {
    return sectionTypeFromString(word);
}

String Melodex::getTargetAsString(int bits, const String& separator) const {
    return targetToString(bits, separator);
}

int Melodex::getTargetFromString(const String& words) const {
    return targetFromString(words);
}

int Melodex::getTextStyle(const String& word) const {
    return textStyleFromString(word);
}

String Melodex::getTextStyleAsString(int style) const {
    return textStyleToString(style);
}

int Melodex::getNoteNumber(const String& text, String& rest) const {
    return noteNumber(text, rest);
}

int Melodex::getNoteNumber(const String& text) const {
    return noteNumber(text);
}

bool Melodex::isChords(const String& line) const {
    return melodex::isChords(line);
}

void Melodex::convertToChords(const String& line, std::vector<SongChord>& chords) const {
    melodex::convertToChords(line, chords);
}

void Melodex::addStringTable(const String& path, bool flag) {
    StringTables::instance().addTable(path, flag);
}

String Melodex::loadString(const String& section, const String& id,
                           const String& defaultText) const {
    return StringTables::instance().loadString(section, id, defaultText);
}

}  // namespace melodex
