#include "melodex/ui/song_layout.h"

#include <algorithm>
#include <memory>

#include <gtest/gtest.h>

#include "melodex/display/song_display_profile.h"
#include "melodex/ui/fixed_advance_draw_context.h"
#include "support/song_builders.h"

namespace melodex {
namespace {

using Role = SongLayout::Role;
using Item = SongLayout::Item;
using test::lineOf;

// The house profiles' flag words.
constexpr int Words = 0x18F31;
constexpr int Chords = 0xD8F33;
constexpr int Bass = 0x18F35;

// On the fixed-advance context a profile of base size 20 draws lyrics 10
// points a letter and 25 a line, chords (two thirds) at 6.67 a letter.
SongDisplayProfile profileOf(int flags, double base = 20) {
    SongDisplayProfile profile;
    profile.create("Test", "Test", 3, flags, base, 0, false, false, false);
    return profile;
}

SongSection* sectionOf(int type, std::initializer_list<SongLine*> lines) {
    auto* section = new SongSection(type);
    for (SongLine* line : lines)
        section->addLine(line);
    return section;
}

// A song in Ab: a verse, a chorus and a second verse.
std::unique_ptr<Song> hymn() {
    auto song = std::make_unique<Song>();
    song->info().setTitle("Hymn");
    song->info().setAuthor("Anon");
    song->info().setKey("Ab");
    song->info().setCopyright("Public domain");
    song->info().setAttribute("tempo", 96);
    song->info().setAttribute("timesignature", "3/4");
    song->addSection(sectionOf(SectionType::Verse, {lineOf("Holy holy", {{"G#", 0}, {"C#/F", 5}}),
                                                    lineOf("Jésus, Слава", {{"Eb", 7}})}));
    song->addSection(sectionOf(SectionType::Chorus, {lineOf("Amen", {{"Ab", 0}})}));
    song->addSection(sectionOf(SectionType::Verse, {lineOf("Second verse")}));
    song->generateSectionIDs();
    return song;
}

std::vector<const Item*> itemsOf(const SongLayout& layout, Role role) {
    std::vector<const Item*> found;
    for (const Item& item : layout.items()) {
        if (item.role == role) found.push_back(&item);
    }
    return found;
}

StringArray textsOf(const SongLayout& layout, Role role) {
    StringArray texts;
    for (const Item* item : itemsOf(layout, role))
        texts.push_back(item->text);
    return texts;
}

// The lyric item whose line box starts where the chord's ends, on its page,
// and runs under it.
const Item* lyricUnder(const SongLayout& layout, const Item& chord) {
    for (const Item& item : layout.items()) {
        if (item.role == Role::Lyric && item.page == chord.page &&
            item.rect.top == chord.rect.bottom && item.rect.left <= chord.rect.left + 0.001 &&
            item.rect.right > chord.rect.left)
            return &item;
    }
    return nullptr;
}

// The song laid out with the profile; `pages` gets the page count.
std::unique_ptr<SongLayout> laidOut(SongDisplayProfile& profile, const Song& song, DrawContext& dc,
                                    const ChordDisplayOptions& options = {}, int* pages = nullptr) {
    auto layout = std::make_unique<SongLayout>(profile);
    layout->addSong(song, options);
    const int count = layout->layOut(dc);
    if (pages != nullptr) *pages = count;
    return layout;
}

TEST(SongLayoutTest, ChordsStandOverTheirLettersSpelledInTheSongsKey) {
    const auto song = hymn();
    SongDisplayProfile profile = profileOf(Chords);
    FixedAdvanceDrawContext dc(true);
    SongLayout layout(profile);
    layout.addSong(*song, {});
    ASSERT_EQ(layout.layOut(dc), 1);

    // In A flat: G# and C# are spelled Ab and Db; the running order is the
    // song's own, the chorus after each verse.
    EXPECT_EQ(textsOf(layout, Role::Chord), (StringArray{"Ab", "Db/F", "Eb", "Ab", "Ab"}));
    const struct {
        const char* chord;
        const char* lyric;
        std::size_t offset;
    } expected[] = {{"Ab", "Holy holy", 0}, {"Db/F", "Holy holy", 5}, {"Eb", "Jésus, Слава", 7}};
    const std::vector<const Item*> chords = itemsOf(layout, Role::Chord);
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        SCOPED_TRACE(expected[i].chord);
        const Item* lyric = lyricUnder(layout, *chords[i]);
        ASSERT_NE(lyric, nullptr);
        EXPECT_EQ(lyric->text, expected[i].lyric);
        // 10 points a code point, whatever the script.
        EXPECT_DOUBLE_EQ(chords[i]->rect.left,
                         lyric->rect.left + 10.0 * double(expected[i].offset));
        EXPECT_DOUBLE_EQ(chords[i]->font.size, 40.0 / 3);
        EXPECT_EQ(chords[i]->color, profile.style(StyleKind::Chord).FontColor);
    }
    // The chorus is drawn in its style: italic, indented one step (an em).
    const std::vector<const Item*> lyrics = itemsOf(layout, Role::Lyric);
    const auto amen = std::find_if(lyrics.begin(), lyrics.end(),
                                   [](const Item* item) { return item->text == "Amen"; });
    ASSERT_NE(amen, lyrics.end());
    EXPECT_TRUE((*amen)->font.italic);
    EXPECT_DOUBLE_EQ((*amen)->rect.left, lyrics.front()->rect.left + 20);
}

TEST(SongLayoutTest, WordsMakeRoomForAChordWiderThanThem) {
    Song song;
    song.addSection(sectionOf(SectionType::Verse, {lineOf("a bc", {{"Gsus4", 0}, {"D", 2}})}));
    song.generateSectionIDs();
    SongDisplayProfile profile = profileOf(Chords);
    FixedAdvanceDrawContext dc(true);
    SongLayout layout(profile);
    layout.addSong(song, {});
    layout.layOut(dc);

    const std::vector<const Item*> chords = itemsOf(layout, Role::Chord);
    ASSERT_EQ(chords.size(), 2u);
    // "Gsus4" is 5 x 6.67 wide; D keeps a blank (6.67) after it, and the
    // words from "b" on move with it.
    EXPECT_NEAR(chords[1]->rect.left - chords[0]->rect.left, 6 * 20.0 / 3, 1e-9);
    EXPECT_EQ(textsOf(layout, Role::Lyric), (StringArray{"a ", "bc"}));
    const std::vector<const Item*> lyrics = itemsOf(layout, Role::Lyric);
    EXPECT_DOUBLE_EQ(lyrics[1]->rect.left, chords[1]->rect.left);
}

TEST(SongLayoutTest, FollowsTheRunningOrderGiven) {
    const auto song = hymn();
    SongDisplayProfile profile = profileOf(Chords);
    FixedAdvanceDrawContext dc(true);
    SongLayout layout(profile);
    ChordDisplayOptions options;
    options.sequence = "V2, C1,x9 V1";  // an id the song lacks is passed over
    layout.addSong(*song, options);
    layout.layOut(dc);
    EXPECT_EQ(textsOf(layout, Role::SectionLabel), (StringArray{"Verse 2", "Chorus", "Verse 1"}));
    EXPECT_EQ(textsOf(layout, Role::Lyric).front(), "Second verse");
}

TEST(SongLayoutTest, TheProfileSaysWhatShows) {
    const auto song = hymn();
    FixedAdvanceDrawContext dc(true);
    SongDisplayProfile chords = profileOf(Chords);
    ChordDisplayOptions capo;
    capo.capoFret = 1;
    capo.transpose = 2;  // in Bb, played in A shapes
    auto all = laidOut(chords, *song, dc, capo);
    EXPECT_EQ(textsOf(*all, Role::Title), StringArray{"Hymn"});
    EXPECT_TRUE(itemsOf(*all, Role::Title).front()->font.bold);
    EXPECT_EQ(textsOf(*all, Role::Info),
              (StringArray{"Anon", "Key: Bb    Capo: 1    Tempo: 96    Time: 3/4"}));
    EXPECT_EQ(textsOf(*all, Role::Chord).front(), "A");
    EXPECT_EQ(textsOf(*all, Role::Copyright), StringArray{"Public domain"});
    EXPECT_EQ(textsOf(*all, Role::PageNumber), StringArray{"1 / 1"});

    // Brackets: the sounding chord first.
    SongDisplayProfile brackets = profileOf(Chords | ProfileFlag::CapoChordsInBrackets);
    EXPECT_EQ(textsOf(*laidOut(brackets, *song, dc, capo), Role::Chord).front(), "Bb(A)");

    // Words: no chords and no section labels; the sections still in order.
    SongDisplayProfile words = profileOf(Words);
    auto wordsOnly = laidOut(words, *song, dc, capo);
    EXPECT_TRUE(itemsOf(*wordsOnly, Role::Chord).empty());
    EXPECT_TRUE(itemsOf(*wordsOnly, Role::SectionLabel).empty());
    EXPECT_EQ(textsOf(*wordsOnly, Role::Lyric).front(), "Holy holy");
    EXPECT_EQ(textsOf(*wordsOnly, Role::Info), (StringArray{"Anon", "Key: Bb"}));

    // Bass: the bass note alone, spelled in the key.
    SongDisplayProfile bass = profileOf(Bass);
    EXPECT_EQ(textsOf(*laidOut(bass, *song, dc), Role::Chord),
              (StringArray{"Ab", "F", "Eb", "Ab", "Ab"}));

    // No header, no footer, no copyright, no author; the running order shown.
    SongDisplayProfile bare = profileOf(Chords);
    bare.showHeader(false);
    bare.showFooter(false);
    bare.showCopyright(false);
    auto plain = laidOut(bare, *song, dc);
    EXPECT_TRUE(itemsOf(*plain, Role::Title).empty());
    EXPECT_TRUE(itemsOf(*plain, Role::Info).empty());
    EXPECT_TRUE(itemsOf(*plain, Role::Copyright).empty());
    EXPECT_TRUE(itemsOf(*plain, Role::PageNumber).empty());
    bare.showHeader(true);
    bare.showAuthor(false);
    bare.showTempo(false);
    bare.showSequence(true);
    EXPECT_EQ(textsOf(*laidOut(bare, *song, dc), Role::Info),
              (StringArray{"Key: Ab    Time: 3/4", "Order: V1 C1 V2 C1"}));
}

TEST(SongLayoutTest, LinesTakeTheirSingersColour) {
    Song song;
    SongLine* women = lineOf("Women sing");
    women->singers(SingerType::Women);
    SongSection* bridge = sectionOf(SectionType::Bridge, {lineOf("All of us"), women});
    song.addSection(bridge);
    SongSection* men = sectionOf(SectionType::Verse, {lineOf("Men sing")});
    men->setSingers(SingerType::Men);
    song.addSection(men);
    song.generateSectionIDs();
    SongDisplayProfile profile = profileOf(Words);
    FixedAdvanceDrawContext dc(true);
    SongLayout layout(profile);
    layout.addSong(song, {});
    layout.layOut(dc);
    const std::vector<const Item*> lyrics = itemsOf(layout, Role::Lyric);
    ASSERT_EQ(lyrics.size(), 3u);
    EXPECT_EQ(lyrics[0]->color, profile.style(StyleKind::Bridge).FontColor);  // 0x1A500A
    EXPECT_EQ(lyrics[1]->color, profile.getLineColor(SingerType::Women));
    EXPECT_EQ(lyrics[2]->color, profile.getLineColor(SingerType::Men));
    EXPECT_NE(lyrics[0]->color, lyrics[1]->color);
}

// A song of `count` verses of four short lines.
std::unique_ptr<Song> longSong(int count, const char* text = "short line") {
    auto song = std::make_unique<Song>();
    song->info().setTitle("Long");
    for (int i = 0; i < count; ++i) {
        song->addSection(sectionOf(SectionType::Verse, {lineOf(text, {{"G", 0}}), lineOf(text),
                                                        lineOf(text), lineOf(text)}));
    }
    song->generateSectionIDs();
    return song;
}

TEST(SongLayoutTest, ColumnsAsTheProfileAsks) {
    const auto song = longSong(8);  // taller than one column of an A4 page
    FixedAdvanceDrawContext dc(true);
    const auto columnsOf = [](const SongLayout& layout) {
        std::vector<double> lefts;
        for (const Item* label : itemsOf(layout, Role::SectionLabel)) {
            if (label->page == 0 &&
                std::find(lefts.begin(), lefts.end(), label->rect.left) == lefts.end())
                lefts.push_back(label->rect.left);
        }
        return lefts;
    };

    int pages = 0;

    // One column: two pages.
    SongDisplayProfile single = profileOf(Chords & ~ProfileFlag::MultiColumns);
    EXPECT_EQ(columnsOf(*laidOut(single, *song, dc, {}, &pages)), std::vector<double>{36});
    EXPECT_EQ(pages, 2);

    // Variable widths: columns as wide as their lines (10 letters of 10
    // points), side by side with the gap between them.
    SongDisplayProfile variable = profileOf(Chords);
    EXPECT_EQ(columnsOf(*laidOut(variable, *song, dc, {}, &pages)),
              (std::vector<double>{36, 36 + 100 + 18}));
    EXPECT_EQ(pages, 1);

    // A fixed number of equal columns.
    SongDisplayProfile three = profileOf(Chords & ~ProfileFlag::VariableColumnWidths);
    three.setColumns(3, 12);
    const double width = (595 - 72 - 2 * 12) / 3.0;
    EXPECT_EQ(columnsOf(*laidOut(three, *song, dc)),
              (std::vector<double>{36, 36 + width + 12}));  // two hold it

    // Equal columns chosen by the widest line: none when the song fits one page.
    SongDisplayProfile automatic = profileOf(Chords & ~ProfileFlag::VariableColumnWidths);
    EXPECT_EQ(columnsOf(*laidOut(automatic, *song, dc, {}, &pages)),
              (std::vector<double>{36, 36 + (595 - 72 - 2 * 18) / 3.0 + 18}));
    EXPECT_EQ(pages, 1);
    EXPECT_EQ(columnsOf(*laidOut(automatic, *longSong(1), dc)).size(), 1u);

    // Lines too wide for a second column: a new page instead.
    const auto wide = longSong(8, "a line far too wide to stand beside another one");
    EXPECT_EQ(columnsOf(*laidOut(variable, *wide, dc, {}, &pages)), std::vector<double>{36});
    EXPECT_EQ(pages, 2);
}

TEST(SongLayoutTest, LongLinesWrapWithTheirChordsOrAreCutOff) {
    Song song;
    // 39 letters of 10 points on a page 300 wide with margins of 36: 228 points.
    song.addSection(sectionOf(SectionType::Verse, {lineOf("Praise God from whom all blessings flow",
                                                          {{"G", 0}, {"D", 25}})}));
    song.generateSectionIDs();
    SongDisplayProfile profile = profileOf(Words | ProfileFlag::ShowChords);
    FixedAdvanceDrawContext dc(true, {300, 400});
    SongLayout wrapped(profile);
    wrapped.addSong(song, {});
    wrapped.layOut(dc);
    EXPECT_EQ(textsOf(wrapped, Role::Lyric),
              (StringArray{"Praise God from whom", "all blessings flow"}));
    const std::vector<const Item*> chords = itemsOf(wrapped, Role::Chord);
    ASSERT_EQ(chords.size(), 2u);
    const Item* rest = lyricUnder(wrapped, *chords[1]);
    ASSERT_NE(rest, nullptr);
    EXPECT_EQ(rest->text, "all blessings flow");
    EXPECT_DOUBLE_EQ(rest->rect.left, 36 + 20);                    // going on: one em in
    EXPECT_DOUBLE_EQ(chords[1]->rect.left, rest->rect.left + 40);  // over the "b"
    for (const Item& item : wrapped.items())
        EXPECT_FALSE(item.clip) << item.text;

    profile.wrapText(false);
    SongLayout cut(profile);
    cut.addSong(song, {});
    cut.layOut(dc);
    const std::vector<const Item*> lyrics = itemsOf(cut, Role::Lyric);
    ASSERT_EQ(lyrics.size(), 1u);
    ASSERT_TRUE(lyrics[0]->clip);
    EXPECT_EQ(lyrics[0]->clip->right, 300 - 36);
}

TEST(SongLayoutTest, ShrinksToFitOnePageWhenTheProfileSays) {
    const auto song = longSong(8);
    SongDisplayProfile profile = profileOf(Chords & ~ProfileFlag::MultiColumns);
    profile.shrinkToFit(true);
    FixedAdvanceDrawContext dc(true);
    SongLayout layout(profile);
    layout.addSong(*song, {});
    EXPECT_EQ(layout.layOut(dc), 1);
    EXPECT_LT(layout.scale(), 1.0);
    EXPECT_GT(layout.scale(), 0.5);
    const double size = itemsOf(layout, Role::Lyric).front()->font.size;
    EXPECT_LT(size, 20);
    EXPECT_GE(size, profile.style(StyleKind::Verse).FontMinPtSize);
}

TEST(SongLayoutTest, SetsFlowWithGapsSeparatorsAndNumberedPages) {
    const auto first = hymn();
    const auto second = longSong(8);
    SongDisplayProfile profile = profileOf(Chords & ~ProfileFlag::MultiColumns);
    FixedAdvanceDrawContext dc(true);
    SongLayout layout(profile);
    layout.addSong(*first, {});
    layout.addGap();
    layout.addSeparator();
    layout.addSong(*second, {});
    const int pages = layout.layOut(dc);
    ASSERT_EQ(pages, 3);
    layout.setPageNumbers(2, 4);  // after a running order of one page
    EXPECT_EQ(textsOf(layout, Role::PageNumber), (StringArray{"2 / 4", "3 / 4", "4 / 4"}));

    const std::vector<const Item*> rules = itemsOf(layout, Role::Separator);
    ASSERT_EQ(rules.size(), 1u);
    const Item* copyright = itemsOf(layout, Role::Copyright).front();
    const Item* title = itemsOf(layout, Role::Title).back();
    EXPECT_GT(rules[0]->rect.top, copyright->rect.bottom + 20);  // a gap's line, then the rule
    EXPECT_GT(title->rect.top, rules[0]->rect.bottom);
    EXPECT_EQ(title->entry, 1);

    // Drawn: every page once, each started with newPage.
    dc.clearOperations();
    EXPECT_EQ(layout.draw(dc), 3);
    EXPECT_EQ(dc.pageCount(), 3);
    EXPECT_EQ(dc.stateDepth(), 0);
}

TEST(SongLayoutTest, ADarkProfileFillsThePage) {
    const auto song = hymn();
    SongDisplayProfile dark;
    dark.create("Dark", "Dark", 1, Words, 20, 0, true, false, false);
    FixedAdvanceDrawContext dc(false, {300, 400});
    SongLayout layout(dark);
    layout.addSong(*song, {});
    layout.layOut(dc);
    layout.draw(dc);
    const auto& ops = dc.operations();
    ASSERT_FALSE(ops.empty());
    EXPECT_EQ(ops.front().kind, FixedAdvanceDrawContext::Operation::Kind::Fill);
    EXPECT_EQ(ops.front().color, 0u);
    EXPECT_EQ(ops.front().rect, (RectF{0, 0, 300, 400}));
    const auto lyric =
        std::find_if(ops.begin(), ops.end(), [](const auto& op) { return op.text == "Holy holy"; });
    ASSERT_NE(lyric, ops.end());
    EXPECT_EQ(lyric->color, 0xFFFFFFu);
    EXPECT_EQ(lyric->background, BackgroundMode::Transparent);
}

}  // namespace
}  // namespace melodex
