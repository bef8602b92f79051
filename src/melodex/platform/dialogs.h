#pragma once

// What the library asks of the user interface: message boxes, the standard
// file and folder choosers, and the wait cursor.
//
// The library never talks to a GUI toolkit; it calls a Dialogs object that
// the program supplies. HeadlessDialogs (every chooser cancels, messages go
// to stderr) serves programs without a GUI; the Qt adapter shows real
// dialogs; tests script the answers.
//
//     FileDialogRequest request;
//     request.filter = "Text Files (*.txt)|*.txt|All Files (*.*)|*.*||";
//     request.fileMustExist = true;
//     if (std::optional<String> path = dialogs.openFile(request)) load(*path);
//
//     WaitCursor busy(dialogs);  // shown until `busy` goes out of scope
//
// Filters are written in the family's text form: pairs of a display name and
// a pattern list, each followed by "|", the whole ended by a further "|":
// "Song Files (*.song;*.txt)|*.song; *.txt|All Files (*.*)|*.*||".
// parseFileFilters() turns that into entries for a toolkit to show.

#include <optional>
#include <string_view>
#include <vector>

#include "melodex/foundation/text.h"

namespace melodex {

// The file-name buffer that the multiple-selection choosers of the song
// library and the Bible database ask for. The odd figure is the one the
// family has always used; a toolkit without such a limit may ignore it.
inline constexpr int MultiSelectFileNameBufferLength = 16834;

enum class MessageIcon { None, Information, Warning, Error, Question };

struct MessageRequest {
    String text;   // HTML: <b>, <p>, <br> and entities may appear
    String title;  // empty: the program's name
    MessageIcon icon = MessageIcon::None;
};

// One chooser of files: open one, open several, or save.
struct FileDialogRequest {
    String title;                // empty: the toolkit's own ("Open", "Save As")
    String filter;               // the family's filter text; empty: all files
    String initialFolder;        // empty: the toolkit's choice
    String proposedName;         // the name offered in the name field
    String defaultExtension;     // added to a typed name without one (".song")
    int initialFilterIndex = 1;  // 1-based, in the order of the filter text
    bool fileMustExist = false;
    bool pathMustExist = false;
    bool overwritePrompt = false;
    bool longNames = true;
    bool enableSizing = false;
    // Characters of the buffer that receives the chosen names; 0 for the
    // toolkit's default.
    int fileNameBufferLength = 0;
};

struct FolderDialogRequest {
    String title;          // "Select Folder for Import"
    String initialFolder;  // empty: the toolkit's choice
};

struct SaveFileResult {
    String path;
    // The 1-based index of the filter that was chosen, in the order of the
    // filter text; 0 when the toolkit does not tell.
    int filterIndex = 0;
};

// The user-interface services. Every chooser returns nullopt when the user
// cancels. Calls come from the program's user-interface thread.
class Dialogs {
public:
    virtual ~Dialogs();

    virtual void messageBox(const MessageRequest& request) = 0;

    virtual std::optional<String> openFile(const FileDialogRequest& request) = 0;

    // The chosen paths in the order the user selected them; never an empty
    // list (an empty choice is a cancel).
    virtual std::optional<StringArray> openFiles(const FileDialogRequest& request) = 0;

    virtual std::optional<SaveFileResult> saveFile(const FileDialogRequest& request) = 0;

    virtual std::optional<String> chooseFolder(const FolderDialogRequest& request) = 0;

    // Shows the busy cursor until the matching endWaitCursor(). Calls nest:
    // the cursor stays until the outermost one ends.
    virtual void beginWaitCursor() = 0;
    virtual void endWaitCursor() = 0;
};

// Shows the wait cursor of `dialogs` for the lifetime of this object.
class WaitCursor {
public:
    explicit WaitCursor(Dialogs& dialogs) : m_dialogs(dialogs) { m_dialogs.beginWaitCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
    ~WaitCursor() { m_dialogs.endWaitCursor(); }

private:
    Dialogs& m_dialogs;
};

// One entry of a filter text.
struct FileFilter {
    String name;           // as displayed, verbatim: "Cantorix Files (*.song))"
    StringArray patterns;  // trimmed, in order: {"*.song", "*.sng"}
};

// The entries of a filter text in order. Names are kept exactly as written
// (the family's own filters carry doubled closing parentheses that files and
// settings may refer to). Patterns are split at ";" and trimmed; empty ones
// are left out. The list ends at the first empty name (the closing "||") or
// at the end of the text; a name without a pattern list after it is dropped.
std::vector<FileFilter> parseFileFilters(std::string_view filterText);

// True when the file name (a folder in front of it is ignored) matches one
// of the entry's patterns. Patterns use "*" for any run of characters and
// "?" for one character and ignore case; "*.*" matches every name, with or
// without an extension, as it always has on the family's home system.
bool matchesFileFilter(const FileFilter& filter, std::string_view fileName);

}  // namespace melodex
