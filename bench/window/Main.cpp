// mavrel-bench-window
//
// Measures what the windows add to the work below them, as ratios to a baseline of the same run. Results are
// checked; a wrong one ends the run with exit code 1. It needs a display, and plugins/DXT.dll beside it.
//
//   tree-fill     filling the texture tree with 20000 entries in three categories, against a bare tree
//   control
//                 that gets the same items in the same order
//   select-next   what the main window does when the tree has come to another texture (256 x 256, DXT1),
//   until
//                 its picture is drawn and its facts are told, against reading and decoding the same textures
//   select-next-key   the same from the Down key on, until every control is drawn: what the tree control
//   itself
//                 does is the larger part of it

#include <cstdio>
#include <exception>

#include "bench/window/SelectWorkload.h"
#include "bench/window/TreeWorkload.h"

int main()
{
    try {
        Bench::CReport report;
        report.PrintHead();
        Bench::MeasureTree(report);
        Bench::MeasureSelecting(report);
        return report.AllCorrect() ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "mavrel-bench-window: %s\n", error.what());
        return 1;
    }
}
