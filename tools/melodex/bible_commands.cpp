#include "bible_commands.h"

#include "command_line.h"

#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "melodex/app/song_config.h"
#include "melodex/bible/bible_database.h"
#include "melodex/bible/bible_reference.h"
#include "melodex/bible/bible_search.h"
#include "melodex/foundation/file_system.h"

namespace melodex::cli {

namespace {

String padRight(const String& text, std::size_t width) {
    const std::size_t length = codePointLength(text);
    return length >= width ? text : text + String(width - length, ' ');
}

String padLeft(const String& text, std::size_t width) {
    const std::size_t length = codePointLength(text);
    return length >= width ? text : String(width - length, ' ') + text;
}

String plural(long long count, std::string_view word) {
    return std::to_string(count) + " " + String(word) + (count == 1 ? "" : "s");
}

// Points theBibleDB at the chosen folder and opens it. Only an import may
// create the folder; the other commands find a --data folder or fail.
void openBibles(bool creates) {
    if (!creates && !dataOption().empty() && !folderExists(dataOption()))
        fail("no Bible database at " + dataOption());
    theBibleDB.setDatabaseFolder(
        dataSubfolder("Bible Database", [] { return theAppConfig.getBibleDatabaseDir(); }));
    theBibleDB.open();
    if (const FileError& error = theBibleDB.lastError()) fail(error);
}

// The Bible that TITLE names (title or folder name); fails when none or
// several do.
Bible* findBible(const std::string& name) {
    const std::vector<Bible*> matches = theBibleDB.findBibles(name);
    if (matches.size() == 1) return matches.front();
    if (matches.empty()) {
        StringArray installed;
        for (const Bible* bible : theBibleDB.bibles())
            installed.push_back(bible->title());
        fail("no Bible is called \"" + name + "\"" +
             (installed.empty() ? String("; none is installed in ") + theBibleDB.databaseFolder()
                                : "; installed: " + join(installed, ", ")));
    }
    String message = "several Bibles are titled \"" + name + "\"; give the folder name:";
    for (const Bible* bible : matches)
        message += "\n  " + fileNameOf(bible->folder());
    fail(message);
}

// The Bible for show and search, whose TITLE may be left out when a single
// Bible is installed: then whatever took TITLE's place ("John" of
// "bible show John 3:16") is the first word of what follows it.
Bible* chosenBible(std::string& name, std::vector<std::string>& rest, const char* restName) {
    // A single word given is what follows TITLE, never TITLE alone.
    if (rest.empty() && !name.empty()) rest.push_back(std::exchange(name, {}));
    if (rest.empty()) failUsage(String(restName) + " is required");
    // Hidden Bibles are left out of the choice, as out of the programs' lists.
    std::vector<Bible*> shown;
    for (Bible* bible : theBibleDB.bibles()) {
        if (!bible->hidden()) shown.push_back(bible);
    }
    if (shown.size() == 1 && (name.empty() || theBibleDB.findBibles(name).empty())) {
        if (!name.empty()) rest.insert(rest.begin(), std::exchange(name, {}));
        return shown.front();
    }
    if (name.empty()) {
        if (shown.empty())
            fail("no Bible is installed (and shown) in " + theBibleDB.databaseFolder());
        StringArray titles;
        for (const Bible* bible : shown)
            titles.push_back(bible->title());
        failUsage("several Bibles are installed; name one: " + join(titles, ", "));
    }
    return findBible(name);
}

int verseCount(Bible& bible) {
    int verses = 0;
    for (int b = 0; b < bible.bookCount(); ++b) {
        BibleBook* book = bible.book(b);
        for (int c = 0; c < book->chapterCount(); ++c)
            verses += book->chapter(c)->verseCount();
    }
    return verses;
}

// --- import ------------------------------------------------------------------------

// Says on standard error how a long import is going, from its second second
// on: a line rewritten in place on a terminal, a line a second otherwise.
class ImportReporter {
public:
    explicit ImportReporter(String name)
        : m_name(std::move(name)),
          m_terminal(::isatty(::fileno(stderr)) != 0),
          m_thread([this] { run(); }) {}
    ImportReporter(const ImportReporter&) = delete;
    ImportReporter& operator=(const ImportReporter&) = delete;
    ~ImportReporter() { finish(); }

    BibleDatabase::ImportProgress callback() {
        return [this](std::string_view step, int done, int total) {
            const std::lock_guard lock(m_mutex);
            m_step = String(step);
            m_done = done;
            m_total = total;
        };
    }

