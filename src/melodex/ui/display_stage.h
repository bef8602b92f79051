#pragma once

// What the stage (band) screen shows: the song's title, the section sung
// now and the one after it, each line with its chords, and the key, capo,
// transposition and tempo in force. Built from a song by fromSong(); sent
// by ProjectorClient::setStage; read back from the server's status.
//
//     DisplayStage stage = DisplayStage::fromSong(song, 0);  // first section
//     client.setStage(stage);

#include <cstdint>
#include <string_view>
#include <vector>

#include "melodex/foundation/text.h"

namespace melodex {

class Song;

struct StageChord {
    int offset = 0;  // in characters (code points) of the line's text
    String name;     // spelled for display, transposed already
    bool operator==(const StageChord&) const = default;
};

struct StageLine {
    String text;
    std::vector<StageChord> chords;
    bool operator==(const StageLine&) const = default;
};

class DisplayStage {
public:
    // Limits the server holds senders to.
    static constexpr std::size_t MaxTextBytes = 4096;
    static constexpr std::size_t MaxLines = 200;
    static constexpr std::size_t MaxChords = 64;

    String title;
    String section;     // "Verse 1", "Chorus" ...
    String key;         // after transposition
    int capo = 0;       // 0 to 11
    int transpose = 0;  // -11 to 11
    int tempo = 0;      // beats per minute, 0 when unknown
    std::vector<StageLine> current;
    std::vector<StageLine> next;

    // The stage text of section `index` of `song` (its lines and chords,
    // transposed by `transpose` semitones) with the following section as
    // `next`; capo and tempo come from the song's "capo" and "tempo"
    // attributes. An index out of range gives an empty current text.
    static DisplayStage fromSong(const Song& song, int index, int transpose = 0);

    // The index of the section whose id is `id` ("V1", compared ignoring
    // case), or -1.
    static int findSection(const Song& song, std::string_view id);

    // The protocol's JSON object (the members of set_stage).
    String toJson() const;
    // Reads such an object; members it does not know are ignored, missing
    // ones keep their defaults. False, with the reason in `error`, for a
    // wrong type or a value beyond the limits; *this is then unchanged.
    bool fromJson(std::string_view json, String* error = nullptr);

    bool operator==(const DisplayStage&) const = default;
};

}  // namespace melodex
