#include "melodex/song/song.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <random>

#include "melodex/foundation/text_encoding.h"
#include "melodex/foundation/xml.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::TempFolder;

const LocalTime Stamp(2024, 1, 31, 17, 45, 2);

// The line's text with each chord written in brackets before the character
// it stands over: "[G]Amazing [C]grace".
String inlined(const SongLine& line) {
    String text = line.text();
    for (int i = line.getChordCount() - 1; i >= 0; --i) {
        const SongChord& chord = *line.getChord(i);
        insertAtCodePoint(text, std::size_t(chord.offset()), "[" + chord.toString() + "]");
    }
    return text;
}

SongLine* lineOf(std::string_view text, std::initializer_list<std::pair<const char*, int>> chords) {
    auto* line = new SongLine;
    line->setText(text);
    for (const auto& [symbol, offset] : chords)
        line->addChord(SongChord(symbol, offset));
    return line;
}

// A song with a fixed id and time, the information of every kind, a verse
// with chords in every position and a chorus.
Song sampleSong() {
    Song song;
    song.uuid("0f8b2d5e-3c1a-4e6f-9a7b-2d4c6e8f0a1b");
    song.updated(Stamp);
    song.info().setTitle("Praise & Thanks");
    song.info().setAuthor("Anon.");
    song.info().setKey("G");
    song.info().addIndex("Praise him <all>");
    song.info().addCategory("Thanksgiving");
    SongReference reference("bible", "Psalm 150");
    reference.setAttribute("version", "KJV");
    song.info().addReference(reference);

    auto* verse = new SongSection(SectionType::Verse);
    verse->addLine(lineOf("Praise Him", {{"G", 0}, {"D", 7}, {"Em", 10}}));
    verse->addLine(lineOf("", {{"C", 0}}));
    verse->addLine(lineOf("all creatures here below", {}));
    song.addSection(verse);
    auto* chorus = new SongSection(SectionType::Chorus);
    chorus->addLine(lineOf("Alleluia", {{"C", 2}}));
    song.addSection(chorus);
    song.generateSectionIDs();
    return song;
}

TEST(SongXmlTest, WritesTheNativeLayoutExactly) {
    Song song = sampleSong();
    EXPECT_EQ(song.saveToText(SongFileType::Song, true),
              "<?xml version=\"1.0\"?>\n"
              "<song xmlns=\"brackwell/song\">\n"
              "<uuid>0f8b2d5e-3c1a-4e6f-9a7b-2d4c6e8f0a1b</uuid><updated>20240131174502</updated>\n"
              "<info>\n"
              "\t<key>G</key>\n"
              "\t<title>Praise &amp; Thanks</title>\n"
              "\t<author>Anon.</author>\n"
              "\t<index>Praise him &lt;all&gt;</index>\n"
              "\t<category>Thanksgiving</category>\n"
              "\t<reference type=\"bible\" version=\"KJV\">Psalm 150</reference>\n"
              "</info>\n"
              "\n<block type=\"Verse\" id=\"V1\">\n"
              "<line><chord>G</chord>Praise <chord>D</chord>Him<chord>Em</chord></line>\n"
              "<line><chord>C</chord></line>\n"
              "<line>all creatures here below</line>\n"
              "</block>\n"
              "\n<block type=\"Chorus\" id=\"C1\">\n"
              "<line>Al<chord>C</chord>leluia</line>\n"
              "</block>\n"
              "</song>\n");
    EXPECT_EQ(song.saveToText(SongFileType::Song, false).substr(0, 30),
              "<song xmlns=\"brackwell/song\">\n");
}

