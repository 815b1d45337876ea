#pragma once

// How the different sources of a command are folded into one set of identifiers before any
// handler sees it.
namespace pxm::ui {

// The twin-button table: 851, 852, 856, 857 and 899 act as 1, 2, 6, 7 and 9, and 10801 ...
// 10805 as 801 ... 805; every other identifier (860 ... 863 and 901 ... 904 among them) is
// itself.
int FoldTwinButton(int id);

// The twin-button table, then the graphic buttons 761 ... 782 lowered by 660 (761 acts as 101,
// 779 as 119) and 120 turned into 506, whose handler it shares.
int FoldCommand(int id);

// The twin of a picture-set button identifier (1 -> 851); the identifier itself when it has
// none. Dialogs use the plain set when ColourButtons is off.
int PlainTwin(int id);

}  // namespace pxm::ui
