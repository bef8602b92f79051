#include "melodex/song/opensong_lyrics.h"

#include <gtest/gtest.h>

#include <vector>

#include "melodex/song/song.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using namespace SectionType;

// The line's text with each chord in brackets before the character it
// stands over: "[G]Amazing [C]grace".
String inlined(const SongLine& line) {
    String text = line.text();
    for (int i = line.getChordCount() - 1; i >= 0; --i) {
        const SongChord& chord = *line.getChord(i);
        insertAtCodePoint(text, std::size_t(chord.offset()), "[" + chord.toString() + "]");
    }
    return text;
}

std::vector<String> linesOf(const SongSection& section) {
    std::vector<String> lines;
    for (int i = 0; i < section.getLineCount(); ++i)
        lines.push_back(inlined(*section.getLine(i)));
    return lines;
}

struct ExpectedSection {
    String name;
    int type;
    std::vector<String> lines;
};

std::vector<ExpectedSection> sectionsOf(std::string_view lyrics) {
    std::vector<ExpectedSection> out;
    for (const auto& [name, section] : OpenSongLyrics::read(lyrics))
        out.push_back({name, section->type(), linesOf(*section)});
    return out;
}

void expectSections(const std::vector<ExpectedSection>& actual,
                    const std::vector<ExpectedSection>& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(expected[i].name);
        EXPECT_EQ(actual[i].name, expected[i].name);
        EXPECT_EQ(actual[i].type, expected[i].type);
        EXPECT_EQ(actual[i].lines, expected[i].lines);
    }
}

TEST(OpenSongLyricsTest, ChordsStandOverTheLettersBelowThem) {
    expectSections(
        sectionsOf("[V1]\n"
                   ".    G\n"
                   " Amazing grace\n"
                   ".G     C\n"
                   "   how sweet\n"
                   ".  D  Em\n"
                   "     the sound\n"
                   ".  G C\n"
                   "That saved\n"),
        {{"V1",
          Verse,
          {"Amaz[G]ing grace", "[G]how [C]sweet", "[D]t[Em]he sound", "Tha[G]t [C]saved"}}});
    // Past the end: the first chord goes at the end, later ones keep their
    // distance from it on trailing blanks.
    expectSections(sectionsOf("[C]\n"
                              ".G       D\n"
                              " Amen\n"
                              ".G       D    A\n"
                              " Amen   \n"),
                   {{"C", Chorus, {"[G]Amen[D]", "[G]Amen[D]     [A]"}}});
    // Accented and Cyrillic letters are one column each.
    expectSections(sectionsOf("[V]\n.  D   G\n Noël, Noël\n.  C   F\n Свят, свят\n"),
                   {{"V", Verse, {"No[D]ël, [G]Noël", "Св[C]ят, [F]свят"}}});
}

TEST(OpenSongLyricsTest, BreaksAndStretchMarksMoveTheChordsWithTheirLetters) {
    expectSections(
        sectionsOf("[V]\n"
                   ".G            C    D    G\n"
                   " Praise God | from whom all\n"
                   ".G         C    D        G\n"
                   " Praise || Him, all crea_tures\n"
                   ".C          F\n"
                   " Bless|ings flow\n"
                   ".Dsus4   D\n"
                   " Here___ below ||\n"),
        {{"V",
          Verse,
          {"[G]Praise God", "[C]from [D]whom [G]all", "[G]Praise [C]Him, [D]all crea[G]tures",
           "[C]Bless", "ings [F]flow", "[Dsus4]Here [D]below"}}});
}

TEST(OpenSongLyricsTest, ChordRowsServeOneRowPerVerseUntilABreak) {
    expectSections(sectionsOf("[V]\n"
                              ".C    G\n"
                              "1 One two\n"
                              "2 Red blue\n"
                              " Shared\n"
                              " Not under the chords\n"
                              "1 Verse one again\n"
                              ".F\n"
                              ";comment\n"
                              "2 After a comment\n"
                              ".A\n"
                              "---\n"
                              "1 Layout marks do not break\n"
                              ".D\n"
                              "\n"
                              "1 After a blank row\n"
                              "[C]\n"
                              ".E\n"
                              "[B]\n"
                              " Bridge\n"),
                   {{"V1",
                     Verse,
                     {"[C]One [G]two", "[C]Share[G]d", "Not under the chords", "Verse one again",
                      "[F]", "[A]Layout marks do not break", "[D]", "After a blank row"}},
                    {"V2",
                     Verse,
                     {"[C]Red [G]blue", "[C]Share[G]d", "Not under the chords", "[F]",
                      "After a comment", "[D]"}},
                    {"C", Chorus, {"[E]"}},
                    {"B", Bridge, {"Bridge"}}});
}