TEST(SongXmlTest, WritesSectionAttributesOnlyWhenTheirConditionHolds) {
    struct Case {
        void (*setUp)(SongSection&);
        const char* attributes;
    };
    const Case cases[] = {
        {[](SongSection&) {}, ""},
        {[](SongSection& s) { s.repeat(1); }, ""},
        // The singers attribute carries the repeat count, not the singer word.
        {[](SongSection& s) { s.setSingers(SingerType::Women); }, " singers=\"1\""},
        {[](SongSection& s) { s.setSingers(SingerType::Women), s.repeat(3); },
         " singers=\"3\" repeat=\"3\""},
        {[](SongSection& s) { s.indent(2); }, " ident=\"2\""},
        {[](SongSection& s) { s.target(Target::Leader | Target::Audience); },
         " target=\"Leader,Audience\""},
        {[](SongSection& s) { s.target(Target::Everyone); }, " target=\"All\""},
        {[](SongSection& s) { s.spaceBefore(1); }, " spacebefore=\"small\""},
        {[](SongSection& s) { s.spaceBefore(2); }, " spacebefore=\"large\""},
        {[](SongSection& s) { s.spaceBefore(5); }, " spacebefore=\"large\""},
        {[](SongSection& s) { s.keepWithPrevious(true); }, " keepwithprevious=\"1\""},
        {[](SongSection& s) {
             s.keepWithPrevious(true), s.spaceBefore(1), s.target(2), s.indent(1), s.repeat(2);
             s.setSingers(SingerType::Men);
         },
         " singers=\"2\" repeat=\"2\" ident=\"1\" target=\"Band\" spacebefore=\"small\""
         " keepwithprevious=\"1\""},
    };
    for (const Case& c : cases) {
        SongSection section(SectionType::Bridge);
        section.id("B1");
        c.setUp(section);
        EXPECT_EQ(section.writeToText(SongFileType::Song),
                  String("\n<block type=\"Bridge\" id=\"B1\"") + c.attributes + ">\n</block>\n");
    }
    SongSection odd(42);
    odd.id("say \"x\"\\");
    EXPECT_EQ(odd.writeToText(SongFileType::Song),
              "\n<block type=\"Verse\" id=\"say &quot;x&quot;\\\">\n</block>\n");
}

TEST(SongXmlTest, WritesLineAttributesWithABlankBeforeEachName) {
    SongLine line;
    line.setText("Hosanna");
    line.singers(SingerType::Women);
    line.indent(1);
    line.repeat(2);
    line.setAttribute("Singers", "ignored: the field is written instead");
    line.setAttribute("chordsize", Value(12));
    line.setAttribute("note", "say \"loud\" & C:\\x");
    line.setAttribute("REPEAT", "ignored too");
    const String written = line.writeToText(SongFileType::Song);
    EXPECT_EQ(written,
              "<line singers=\"Women\" indent=\"1\" repeat=\"2\" chordsize=\"12\""
              " note=\"say &quot;loud&quot; &amp; C:\\x\">Hosanna</line>\n");
    // ... and an awkward value reads back as it was, not doubled or cut.
    Song song;
    ASSERT_EQ(song.loadFromXmlString("<song><block>" + written + "</block></song>"), 0u);
    EXPECT_EQ(song.getSection(0)->getLine(0)->getStringAttribute("note", ""),
              "say \"loud\" & C:\\x");

    // Chord texts are escaped and offsets count characters, not bytes.
    SongLine accented;
    accented.setText("Jésus");
    accented.addChord(SongChord("C&", 3));
    EXPECT_EQ(accented.writeToText(SongFileType::Song),
              "<line>Jés<chord>C&amp;</chord>us</line>\n");

    // A chord past the end follows the last character, in order.
    SongLine past;
    past.setText("Amen");
    past.addChord(SongChord("F", 9));
    past.addChord(SongChord("C", 4));
    EXPECT_EQ(past.writeToText(SongFileType::Song),
              "<line>Amen<chord>C</chord><chord>F</chord></line>\n");
    EXPECT_EQ(past.writeToText(SongFileType::Sng), "Amen\n");
}

