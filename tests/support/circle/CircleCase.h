#pragma once

#include <functional>

#include "JobCase.h"

namespace platenest::test {

// A job of circles out of whole numbers: Pick(n) gives one from 0 to n - 1. Diameters, plates, gap and margins are
// whole thousandths (metres), units, tenths, or whole millimetres in inches. One size, a few, up to sixty distinct
// ones, sizes that differ by the last digit, or circles from a third to the whole of the plate's shorter room, exact
// halves among them, and some that fit nowhere. Demand fills a share of the stock, all of it or more; some sizes are
// without limit. One to three plate kinds with stock that is unlimited, ample, too small or one of each, remnants and
// stated costs. A fifth of the jobs is made by laying shelves of equal circles and has a sample. Mostly up to 150
// circles a plate, and never more than about 25 plates.
TJobCase MakeCircleCase(const std::function<int(int)>& Pick);
TJobCase MakeCircleCase(unsigned Seed);

// Asks for a method. Patterns are of one size, so that all circles take the size of the first and no sample is left.
void AskForCircles(TJobCase& Case, const std::string& Method);

}  // namespace platenest::test