TEST(OpenSongLyricsTest, HeadersGiveTypesByTheirFirstLetter) {
    const std::pair<const char*, int> names[] = {
        {"V", Verse},     {"v2", Verse}, {"C", Chorus}, {"Chorus 2", Chorus}, {"B", Bridge},
        {"P", PreChorus}, {"T", Tag},    {"I", Intro},  {"E", Ending},        {"Coda", Chorus},
        {"X", Misc},      {"", Misc},    {"1", Misc},   {"Solo", Misc},
    };
    for (const auto& [name, type] : names)
        EXPECT_EQ(OpenSongLyrics::sectionTypeOf(name), type) << name;

    expectSections(sectionsOf(" Before any header\n"
                              "[ P1 ] words after the bracket\n"
                              "[T\n"
                              " tag\n"
                              "[]\n"),
                   {{"V", Verse, {"Before any header"}},
                    {"P1", PreChorus, {}},
                    {"T", Tag, {"tag"}},
                    {"", Misc, {}}});
    EXPECT_TRUE(sectionsOf("").empty());
    EXPECT_TRUE(sectionsOf("\n\n;only a comment\n").empty());
}

TEST(OpenSongLyricsTest, OddRowsNeverLoseAChord) {
    expectSections(sectionsOf("[V]\n"
                              ".G C D\n"
                              "      Hi\n"  // chords over the leading blanks
                              ".G  |  x2  (C)  N.C.   Am\n"
                              " Bar lines and remarks are not chords\n"
                              ".G\n"
                              "9\n"  // an empty verse row under chords
                              ".\n"
                              " A bare dot row is an empty chord row\n"
                              ".C\t\t\tF\n"
                              " Tab\tstop\r\n"),
                   {{"V9",
                     Verse,
                     {"[G]H[C]i[D]", "[G]Bar lines and remarks [Am]are not chords", "[G]",
                      "A bare dot row is an empty chord row", "[C]Tab\t[F]stop"}}});
}

TEST(OpenSongLyricsTest, HugeRowsCostTheirLengthOnly) {
    const std::size_t size = 10 * 1024 * 1024;
    String stretched = "[V]\n.G\n " + String(size, '_') + "x\n";
    auto sections = sectionsOf(stretched);
    ASSERT_EQ(sections.size(), 1u);
    EXPECT_EQ(sections[0].lines, std::vector<String>{"[G]x"});

    // Every break makes a line, so a smaller row is enough here.
    String broken = "[V]\n ";
    for (std::size_t i = 0; i < size / 64; ++i)
        broken += "a|||";
    sections = sectionsOf(broken);
    ASSERT_EQ(sections.size(), 1u);
    EXPECT_EQ(sections[0].lines.size(), size / 64);
}

// --- Whole OpenSong files ------------------------------------------------------

struct ExpectedSong {
    const char* file;
    const char* title;
    const char* key;
    std::vector<ExpectedSection> sections;  // names are the section ids here
};