TEST(SongXmlTest, WritesTheSngLayoutWithoutChordsIndexesOrCategories) {
    Song song = sampleSong();
    song.getSection(1)->repeat(2);
    EXPECT_EQ(song.saveToText(SongFileType::Sng, true),
              "<?xml version=\"1.0\" encoding=\"UNICODE\"?>\n"
              "<song xmlns=\"creativelifestyles/song\">\n"
              "<uuid>0f8b2d5e-3c1a-4e6f-9a7b-2d4c6e8f0a1b</uuid><updated>20240131174502</updated>\n"
              "<attributes>\n"
              "\t<key>G</key>\n"
              "\t<title>Praise &amp; Thanks</title>\n"
              "\t<author>Anon.</author>\n"
              "\t<reference type=\"bible\" version=\"KJV\">Psalm 150</reference>\n"
              "</attributes>\n"
              "<verses>\n"
              "\n<verse type=\"Verse\" id=\"V1\">\n"
              "Praise Him\n"
              "\n"
              "all creatures here below\n"
              "</verse>\n"
              "\n<verse type=\"Chorus\" id=\"C1\" repeat=\"2\">\n"
              "Alleluia\n"
              "</verse>\n"
              "</verses>\n"
              "</song>\n");
}

TEST(SongXmlTest, TypesNotMeantForWritingGiveTheBareSkeleton) {
    Song song = sampleSong();
    const String expected =
        "<?xml version=\"1.0\"?>\n"
        "<song xmlns=\"\">\n"
        "<uuid>0f8b2d5e-3c1a-4e6f-9a7b-2d4c6e8f0a1b</uuid><updated>20240131174502</updated>"
        "\n< type=\"Verse\" id=\"V1\">\n"
        "Praise Him\n"
        "\n"
        "all creatures here below\n"
        "\n< type=\"Chorus\" id=\"C1\">\n"
        "Alleluia\n"
        "</song>\n";
    EXPECT_EQ(song.saveToText(SongFileType::OpenSong, true), expected);
    EXPECT_EQ(song.saveToText(99, true), expected);
}

TEST(SongXmlTest, SavingGivesASongWithoutIdANewOne) {
    Song song;
    EXPECT_FALSE(song.hasUUID());
    const String text = song.saveToText(SongFileType::Text, false);
    ASSERT_TRUE(song.hasUUID());
    EXPECT_EQ(song.uuid().size(), 36u);
    EXPECT_EQ(text.substr(0, 6 + 36 + 7), "<uuid>" + song.uuid() + "</uuid>");
    const String id = song.uuid();
    (void)song.saveToText(SongFileType::Song, true);
    EXPECT_EQ(song.uuid(), id);
}

TEST(SongXmlTest, NativeFileRoundTripKeepsAllButSectionSingersAndIndent) {
    TempFolder folder;
    Song song = sampleSong();
    SongSection& verse = *song.getSection(0);
    verse.setSingers(SingerType::Men);
    verse.indent(2);
    verse.repeat(3);
    verse.target(Target::Band);
    verse.spaceBefore(2);
    SongSection& chorus = *song.getSection(1);
    chorus.keepWithPrevious(true);
    SongLine& line = *verse.getLine(0);
    line.singers(SingerType::Leader);
    line.indent(1);
    line.repeat(2);
    line.setAttribute("chordsize", "12");
    const String path = folder.file("praise.song");
    ASSERT_EQ(song.saveToFile(path, SongFileType::Song), StatusSuccess);
    EXPECT_EQ(folder.read("praise.song"), song.saveToText(SongFileType::Song, true));

    Song back;
    back.setLocalSequence("C1");
    ASSERT_EQ(back.loadFromFile(path), StatusSuccess);
    EXPECT_EQ(back.filename(), path);
    EXPECT_EQ(back.loadedFileType(), SongFileType::Song);
    EXPECT_EQ(back.uuid(), song.uuid());
    EXPECT_EQ(back.updated(), Stamp);
    EXPECT_EQ(back.info(), song.info());
    EXPECT_EQ(back.localSequence(), "C1");
    ASSERT_EQ(back.getSectionCount(), 2);
    const SongSection& verseBack = *back.getSection(0);
    EXPECT_EQ(verseBack.id(), "V1");
    EXPECT_EQ(verseBack.type(), SectionType::Verse);
    EXPECT_EQ(verseBack.repeat(), 3);
    EXPECT_EQ(verseBack.target(), Target::Band);
    EXPECT_EQ(verseBack.spaceBefore(), 2);
    EXPECT_TRUE(verseBack.hasChords());
    EXPECT_EQ(verseBack.singers(), 0);  // written as the repeat count, read as a word
    EXPECT_EQ(verseBack.indent(), 0);   // written as "ident"
    EXPECT_TRUE(back.getSection(1)->keepWithPrevious());
    EXPECT_EQ(back.getSection(1)->type(), SectionType::Chorus);

    ASSERT_EQ(verseBack.getLineCount(), 3);
    const SongLine& lineBack = *verseBack.getLine(0);
    EXPECT_EQ(inlined(lineBack), "[G]Praise [D]Him[Em]");
    EXPECT_EQ(lineBack.singers(), SingerType::Leader);
    EXPECT_EQ(lineBack.indent(), 1);
    EXPECT_EQ(lineBack.repeat(), 2);
    EXPECT_EQ(lineBack.getStringAttribute("chordsize", ""), "12");
    EXPECT_EQ(lineBack.attributes().size(), 1u);
    EXPECT_EQ(inlined(*verseBack.getLine(1)), "[C]");
    EXPECT_EQ(inlined(*back.getSection(1)->getLine(0)), "Al[C]leluia");

    // Saved again, the file differs only where the losses are.
    String again = back.saveToText(SongFileType::Song, true);
    String expected = song.saveToText(SongFileType::Song, true);
    expected = replaceAll(expected, " singers=\"3\"", "");
    expected = replaceAll(expected, " ident=\"2\"", "");
    EXPECT_EQ(again, expected);
}

