#pragma once

#include "platenest/UCircleNest/MaxCirclePacking.h"

// Where the circles of a stack of rows stand. Lengths in pitches; rows run along x and are stacked along y. A row of n
// circles leaves the fraction f of a pitch free; the leftmost centre of a row may stand at 0, the rightmost at
// n - 1 + f, which is called the wall here. Every step is exact: circles touch, none overlaps.
//
// Loose rows, f < 0.5. Three kinds, named by what stands on a row of n that is there already:
//
//   pair, adds 2n - 1           stagger, adds 2n                quad, adds 4n - 1 (right end of its rows)
//
//    O   O   O   |  2 r          O   O   O |  2 g               t   O   O     |    m          lowered by h: O
//      O   O     |    r            O   O   O    g               s O   O     O | m - s         at most m - 1 - h
//    O   O   O   |  0            O   O   O |  0                     O   O     | m / 2
//                                                               s O   O     O |    s          1 + h
//    r = sin 60                  g = sqrt(1 - f^2)              t   O   O     |    0          raised by h: O
//
// A quad is a hexagonal core of three rows, the inner one of n - 1 circles, between two rows that are moved by
// t = sqrt(1 - s^2), s = m / 2 - r, so that they sink in deeper than a square row would. Moved by more than f, their
// last circles do not fit any more: they are pushed along the wall, h = sqrt(1 - (1 - t + f)^2) into the quad. So each
// quad has a column of four circles at the wall. Each keeps q = sqrt(1 - (0.5 + f)^2) off the inner row, which gives
// m / 2 = 1 + h + q; m is the root of that. For f = 0 the quad is square, hex, hex, square of height 2 + sqrt 3.
//
// Quads stand on quads: the shared row's circle at the wall is only pushed up, and the wall column gains 2 h below.
// Pairs go into the core of a quad, whose rows they continue; staggers go under the quads, because a row moved by t
// stands on an unmoved row at the step g, too. Where q < 0.5, the two middle circles of a wall column are nearer than
// 1 unless a pair lies between them or the column may lean over the top row; see LooseExcess.
//
// Tight rows, f > sin 60. With d = sqrt(1 - f^2), a row of n holds one circle more when that stands off the row by d,
// at the wall: up or down, as is free.
//
//   hex, adds 2n                turned, 2 sin(60 + a) high           rest, max(2 r, 2 d + 1) high
//
//    O   O   O   |  2 r          O   O   O     a = arccos f           O   O   O      n at 0
//      O   O   O |    r                     O |  end d lower                      O |  end d lower
//    O   O   O   |  0             O   O   O   |  n, moved by cos(60 + a)  O   O     |  n - 1, moved by 0.5
//                                           O |  end d higher                     O |  end d higher
//                                O   O   O                            O   O   O      n at 0
//
// In a turned piece the last circles of a row, its end and the row between are a lattice that is turned by a. A run of
// k pieces that are not hex has k + 1 ends, so a turned one or a rest adds 2n + 1, and one more where hex pieces part
// it from other runs: hex and rest add 4n + 1, hex and turned 4n + 2.
namespace platenest::detail {

inline constexpr double kHexStep = 0.8660254037845;
inline constexpr double kHexDouble = 1.732050807569;

// Rows of Count circles that leave Rest of a pitch free.
struct TRowWidth {
  int Count = 0;
  double Rest = 0;
};

struct TLooseForm {
  double Quad = 0;     // m
  double Stagger = 0;  // g
  double Sink = 0;     // s
  double Shift = 0;    // t
  double Lift = 0;     // h
  double Reach = 0;    // q
};

// Rest in [0, 0.5); Quad at least 2 kHexDouble.
TLooseForm LooseForm(double Rest, double Quad);

// What a stack with quads, but no pair in them, needs beyond the sum of its rows. Under a hexagonal row on top
// (TopRow) the wall column may lean over instead, and that row sinks in less.
double LooseExcess(const TLooseForm& Form, bool TopRow);

// Whether the hexagonal row on top of such a stack is the one that makes way.
bool TopRowMakesWay(const TLooseForm& Form);

// The centres of a stack as Info.ChooseTypeNum, AddMode and the fields of its rows tell; the lowest row starts at
// (0, 0). Linear in the circles.
TVPoint2DList LooseStack(const TPlaceInfo& Info, const TRowWidth& Width);
TVPoint2DList TightStack(const TPlaceInfo& Info, const TRowWidth& Width);

}  // namespace platenest::detail