const std::vector<ExpectedSong>& openSongFiles() {
    static const std::vector<ExpectedSong> songs = {
        {"amazing_grace",
         "Amazing Grace",
         "G",
         {{"V1",
           Verse,
           {"[G]Amazing [G7]grace! How [C]sweet the [G]sound",
            "That [Em]saved a [D]wretch like [G]me!",
            "I [G]once was lost, but [G7]now am [C]found;", "Was [G]blind, but [D]now I [G]see."}},
          {"V2",
           Verse,
           {"[G]'Twas gr[G7]ace that ta[C]ught my he[G]art to fear,",
            "And g[Em]race my [D]fears reliev[G]ed;",
            "Ho[G]w precious did that[G7] grace [C]appear", "The [G]hour I firs[D]t beli[G]eved."}},
          {"V3",
           Verse,
           {"[G]Through [G7]many danger[C]s, toils a[G]nd snares", "I hav[Em]e alread[D]y come;[G]",
            "'T[G]is grace hath broug[G7]ht me s[C]afe thus far,",
            "And [G]grace will [D]lead m[G]e home."}}}},
        {"holy_holy_holy",
         "Holy, Holy, Holy",
         "D",
         {{"V1",
           Verse,
           {"[D]Holy, holy, [Bm]holy! [G]Lord God Al[D]mighty!",
            "[D]Early in the [A]morning our [E]song shall rise to [A]thee;",
            "[D]Holy, holy, [Bm]holy! [G]Merciful and [D]mighty![A]     [D]",
            "[G]God in three [D]Persons, [A]blessed Trinity![D]"}},
          {"V2",
           Verse,
           {"[D]Holy, holy, [Bm]holy! All the [G]saints a[D]dore Thee,",
            "Casting down their [A]golden crowns a[E]round the glassy [A]sea;"}}}},
        {"joy_to_the_world",
         "Joy to the World",
         "D",
         {{"V1",
           Verse,
           {"[D]Joy to the [A]world!", "The [G]Lord is [A]come;",
            "Let [D]earth receive her King; [D]Let every [G]heart prepare Him [A]room,",
            "And heaven and nature sing,", "And [D]heaven, and [A]heaven,", "[D]and nature sing."}},
          {"V2", Verse, {"[D]Joy to the earth! The [G]Savior [A]reigns;"}}}},
        {"stille_nacht",
         "Stille Nacht, heilige Nacht",
         "C",
         {{"V1",
           Verse,
           {"[C]Stille Nacht, heilige Nacht!", "[G7]Alles schläft; [C]einsam wacht",
            "[F]Nur das traute, hoch[C]heilige Paar.", "[F]Holder Knabe im [C]lockigen Haar,",
            "[G7]Schlaf in himmlischer [C]Ruh!"}},
          {"V2",
           Verse,
           {"[C]Stille Nacht, heilige Nacht!", "[G7]Hirten erst [C]kundgemacht",
            "[F]Durch der Engel Halle[C]luja,", "[G7]Tönt es [C]laut von fern und nah:"}}}},
        {"il_est_ne",
         "Il est né, le divin Enfant",
         "F",
         {{"C1",
           Chorus,
           {"Il est [F]né, le di[C7]vin En[F]fant,",
            "[Bbmaj7]Jou[C7]ez, hautbois, résonnez, musettes;",
            "Il est [F]né, le di[C7]vin En[F]fant,", "[Bb]Chan[F]tons [C7]tous son [F]avènement!"}},
          {"V1",
           Verse,
           {"[F]Depuis plus de [C]quatre mille ans",
            "[F]Nous le promet[C]taient les pro[F]phètes;"}}}},
        {"kol_slaven",
         "Коль славен наш Господь в Сионе",
         "C",
         {{"V1",
           Verse,
           {"[C]Коль славен [G]наш Господь в Си[C]оне,", "Не [F]может изъ[C]яснить [G]язык.",
            "[C]Велик Он в [F]небесах на [C]троне,", "В [G]былинках на [C]земле [G7]велик."}}}},
        {"rock_of_ages",
         "Rock of Ages",
         "C",
         {{"V1",
           Verse,
           {"[C]Rock of Ages, [G]cleft for [C]me,", "[C]           [F]        [G]      [C]",
            "Let me hide myself in Thee;", "[G]Let the [C]water and the blood,",
            "From Thy wounded side which flowed,", "Be of [F]sin the [C]double [G]cure;"}}}},
        {"a_mighty_fortress",
         "A Mighty Fortress Is Our God",
         "C",
         {{"I1", Intro, {"[C]    [G]    [C]"}},
          {"V1", Verse, {"A [C]mighty fortress [G]is our [C]God,"}},
          {"P1", PreChorus, {}},
          {"T1", Tag, {"Our [F]helper He a[C]mid the flood"}},
          {"B1", Bridge, {"Of [Am]mortal ills pre[E]vailing."}},
          {"M1", Misc, {"[F]   [G]   [C]"}},
          {"E1", Ending, {"[C]      [G]    [C]"}}}},
        {"jesus_christ_is_risen",
         "Jesus Christ Is Risen Today",
         "C",
         {{"V1",
           Verse,
           {"[C]Jesus Christ is [G]risen to[C]day,", "[F]Alle[G]lu[C]ia!",
            "Our [C]triumphant [F]holy [C]day,", "A[F]llel[C]uia!"}},
          {"V2",
           Verse,
           {"[C]Hymns of praise [G]then let[C] us sing,", "[F]Alle[G]lu[C]ia!",
            "Unto[C] Christ, ou[F]r hea[C]venly King,", "A[F]llel[C]uia!"}}}},
        {"o_come_all_ye_faithful",
         "O Come, All Ye Faithful",
         "G",
         {{"V1",
           Verse,
           {"O [G]come, [D/F#]all ye [G]faith[D]ful,", "[C]Joyful and [G]triumphant,"}},
          {"C1",
           Chorus,
           {"O [G]come, let us a[D]dore Him, (N.C.)",
            "[G]O come, let [D/F#]us a[Em]dore [D/F#]Him,[G]"}},
          {"V2", Verse, {"[G]God of [D]God,", "[G]Light of [D]Light,"}}}},
        {"abide_with_me",
         "Abide with Me",
         "Eb",
         {{"V1",
           Verse,
           {"[Eb]Abide with [Bb]me; fast [Eb]falls the eventide;",
            "The [Eb]darkness [G#]deepens; [Eb]Lord, with [Bb]me a[Eb]bide."}},
          {"V2", Verse, {"[Eb]Swift to its [Bb]close ebbs [Eb]out life's little day;"}}}},
    };
    return songs;
}