TEST(SongXmlTest, SngFileIsUtf16WithCrLfAndLosesChordsAndSectionTypes) {
    TempFolder folder;
    Song song = sampleSong();
    song.info().setTitle("Grâce");
    const String path = folder.file("praise.sng");
    ASSERT_EQ(song.saveToFile(path, SongFileType::Sng), StatusSuccess);
    const String bytes = folder.read("praise.sng");
    const String expected =
        encodeUtf16LE(replaceAll(song.saveToText(SongFileType::Sng, true), "\n", "\r\n"), true);
    EXPECT_EQ(bytes, expected);

    Song back;
    ASSERT_EQ(back.loadFromFile(path), StatusSuccess);
    EXPECT_EQ(back.loadedFileType(), SongFileType::Sng);
    EXPECT_EQ(back.info().title(), "Grâce");
    EXPECT_EQ(back.info().getIndexCount(), 0);
    EXPECT_EQ(back.uuid(), song.uuid());
    ASSERT_EQ(back.getSectionCount(), 2);
    // The chorus comes back as a verse: only an id starting with "chorus" says chorus.
    EXPECT_EQ(back.getSection(1)->type(), SectionType::Verse);
    EXPECT_EQ(back.getSection(1)->id(), "V2");
    ASSERT_EQ(back.getSection(0)->getLineCount(), 2);  // the empty line is gone
    EXPECT_EQ(back.getSection(0)->getLine(0)->text(), "Praise Him");
    EXPECT_EQ(back.getSection(0)->getLine(1)->text(), "all creatures here below");
    EXPECT_FALSE(back.getSection(0)->getLine(0)->hasChords());
    EXPECT_FALSE(back.getSection(0)->hasChords());
}

TEST(SongXmlTest, SngVersesTakeTheirTypeFromTheIdPrefix) {
    Song song;
    ASSERT_EQ(song.loadFromText("<song><verses>"
                                "<verse id='Chorus 1' type='Verse'>a\r\nb\n\n  \nc</verse>"
                                "<verse id='bridge'>d</verse>"
                                "<VERSE ID='CODA'>e</VERSE>"
                                "<verse id='tag'>f</verse>"
                                "<verse>g</verse>"
                                "<other>h</other>"
                                "</verses></song>"),
              StatusSuccess);
    EXPECT_EQ(song.loadedFileType(), SongFileType::Sng);
    ASSERT_EQ(song.getSectionCount(), 5);
    EXPECT_EQ(song.toString(), "Song \"\" key : C1 B1 E1 V1 V2");
    const SongSection& first = *song.getSection(0);
    ASSERT_EQ(first.getLineCount(), 3);
    EXPECT_EQ(first.getLine(0)->text(), "a");
    EXPECT_EQ(first.getLine(1)->text(), "b");
    EXPECT_EQ(first.getLine(2)->text(), "c");
}