    void finish() {
        {
            const std::lock_guard lock(m_mutex);
            if (m_finished) return;
            m_finished = true;
        }
        m_wake.notify_all();
        m_thread.join();
    }

private:
    void run() {
        using namespace std::chrono_literals;
        std::unique_lock lock(m_mutex);
        bool shown = false;
        while (!m_wake.wait_for(lock, 1s, [this] { return m_finished; })) {
            String line = "melodex: importing " + m_name + ": " + m_step;
            if (m_total > 0)
                line += " " + std::to_string(m_done) + " of " + plural(m_total, "book");
            if (m_terminal)
                fmt::print(stderr, "\r{}\x1b[K", line);
            else
                fmt::print(stderr, "{}\n", line);
            std::fflush(stderr);
            shown = true;
        }
        if (shown && m_terminal) fmt::print(stderr, "\r\x1b[K");
    }

    String m_name;
    bool m_terminal;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    String m_step = "starting";
    int m_done = 0;
    int m_total = 0;
    bool m_finished = false;
    std::thread m_thread;  // last: it starts once everything it reads is made
};

void importBible(const std::string& path) {
    openBibles(true);
    bool imported = false;
    {
        ImportReporter reporter(fileNameOf(path));
        imported = theBibleDB.importPath(path, reporter.callback());
    }
    const FileError& error = theBibleDB.lastError();
    if (!imported) {
        if (error.status != BibleStatusFailed) fail(error);
        if (folderExists(path))
            fail("no book file in " + path +
                 ": a .bbl folder holds one file per book, named after the book "
                 "(Genesis.bbl, 1 Samuel.bbl, Song of Songs.bbl, Psalms.bbl ...)");
        if (endsWithIgnoreCase(path, ".bbl"))
            fail("a .bbl file is imported with its folder: melodex bible import \"" +
                 (folderOf(path).empty() ? String(".") : folderOf(path)) + "\"");
        fail("not an XML Bible: " + path +
             " (it needs a \"bible\" element whose books, chapters and verses carry "
             "\"n\" attributes)");
    }
    if (error) warn(error.message());
    Bible& bible = *theBibleDB.bibles().back();  // an import is appended
    const int verses = verseCount(bible);
    fmt::print("Imported \"{}\": {}, {} into {}\n", bible.title(),
               plural(bible.bookCount(), "book"), plural(verses, "verse"), bible.folder());
    // Installed all the same, so that it can be looked at; but a Bible
    // without verses is no Bible to show from.
    if (verses == 0) {
        std::fflush(stdout);
        fail(path + " holds no verse" +
             (folderExists(path)
                  ? String(": a .bbl book file has a line \"N: text\" for each verse")
                  : String()));
    }
}

// --- list, show, search ------------------------------------------------------------

void listBibles() {
    openBibles(false);
    struct Row {
        String title, books, verses, hidden, folder;
    };
    std::vector<Row> rows{{"TITLE", "BOOKS", "VERSES", "HIDDEN", "FOLDER"}};
    for (Bible* bible : theBibleDB.bibles()) {
        rows.push_back({bible->title(), std::to_string(bible->bookCount()),
                        std::to_string(verseCount(*bible)), bible->hidden() ? "yes" : "",
                        fileNameOf(bible->folder())});
    }
    std::size_t widths[4] = {};
    for (const Row& row : rows) {
        widths[0] = std::max(widths[0], codePointLength(row.title));
        widths[1] = std::max(widths[1], codePointLength(row.books));
        widths[2] = std::max(widths[2], codePointLength(row.verses));
        widths[3] = std::max(widths[3], codePointLength(row.hidden));
    }
    for (const Row& row : rows) {
        fmt::print("{}  {}  {}  {}  {}\n", padRight(row.title, widths[0]),
                   padLeft(row.books, widths[1]), padLeft(row.verses, widths[2]),
                   padRight(row.hidden, widths[3]), row.folder);
    }
    fmt::print("{} in {}\n", plural(theBibleDB.bibleCount(), "Bible"), theBibleDB.databaseFolder());
}

struct ShowOptions {
    std::string bible;
    std::vector<std::string> reference;
    bool european = false;
};

void showPassage(ShowOptions options) {
    openBibles(false);
    Bible* bible = chosenBible(options.bible, options.reference, "REFERENCE");
    String error;
    const std::optional<BibleReference> reference = BibleReference::parse(
        join(options.reference, " "),
        options.european ? BibleReference::Style::European : BibleReference::Style::Standard,
        &error);
    if (!reference) failUsage(error);
    const std::vector<BibleVerse*> verses = reference->resolve(*bible, &error);
    if (verses.empty()) fail(error);
    const BibleChapter* chapter = nullptr;
    for (const BibleVerse* verse : verses) {
        if (verse->chapter() != chapter) {
            if (chapter) fmt::print("\n");
            chapter = verse->chapter();
            fmt::print("{} {}\n", chapter->book()->title(), BibleReference::chapterName(*chapter));
        }
        fmt::print("{} {}\n", verse->number(), verse->text());
    }
}

struct SearchOptions {
    std::string bible;
    std::vector<std::string> words;
};

void searchBible(SearchOptions options) {
    openBibles(false);
    Bible* bible = chosenBible(options.bible, options.words, "WORDS");
    const String words = join(options.words, " ");
    const BibleSearch search(words);
    if (!search.isValid()) failUsage("search for words, not only punctuation");
    const std::vector<BibleVerse*> found = search.find(*bible);
    for (const BibleVerse* verse : found)
        fmt::print("{}  {}\n", BibleReference::label(*verse), verse->text());
    if (found.empty()) {
        // As library search and grep: finding nothing is a failure a script can test.
        fmt::print("No verse of {} holds \"{}\"\n", bible->title(), words);
        throw CLI::RuntimeError(ExitFailed);
    }
    fmt::print("{} in {}\n", plural(long(found.size()), "verse"), bible->title());
}

// --- hide, unhide, remove ------------------------------------------------------------

void setHidden(const std::string& name, bool hidden) {
    openBibles(false);
    Bible* bible = findBible(name);
    bible->hidden(hidden);
    if (const FileError& error = bible->lastError()) fail(error);
    fmt::print("{} \"{}\"\n", hidden ? "Hidden:" : "Shown:", bible->title());
}

void removeBible(const std::string& name) {
    openBibles(false);
    Bible* bible = findBible(name);
    const String title = bible->title();
    const String folder = bible->folder();
    theBibleDB.removeEntry(bible);
    if (const FileError& error = theBibleDB.lastError()) fail(error);
    fmt::print("Removed \"{}\" ({})\n", title, folder);
}

}  // namespace

void addBibleCommands(CLI::App& app) {
    CLI::App* group =
        app.add_subcommand("bible", "Install, list, show, search, hide and remove Bibles");
    group->require_subcommand(1);
    group->fallthrough();

    auto importPath = std::make_shared<std::string>();
    CLI::App* importCommand = group->add_subcommand(
        "import",
        "Install a Bible from a folder of .bbl files (one per book, named after the English "
        "book names) or from an XML Bible file (.xmm, .xml); it goes into a folder named "
        "after its title");
    importCommand->add_option("PATH", *importPath, "a .bbl folder or an XML Bible file")
        ->required();
    importCommand->callback([importPath] { importBible(*importPath); });

    group->add_subcommand("list", "List the installed Bibles: title, books, verses, hidden")
        ->callback(listBibles);

    auto show = std::make_shared<ShowOptions>();
    CLI::App* showCommand = group->add_subcommand(
        "show",
        "Print the verses of a reference (\"John 3:16-18\", \"Gen 1:1,3\", \"Ps 23; Jude 3\")");
    showCommand->add_option("TITLE", show->bible,
                            "the Bible's title or folder name (may be left out when one Bible "
                            "is installed)");
    showCommand->add_option("REFERENCE", show->reference, "the passage");
    showCommand->add_flag("-e,--european", show->european,
                          "\",\" between chapter and verse, \".\" between verses (\"Joh 3,16\")");
    showCommand->callback([show] { showPassage(*show); });

    auto search = std::make_shared<SearchOptions>();
    CLI::App* searchCommand = group->add_subcommand(
        "search",
        "Print the verses that hold all the words (ignoring case and accents; a word matches "
        "the start of a word)");
    searchCommand->add_option("TITLE", search->bible,
                              "the Bible's title or folder name (may be left out when one "
                              "Bible is installed)");
    searchCommand->add_option("WORDS", search->words, "the words to look for");
    searchCommand->callback([search] { searchBible(*search); });

    for (const bool hidden : {true, false}) {
        auto name = std::make_shared<std::string>();
        CLI::App* command = group->add_subcommand(
            hidden ? "hide" : "unhide",
            hidden ? "Mark a Bible hidden (the programs leave it out of their lists)"
                   : "Clear a Bible's hidden mark");
        command->add_option("TITLE", *name, "the Bible's title or folder name")->required();
        command->callback([name, hidden] { setHidden(*name, hidden); });
    }

    auto remove = std::make_shared<std::string>();
    CLI::App* removeCommand =
        group->add_subcommand("remove", "Uninstall a Bible: its folder is deleted");
    removeCommand->add_option("TITLE", *remove, "the Bible's title or folder name")->required();
    removeCommand->callback([remove] { removeBible(*remove); });
}

}  // namespace melodex::cli