TEST(OpenSongFileTest, EverySongReadsSectionBySectionAndChordByChord) {
    for (const ExpectedSong& expected : openSongFiles()) {
        SCOPED_TRACE(expected.file);
        Song song;
        ASSERT_EQ(song.loadFromFile(test::testDataPath(String("opensong/") + expected.file)),
                  StatusSuccess);
        EXPECT_EQ(song.loadedFileType(), SongFileType::OpenSong);
        EXPECT_EQ(song.info().title(), expected.title);
        EXPECT_EQ(song.info().key(), expected.key);
        std::vector<ExpectedSection> actual;
        for (int i = 0; i < song.getSectionCount(); ++i) {
            const SongSection& section = *song.getSection(i);
            actual.push_back({section.id(), section.type(), linesOf(section)});
            EXPECT_EQ(section.hasChords(), section.getLineCount() > 0) << section.id();
        }
        expectSections(actual, expected.sections);
    }
}

TEST(OpenSongFileTest, SongElementsBecomeInformationAndThePresentationIsIgnored) {
    Song song;
    ASSERT_EQ(song.loadFromFile(test::testDataPath("opensong/amazing_grace")), StatusSuccess);
    const SongInfo& info = song.info();
    EXPECT_EQ(info.author(), "John Newton");
    EXPECT_EQ(info.copyright(), "Public domain");
    EXPECT_EQ(info.getAttribute("capo"), "2");
    EXPECT_EQ(info.getAttribute("tempo"), "Slow");
    EXPECT_EQ(info.getAttribute("timesignature"), "3/4");
    EXPECT_EQ(info.getAttribute("theme"), "Grace");
    std::vector<String> names;
    for (const SongInfo::Attribute& attribute : info.attributes())
        names.push_back(attribute.name);
    EXPECT_EQ(names, (std::vector<String>{"title", "author", "copyright", "hymn_number", "capo",
                                          "tempo", "timesignature", "key", "theme"}));
    ASSERT_EQ(info.getIndexCount(), 2);
    EXPECT_EQ(info.getIndex(0), "Amazing grace, how sweet the sound");
    EXPECT_EQ(info.getIndex(1), "New Britain");
    EXPECT_EQ(info.getCategoryCount(), 0);
    // The file's presentation is "V3 V2 V1"; the running order stays automatic.
    EXPECT_EQ(info.sequence(), "");
    EXPECT_EQ(song.getSequence(), "V1,V2,V3");

    ASSERT_EQ(song.loadFromFile(test::testDataPath("opensong/o_come_all_ye_faithful")),
              StatusSuccess);
    EXPECT_EQ(song.getSequence(), "V1,C1,V2,C1");

    // Element names in any case, UTF-16, an "aka" list with an empty piece.
    ASSERT_EQ(song.loadFromFile(test::testDataPath("opensong/abide_with_me")), StatusSuccess);
    EXPECT_EQ(song.info().getIndexCount(), 2);
    EXPECT_EQ(song.info().getAttribute("key_line"), "");
    EXPECT_EQ(song.info().getAttribute("user2"), "");
}

TEST(OpenSongFileTest, ASavedOpenSongSongReadsBackWithItsChords) {
    test::TempFolder folder;
    Song song;
    ASSERT_EQ(song.loadFromFile(test::testDataPath("opensong/stille_nacht")), StatusSuccess);
    const String path = folder.file("stille_nacht.song");
    ASSERT_EQ(song.saveToFile(path, SongFileType::Song), StatusSuccess);
    Song back;
    ASSERT_EQ(back.loadFromFile(path), StatusSuccess);
    EXPECT_EQ(back.loadedFileType(), SongFileType::Song);
    EXPECT_EQ(back.info(), song.info());
    ASSERT_EQ(back.getSectionCount(), song.getSectionCount());
    for (int i = 0; i < song.getSectionCount(); ++i)
        EXPECT_EQ(linesOf(*back.getSection(i)), linesOf(*song.getSection(i)));
}

}  // namespace
}  // namespace melodex