TEST(SongXmlTest, ReaderTakesNamesInAnyCaseAndSkipsWhatItDoesNotKnow) {
    Song song;
    ASSERT_EQ(song.loadFromText(R"(<SONG xmlns="brackwell/song">
<UUID>abc</UUID><Updated>not a time</Updated>
<title>not information: outside the info element</title>
<INFO><Title>Grace</Title><INDEX></INDEX><Index>first line</Index><theme>Joy</theme>
<Reference Type="Bible" Version="KJV">John 3:16</Reference><reference>Note</reference></INFO>
<Block TYPE="chorus" Singers="LADIES" Target="Leader,All,Band" REPEAT="x" Indent="2 deep"
       SpaceBefore="LARGE" Continue="7" id="ignored" colour="red">
  <LINE Indent="abc" SINGERS="men" Repeat="3" Colour="red">Shout <Chord>Am7</Chord>for <b>never <chord>X</chord></b>joy<CHORD> G/B </CHORD></LINE>
  <note>not a line</note>
</Block>
<block type="Refrain" spacebefore="tiny" keepwithprevious="yes"><line/></block>
<blocks><block><line>hidden</line></block></blocks>
</SONG>)"),
              StatusSuccess);
    EXPECT_EQ(song.uuid(), "abc");
    EXPECT_EQ(song.info().title(), "Grace");
    ASSERT_EQ(song.info().getIndexCount(), 1);
    EXPECT_EQ(song.info().getIndex(0), "first line");
    ASSERT_EQ(song.info().getCategoryCount(), 1);
    EXPECT_EQ(song.info().getCategory(0), "Joy");
    ASSERT_EQ(song.info().getReferenceCount(), 2);
    EXPECT_EQ(song.info().getReference(0).type(), "Bible");
    EXPECT_EQ(song.info().getReference(0).getAttribute("version"), "KJV");
    EXPECT_EQ(song.info().getReference(0).value(), "John 3:16");
    EXPECT_EQ(song.info().getReference(1).type(), "other");

    ASSERT_EQ(song.getSectionCount(), 2);
    const SongSection& chorus = *song.getSection(0);
    EXPECT_EQ(chorus.type(), SectionType::Chorus);
    EXPECT_EQ(chorus.id(), "C1");
    EXPECT_EQ(chorus.singers(), SingerType::Women);
    EXPECT_EQ(chorus.target(), Target::All);
    EXPECT_EQ(chorus.repeat(), 1);
    EXPECT_EQ(chorus.indent(), 2);
    EXPECT_EQ(chorus.spaceBefore(), 2);
    EXPECT_TRUE(chorus.keepWithPrevious());
    ASSERT_EQ(chorus.getLineCount(), 1);
    const SongLine& line = *chorus.getLine(0);
    EXPECT_EQ(inlined(line), "Shout [Am7]for joy[G/B]");
    EXPECT_EQ(line.indent(), 0);
    EXPECT_EQ(line.singers(), SingerType::Men);
    EXPECT_EQ(line.repeat(), 3);
    EXPECT_EQ(line.getStringAttribute("colour", ""), "red");

    const SongSection& refrain = *song.getSection(1);
    EXPECT_EQ(refrain.type(), SectionType::Verse);
    EXPECT_EQ(refrain.spaceBefore(), 0);
    EXPECT_FALSE(refrain.keepWithPrevious());
    ASSERT_EQ(refrain.getLineCount(), 1);
    EXPECT_EQ(refrain.getLine(0)->text(), "");
}

