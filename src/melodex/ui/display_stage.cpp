#include "melodex/ui/display_stage.h"

#include <nlohmann/json.hpp>

#include "melodex/foundation/text.h"
#include "melodex/library/song_db_file_entry.h"
#include "melodex/music/song_chord.h"
#include "melodex/music/song_info.h"
#include "melodex/song/song.h"
#include "melodex/song/song_line.h"
#include "melodex/song/song_section.h"
#include "melodex/song/vocabulary.h"

namespace melodex {

using nlohmann::json;

namespace {

// "Verse 1" for a verse with id "V1": the type word and the id's number.
String sectionName(const SongSection& section) {
    String name = sectionTypeToString(section.type());
    const String& id = section.id();
    const std::size_t digits = id.find_first_of("0123456789");
    if (digits != String::npos) name += " " + id.substr(digits);
    return name;
}

std::vector<StageLine> stageLines(const SongSection& section, int transpose) {
    std::vector<StageLine> lines;
    for (int i = 0; i < section.getLineCount(); ++i) {
        const SongLine& line = *section.getLine(i);
        StageLine out{line.text(), {}};
        for (int c = 0; c < line.getChordCount(); ++c) {
            const SongChord& chord = *line.getChord(c);
            if (chord.isValid()) out.chords.push_back({chord.offset(), chord.toString(transpose)});
        }
        lines.push_back(std::move(out));
    }
    return lines;
}

json linesToJson(const std::vector<StageLine>& lines) {
    json out = json::array();
    for (const StageLine& line : lines) {
        json chords = json::array();
        for (const StageChord& chord : line.chords)
            chords.push_back({{"offset", chord.offset}, {"name", chord.name}});
        out.push_back({{"text", line.text}, {"chords", std::move(chords)}});
    }
    return out;
}

// Readers that say what is wrong in the protocol's own words.
bool readString(const json& object, const char* name, String& out, String& error) {
    const auto found = object.find(name);
    if (found == object.end() || found->is_null()) return true;
    if (!found->is_string()) {
        error = String(name) + " must be a string";
        return false;
    }
    const auto& text = found->get_ref<const std::string&>();
    if (text.size() > DisplayStage::MaxTextBytes) {
        error = String(name) + " is longer than 4096 bytes";
        return false;
    }
    out = text;
    return true;
}

bool readInteger(const json& object, const char* name, int low, int high, int& out, String& error) {
    const auto found = object.find(name);
    if (found == object.end() || found->is_null()) return true;
    if (!found->is_number_integer() || found->get<long long>() < low ||
        found->get<long long>() > high) {
        error = String(name) + " must be an integer from " + std::to_string(low) + " to " +
                std::to_string(high);
        return false;
    }
    out = found->get<int>();
    return true;
}

bool readLines(const json& object, const char* name, std::vector<StageLine>& out, String& error) {
    const auto found = object.find(name);
    if (found == object.end() || found->is_null()) return true;
    const String what(name);
    if (!found->is_array() || found->size() > DisplayStage::MaxLines) {
        error = what + " must be an array of at most 200 lines";
        return false;
    }
    std::vector<StageLine> lines;
    for (const json& item : *found) {
        if (!item.is_object()) {
            error = what + " holds a line that is not an object";
            return false;
        }
        StageLine line;
        if (!readString(item, "text", line.text, error)) return false;
        if (const auto chords = item.find("chords"); chords != item.end() && !chords->is_null()) {
            if (!chords->is_array() || chords->size() > DisplayStage::MaxChords) {
                error = what + ": chords must be an array of at most 64 chords";
                return false;
            }
            for (const json& chordItem : *chords) {
                StageChord chord;
                if (!chordItem.is_object() ||
                    !readInteger(chordItem, "offset", 0, int(DisplayStage::MaxTextBytes),
                                 chord.offset, error) ||
                    !readString(chordItem, "name", chord.name, error)) {
                    if (error.empty()) error = what + ": a chord must be an object";
                    return false;
                }
                line.chords.push_back(std::move(chord));
            }
        }
        lines.push_back(std::move(line));
    }
    out = std::move(lines);
    return true;
}

}  // namespace

DisplayStage DisplayStage::fromSong(const Song& song, int index, int transposeBy) {
    DisplayStage stage;
    const SongInfo& info = song.info();
    // The name the song is listed under: a plain-text song has no title.
    stage.title = SongDBFileEntry::listedTitle(song);
    stage.key = info.key().empty() ? String() : info.keyName(transposeBy);
    stage.transpose = transposeBy;
    const int capo = toInteger(info.getAttribute("capo"), 0);
    stage.capo = capo >= 0 && capo <= 11 ? capo : 0;
    const int tempo = toInteger(info.getAttribute("tempo"), 0);
    stage.tempo = tempo >= 0 && tempo <= 400 ? tempo : 0;
    if (index < 0 || index >= song.getSectionCount()) return stage;
    const SongSection& section = *song.getSection(index);
    stage.section = sectionName(section);
    stage.current = stageLines(section, transposeBy);
    if (index + 1 < song.getSectionCount())
        stage.next = stageLines(*song.getSection(index + 1), transposeBy);
    return stage;
}

int DisplayStage::findSection(const Song& song, std::string_view id) {
    for (int i = 0; i < song.getSectionCount(); ++i)
        if (equalsIgnoreCase(song.getSection(i)->id(), id)) return i;
    return -1;
}

String DisplayStage::toJson() const {
    const json object = {{"title", title},
                         {"section", section},
                         {"key", key},
                         {"capo", capo},
                         {"transpose", transpose},
                         {"tempo", tempo},
                         {"current", linesToJson(current)},
                         {"next", linesToJson(next)}};
    return object.dump(-1, ' ', false, json::error_handler_t::replace);
}

bool DisplayStage::fromJson(std::string_view text, String* errorOut) {
    String error;
    const json object = json::parse(text, nullptr, false);
    DisplayStage stage;
    const bool ok = [&] {
        if (!object.is_object()) {
            error = "the stage must be a JSON object";
            return false;
        }
        return readString(object, "title", stage.title, error) &&
               readString(object, "section", stage.section, error) &&
               readString(object, "key", stage.key, error) &&
               readInteger(object, "capo", 0, 11, stage.capo, error) &&
               readInteger(object, "transpose", -11, 11, stage.transpose, error) &&
               readInteger(object, "tempo", 0, 400, stage.tempo, error) &&
               readLines(object, "current", stage.current, error) &&
               readLines(object, "next", stage.next, error);
    }();
    if (!ok) {
        if (errorOut) *errorOut = error;
        return false;
    }
    *this = std::move(stage);
    return true;
}

}  // namespace melodex
