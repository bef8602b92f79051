#pragma once

// One book of a Bible: its title, the chapters it owns, and the ".book" file
// they are read from.
//
// A book read from a Bible folder starts unloaded, knowing only its title
// and file; the first chapterCount() or chapter() reads the file. The book
// then counts as loaded whether the read worked or not, so a file that
// cannot be read is not tried again: the book simply has no chapters.
// setFile() makes the book unloaded again without dropping the chapters it
// holds (a later read adds to them). Books made by an import are loaded.
//
// ".book" file:
//
//     !title=Genesis
//     [1:Genesis 1]
//     1:<tab>In the beginning God created the heaven and the earth.
//     2:<tab>And the earth was without form ...
//     <empty line>
//     [2:Genesis 2]
//     ...
//
// A chapter line is "[" number ":" title "]"; a verse line is number ":"
// text; an empty line ends a chapter. A property line "!key=value" sets the
// title, except the "!title=" line itself: the title that bible.ini gives the
// book stands, and files in the wild rely on it.

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "melodex/bible/bible_chapter.h"
#include "melodex/bible/bible_object.h"
#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"

namespace melodex {

class Bible;
class TextFile;

class BibleBook : public BibleObject {
public:
    explicit BibleBook(Bible* owner = nullptr);
    BibleBook(const BibleBook& other);             // chapters are copied deeply
    BibleBook& operator=(const BibleBook& other);  // keeps this book's owner
    ~BibleBook() override;

    const String& title() const { return m_title; }
    void title(const String& title) { m_title = title; }

    // The full path of the book's ".book" file; empty for a book made in
    // memory.
    const String& filename() const { return m_file; }
    // Sets the file and makes the book unloaded; chapters held stay.
    void setFile(const String& path);
    bool isLoaded() const { return m_loaded; }

    // Both read the book's file first when it is not loaded yet.
    int chapterCount();
    // Null when the index is out of range.
    BibleChapter* chapter(int index);
    // Appends an empty chapter that this book owns; never reads the file.
    BibleChapter* addChapter();

    // Writes the book to the folder as its title + ".book" (characters that
    // cannot stand in a file name replaced) and makes that its file. 0, or
    // the status of a file that cannot be opened for writing (nothing is
    // written then). A failure to write the opened file is not returned: it
    // is in lastError(). A book not loaded writes only its title line.
    [[nodiscard]] Status saveToFolder(const String& folder);

    // The ".book" text of the book: the title line, then every chapter.
    void writeToFile(TextFile& file) const;

    // Fills the book's chapters from a ".bbl" file and marks the book
    // loaded (also when the file cannot be opened); 0 or the open's status.
    [[nodiscard]] Status importBblFile(const String& path);

    // The owner as a Bible; null when the book has none.
    Bible* bible() const;

    // The title.
    String toString() const override;

    // The first file failure of the last load, save or import; empty when
    // there was none.
    const FileError& lastError() const { return m_lastError; }

protected:
    // Reads the file (see above) and marks the book loaded whatever the
    // outcome; 0 or the status of the failed open.
    [[nodiscard]] Status load();

private:
    friend class Bible;
    friend class BibleDatabase;

    // writeToFile to that path, which becomes the book's file.
    [[nodiscard]] Status saveToFile(const String& path);

    // 0 when the path is a regular file; else ENOENT, EISDIR or
    // StatusNotRegularFile. Nothing else is ever opened for reading: a FIFO
    // or device named by a damaged bible.ini would block the read for ever.
    [[nodiscard]] static Status checkReadable(const String& path);
    // Opens a book file (its own, or one imported) for reading. The book
    // counts as loaded from then on, whether it opened or not; a failure
    // is recorded in lastError().
    [[nodiscard]] Status openForReading(TextFile& file, const String& path);

    // A title as a file name: characters that cannot stand in a file name
    // here or on other systems replaced or dropped, leading dots and blanks
    // removed, cut to a safe length; `fallback` when nothing is left.
    static String fileNameFor(std::string_view title, std::string_view fallback);

    String m_title;
    std::vector<std::unique_ptr<BibleChapter>> m_chapters;
    bool m_loaded = false;
    String m_file;
    FileError m_lastError;
};

}  // namespace melodex