TEST(SongXmlTest, PlainTextFallsBackFromXmlAndOtherDocumentsLoadEmpty) {
    Song written;
    written.updated(Stamp);
    auto* verse = new SongSection;
    verse->addLine(lineOf("Amazing grace", {{"G", 0}}));
    written.addSection(verse);
    const String text = written.saveToText(SongFileType::Text, true);

    // The text starts like XML but is not one document: the XML step refuses it.
    XmlFile xml;
    EXPECT_NE(xml.loadFromString(text), StatusSuccess);
    Song song;
    EXPECT_EQ(song.loadFromXmlString(text), StatusXmlMalformed);
    EXPECT_EQ(song.getSectionCount(), 0);
    ASSERT_EQ(song.loadFromText(text), StatusSuccess);
    EXPECT_EQ(song.loadedFileType(), SongFileType::Text);
    ASSERT_EQ(song.getSectionCount(), 1);
    EXPECT_EQ(song.getSection(0)->getLine(0)->text(),
              "<uuid>" + written.uuid() + "</uuid><updated>20240131174502</updated>Amazing grace");

    // Well-formed documents without a song load as an empty song.
    for (const char* other : {"<songset><song>x</song></songset>", "<b>bold</b>"}) {
        song.info().setTitle("stale");
        ASSERT_EQ(song.loadFromText(other), StatusSuccess) << other;
        EXPECT_EQ(song.getSectionCount(), 0) << other;
        EXPECT_EQ(song.info().title(), "") << other;
        EXPECT_EQ(song.loadedFileType(), 0) << other;
    }
    EXPECT_EQ(song.loadFromXmlNode(XmlNode()), StatusFailed);
}

TEST(SongXmlTest, ReadsTheEncodingsOfFilesInTheWild) {
    const String utf8 =
        "<?xml version=\"1.0\"?>\n<song><info><title>Crèche Noël</title></info>"
        "<block><line>Jé<chord>D</chord>sus</line></block></song>\n";
    const String cp1252 = replaceAll(replaceAll(utf8, "è", "\xE8"), "ë", "\xEB");
    const String cp1252Body = replaceAll(cp1252, "é", "\xE9");
    String utf16be;
    for (std::size_t i = 0; i + 1 < encodeUtf16LE(utf8, true).size(); i += 2) {
        const String le = encodeUtf16LE(utf8, true);
        utf16be += le[i + 1];
        utf16be += le[i];
    }
    const std::pair<const char*, String> files[] = {
        {"utf8", utf8},
        {"utf8-bom", "\xEF\xBB\xBF" + utf8},
        {"utf16le-bom", encodeUtf16LE(utf8, true)},
        {"utf16le", encodeUtf16LE(utf8, false)},
        {"utf16be-bom", utf16be},
        {"windows-1252", cp1252Body},
    };
    TempFolder folder;
    for (const auto& [name, bytes] : files) {
        Song song;
        ASSERT_EQ(song.loadFromFile(folder.write(name, bytes)), StatusSuccess) << name;
        EXPECT_EQ(song.loadedFileType(), SongFileType::Song) << name;
        EXPECT_EQ(song.info().title(), "Crèche Noël") << name;
        ASSERT_EQ(song.getSectionCount(), 1) << name;
        EXPECT_EQ(inlined(*song.getSection(0)->getLine(0)), "Jé[D]sus") << name;

        Song fromMemory;
        ASSERT_EQ(fromMemory.loadFromText(bytes), StatusSuccess) << name;
        EXPECT_EQ(fromMemory.info().title(), "Crèche Noël") << name;
    }
}

TEST(SongXmlTest, SetFilesLoadTheirFirstSong) {
    Song song;
    ASSERT_EQ(song.loadFromText("<set name='Sunday'><title>not the song's</title>"
                                "<song><info><title>First</title></info><block><line>a</line>"
                                "</block></song><song><info><title>Second</title></info></song>"
                                "</set>"),
              StatusSuccess);
    EXPECT_EQ(song.info().title(), "First");
    EXPECT_EQ(song.loadedFileType(), SongFileType::Song);
    ASSERT_EQ(song.getSectionCount(), 1);

    ASSERT_EQ(song.loadFromText("<SET><songs><entry/></songs><items><Song><lyrics>[C]\n Hi"
                                "</lyrics></Song></items></SET>"),
              StatusSuccess);
    EXPECT_EQ(song.loadedFileType(), SongFileType::OpenSong);
    EXPECT_EQ(song.toString(), "Song \"\" key : C1");

    ASSERT_EQ(song.loadFromText("<set><empty/></set>"), StatusSuccess);
    EXPECT_EQ(song.getSectionCount(), 0);
    EXPECT_EQ(song.loadedFileType(), 0);
}

