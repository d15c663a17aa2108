#pragma once

#include "platenest/colgen/RectPattern.h"

// Sequential value correction: what fills plates badly becomes worth more in the next run, so that good plates take it
// along. Mukhacheva and Zalgaller, Linear Programming Cutting Problems, 1993; Belov and Scheithauer, Setup and
// Open-Stacks Minimization in One-Dimensional Stock Cutting, 2007.
namespace platenest::detail {

// The first value of a copy: its area to the power 1.05, which prefers large parts beyond their area, over ARate.
double NewValue(const TNestRect& ARect, double ARate);

// The part of the plate that items with their gap take, the gap once more on the plate; 0 on a plate without area.
double PatternUsedRate(const TRectPattern& APattern, double AGap);

// Corrects the values of ARects by a run that met the demand, which stands in ARectsIn; amounts are restored from
// there. The share of a part that a pattern carries is divided by the pattern's rate, the last pattern left out. Each
// pattern starts from the values at entry: what it finds replaces what the ones before it have found, so the last but
// one decides. The sum of the values stays. A part without demand keeps its value but for the scale.
void RectUpdate(const TRectSolution& ASolution, TNestRectList& ARects, const TNestRectList& ARectsIn, double AGap);

}  // namespace platenest::detail
