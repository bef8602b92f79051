#include "melodex/ui/edit_chord_dialog.h"

#include <gtest/gtest.h>

namespace melodex {
namespace {

TEST(EditChordDialogTest, ShowsTheChordUntransposedAndParsesTheTextOnOk) {
    SongChord chord("F#m7/C#", 4);
    EditChordDialog dialog(&chord);
    EXPECT_EQ(dialog.text(), "F#m7/C#");
    EXPECT_EQ(dialog.text(), chord.toString(0, false));
    EXPECT_EQ(dialog.result(), EditChordDialog::Result::Open);

    dialog.text("Gm7/D");
    EXPECT_EQ(chord.toString(), "F#m7/C#");  // nothing changes before OK
    dialog.OnOK();
    EXPECT_EQ(dialog.result(), EditChordDialog::Result::Ok);
    EXPECT_EQ(chord.toString(), "Gm7/D");
    EXPECT_EQ(chord.chord(), 7);
    EXPECT_EQ(chord.bass(), 2);
    EXPECT_EQ(chord.offset(), 4);

    // Text that is no chord makes the chord invalid, as typing it means.
    EditChordDialog again(&chord);
    again.text("N.C.");
    again.OnOK();
    EXPECT_FALSE(chord.isValid());
    EXPECT_EQ(chord.offset(), 4);
}

TEST(EditChordDialogTest, CancelAndNoChordChangeNothing) {
    SongChord chord("Bb", 2);
    EditChordDialog dialog(&chord);
    dialog.text("C");
    dialog.OnCancel();
    EXPECT_EQ(dialog.result(), EditChordDialog::Result::Cancel);
    EXPECT_EQ(chord.toString(), "Bb");

    EditChordDialog none(nullptr);
    EXPECT_EQ(none.text(), "");
    none.text("G");
    none.OnOK();
    EXPECT_EQ(none.result(), EditChordDialog::Result::Ok);
}

}  // namespace
}  // namespace melodex