TEST(SongXmlTest, SongSmartDataFillsTheSongAndReadsItsLyricsAsPlainText) {
    Song song;
    ASSERT_EQ(song.loadFromText("<song><SongsID>7c9e6679-7425-40de-944b-e07fc1f90ae7</SongsID>"
                                "<title>Abide with Me</title><artist>Henry F. Lyte</artist>"
                                "<modifieddate>20230514102200</modifieddate>"
                                "<copyright>Public domain</copyright><uuid>not read</uuid>"
                                "<songdata>Abide with me\r\nfast falls the eventide\r\n\r\n"
                                "\tThe darkness deepens\r\n\t\tLord with me abide</songdata>"
                                "</song>"),
              StatusSuccess);
    EXPECT_EQ(song.loadedFileType(), SongFileType::SongSmart);
    EXPECT_EQ(song.uuid(), "7c9e6679-7425-40de-944b-e07fc1f90ae7");
    EXPECT_EQ(song.info().title(), "Abide with Me");
    EXPECT_EQ(song.info().author(), "Henry F. Lyte");
    EXPECT_EQ(song.info().copyright(), "Public domain");
    EXPECT_EQ(song.info().getAttribute("uuid"), "not read");
    EXPECT_EQ(song.updated(), LocalTime(2023, 5, 14, 10, 22, 0));
    ASSERT_EQ(song.getSectionCount(), 2);
    EXPECT_EQ(song.toString(), "Song \"Abide with Me\" key : V1 C1");
    ASSERT_EQ(song.getSection(1)->getLineCount(), 2);
    EXPECT_EQ(song.getSection(1)->getLine(1)->text(), "Lord with me abide");

    const std::pair<const char*, LocalTime> dates[] = {
        {"2023-05-14", LocalTime(2023, 5, 14)},
        {"2023-05-14T10:22:07.5+02:00", LocalTime(2023, 5, 14, 10, 22, 7)},
        {" 2023-05-14 10:22 ", LocalTime(2023, 5, 14, 10, 22, 0)},
    };
    for (const auto& [text, expected] : dates) {
        ASSERT_EQ(song.loadFromText(String("<song><songdata/><modifieddate>") + text +
                                    "</modifieddate></song>"),
                  StatusSuccess);
        EXPECT_EQ(song.updated(), expected) << text;
    }
    for (const char* bad : {"2023-02-30", "yesterday", "2023-5-14"}) {
        ASSERT_EQ(song.loadFromText(String("<song><songdata/><modifieddate>") + bad +
                                    "</modifieddate></song>"),
                  StatusSuccess);
        EXPECT_NE(song.updated().year(), 2023) << bad;
    }
}

// Blank text between two chords holds their distance; a reader that drops
// text nodes of blanks moves the second chord onto the first.
TEST(SongXmlTest, BlanksBetweenChordsSurviveARoundTrip) {
    Song song;
    auto* section = new SongSection;
    section->addLine(lineOf("Oh  Lord", {{"G", 2}, {"D", 3}}));
    section->addLine(lineOf("    ", {{"C", 0}, {"F", 4}}));
    song.addSection(section);
    Song back;
    ASSERT_EQ(back.loadFromText(song.saveToText(SongFileType::Song, true)), StatusSuccess);
    ASSERT_EQ(back.getSectionCount(), 1);
    EXPECT_EQ(inlined(*back.getSection(0)->getLine(0)), "Oh[G] [D] Lord");
    EXPECT_EQ(inlined(*back.getSection(0)->getLine(1)), "[C]    [F]");
}

