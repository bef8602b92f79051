#pragma once

// One Bible translation: its title and the other words of bible.ini, the
// books it owns, the folder it lives in and whether it is hidden.
//
// On disk a Bible is a folder:
//
//     bible.ini     [info] title, description, publisher, copyright, nbooks;
//                   [book_1] ... [book_<nbooks>] title, filename
//     Genesis.book  one text file per book (format in bible_book.h)
//     .hidden       an empty file, present when the Bible is hidden
//
// loadFromFolder() reads bible.ini only; each book reads its own file the
// first time its chapters are asked for. Two foreign sources fill a Bible
// too: a folder of ".bbl" files named after the 66 English book names
// (importBblFolder) and an XML Bible file (importFromFile); both mark every
// book loaded and write nothing.
//
//     Bible bible;
//     if (bible.importFromFile("/home/ann/kjv.xmm") == StatusSuccess)
//         bible.saveToFolder("/data/Bible Database/KJV");
//
// Failures: the statuses below are the ones the family has always returned,
// so a save reports 0 even when a file could not be written. What failed,
// and why, is in lastError() after every public operation that touches files.

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "melodex/bible/bible_book.h"
#include "melodex/bible/bible_object.h"
#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"

namespace melodex {

class Bible : public BibleObject {
public:
    // Called by the long operations as they go: what they do ("reading",
    // "writing"), the book they are at and how many books there are (0 when
    // that is not known yet).
    using Progress = std::function<void(std::string_view step, int done, int total)>;

    explicit Bible(BibleObject* owner = nullptr);
    Bible(const Bible& other);             // books are copied deeply
    Bible& operator=(const Bible& other);  // keeps this Bible's owner
    ~Bible() override;

    // The folder last loaded from or saved to; empty before either.
    const String& folder() const { return m_folder; }

    const String& title() const { return m_title; }
    void title(const String& title) { m_title = title; }
    const String& description() const { return m_description; }
    void description(const String& description) { m_description = description; }
    const String& publisher() const { return m_publisher; }
    void publisher(const String& publisher) { m_publisher = publisher; }
    const String& copyright() const { return m_copyright; }
    void copyright(const String& copyright) { m_copyright = copyright; }

    int bookCount() const { return int(m_books.size()); }
    // Null when the index is out of range.
    BibleBook* book(int index) const;

    bool hidden() const { return m_hidden; }
    // Sets the flag and at once creates or deletes the ".hidden" marker in
    // the Bible's folder; without a folder only the flag changes.
    void hidden(bool hidden);

    // The title.
    String toString() const override;

    // Reads bible.ini of the folder and appends its books, unloaded (books
    // already held stay). 0; BibleStatusFailed when there is no bible.ini,
    // or when the Bible holds no book afterwards. A "filename" that does not
    // name a file inside the folder adds no book.
    [[nodiscard]] Status loadFromFolder(const String& folder);

    // Writes bible.ini and a ".book" file per book into the folder (created
    // when missing) and makes it the Bible's folder. Books not loaded write
    // only their title line, so load them first to save a copy. Books whose
    // titles would give one file name twice get " 2", " 3" ... The marker
    // ".hidden" is not touched. Always 0: failures are in lastError().
    Status saveToFolder(const String& folder, const Progress& progress = {});

    // Present in the interface and deliberately empty: always
    // BibleStatusFailed. Use importBblFolder.
    Status importFolder(const String& folder);

    // Takes the folder's name as title and appends a loaded book for each
    // file of the folder named after one of the 66 English book names +
    // ".bbl", in the Bible's order whatever the order on disk. Other files
    // are never looked at. Always 0, even when no file matched; a file that
    // cannot be read gives a book without chapters (see lastError()).
    Status importBblFolder(const String& folder, const Progress& progress = {});

    // Replaces the books with those of an XML Bible file: under an element
    // "bible", each child element with an attribute "n" is a book, each of
    // its children with "n" a chapter, each of theirs with "n" a verse whose
    // text is the element's text; element names are not looked at. The
    // title is the "bible" element's "n", else the file's name without
    // extension. 0; BibleStatusFailed when the file does not load as XML,
    // has no "bible" element or no book (the books are cleared then).
    [[nodiscard]] Status importFromFile(const String& path, const Progress& progress = {});

    // The first file failure of the last public operation that touches
    // files; empty when there was none.
    const FileError& lastError() const { return m_lastError; }

protected:
    // Appends an empty book that this Bible owns.
    BibleBook* addBook();
    // Deletes every book.
    void clear();

private:
    friend class BibleDatabase;

    // Points the Bible and its books' files at the folder that its saved
    // folder was renamed to, without reading anything.
    void moveTo(const String& folder);

    String m_folder;
    String m_title;
    String m_description;
    String m_publisher;
    String m_copyright;
    std::vector<std::unique_ptr<BibleBook>> m_books;
    bool m_hidden = false;
    FileError m_lastError;
};

}  // namespace melodex