TEST(SongXmlTest, BadInputGivesAStatusOrPlainTextNeverACrash) {
    TempFolder folder;
    Song song;

    EXPECT_EQ(song.loadFromFile(folder.file("missing.song")), Status(ENOENT));
    EXPECT_EQ(song.filename(), folder.file("missing.song"));
    EXPECT_EQ(song.loadFromFile(folder.path()), Status(EISDIR));

    ASSERT_EQ(song.loadFromFile(folder.write("empty.song", "")), StatusSuccess);
    EXPECT_EQ(song.getSectionCount(), 0);
    EXPECT_EQ(song.loadedFileType(), SongFileType::Text);

    // Every cut of a saved song loads, as XML or as plain text.
    const String whole = sampleSong().saveToText(SongFileType::Song, true);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        ASSERT_EQ(song.loadFromText(whole.substr(0, length)), StatusSuccess) << length;
    }
    ASSERT_EQ(song.loadFromText("<song><block><line>a</block></song>"), StatusSuccess);
    EXPECT_EQ(song.loadedFileType(), SongFileType::Text);

    std::mt19937 random(20240131);
    String garbage(64 * 1024, '\0');
    for (char& byte : garbage)
        byte = char(random() & 0xFF);
    ASSERT_EQ(song.loadFromFile(folder.write("garbage.song", garbage)), StatusSuccess);
    EXPECT_EQ(song.loadedFileType(), SongFileType::Text);

    const String longLine(10 * 1024 * 1024, 'a');
    ASSERT_EQ(song.loadFromFile(folder.write("long.txt", longLine)), StatusSuccess);
    ASSERT_EQ(song.getSectionCount(), 1);
    EXPECT_EQ(song.getSection(0)->getLine(0)->text().size(), longLine.size());
    ASSERT_EQ(song.loadFromText("<song><block><line>" + longLine + "<chord>G</chord></line>" +
                                "</block></song>"),
              StatusSuccess);
    SongChord chord;
    EXPECT_TRUE(song.getSection(0)->getLine(0)->getChordAtOffset(int(longLine.size()), chord));

    const int depth = 100000;
    String nested;
    for (int i = 0; i < depth; ++i)
        nested += "<a>";
    for (int i = 0; i < depth; ++i)
        nested += "</a>";
    ASSERT_EQ(
        song.loadFromText("<song><block><line>x" + nested + "</line></block>" + nested + "</song>"),
        StatusSuccess);
    EXPECT_EQ(song.getSection(0)->getLine(0)->text(), "x");
    ASSERT_EQ(song.loadFromText("<set>" + nested + "</set>"), StatusSuccess);
    EXPECT_EQ(song.getSectionCount(), 0);
}

TEST(SongXmlTest, SampleSongsReadAndWriteBackByteForByte) {
    TempFolder folder;
    for (const char* name : {"amazing_grace.song", "blessed_assurance.song"}) {
        const String path = test::testDataPath(String("../../samples/") + name);
        Song song;
        ASSERT_EQ(song.loadFromFile(path), StatusSuccess) << name;
        EXPECT_EQ(song.loadedFileType(), SongFileType::Song) << name;
        EXPECT_GE(song.getSectionCount(), 4) << name;
        for (int i = 0; i < song.getSectionCount(); ++i)
            EXPECT_TRUE(song.getSection(i)->hasChords()) << name << " " << i;
        EXPECT_EQ(song.saveToText(SongFileType::Song, true), folder.read(path)) << name;
    }
}

TEST(SongXmlTest, SavingIntoAMissingFolderFailsAndAnExistingFileIsReplaced) {
    TempFolder folder;
    Song song = sampleSong();
    EXPECT_EQ(song.saveToFile(folder.file("no/such/folder.song"), SongFileType::Song),
              Status(ENOENT));
    const String path = folder.write("keep.song", "old");
    ASSERT_EQ(song.saveToFile(path, SongFileType::Song), StatusSuccess);
    EXPECT_NE(folder.read("keep.song"), "old");
}

}  // namespace
}  // namespace melodex
