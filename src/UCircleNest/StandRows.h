#pragma once

#include "platenest/UCircleNest/MaxCirclePacking.h"

// Where the circles of a stack of rows stand. Lengths in pitches; rows run along x and are stacked along y. A row of n
// circles leaves the fraction f of a pitch free: its centres stand at 0 .. n - 1, and the last one could stand at
// n - 1 + f, which is called the wall here. Every row kind starts on a row of n and ends with one, so that kinds follow
// each other in any order, and a stack is as high as the sum of its kinds. Circles touch, none overlaps. r = sin 60.
//
// Loose rows, f < 0.5:
//
//    pair, adds 2n - 1           stagger, adds 2n              quad, adds 4n - 1
//
//    O   O   O   |  2 r          O   O   O   |  2 g            O   O   O   |  2 s + 2 r = m
//      O   O     |    r            O   O   O |    g              O   O     |  2 s + r        n - 1, moved by 0.5
//    O   O   O   |  0            O   O   O   |  0              O   O     O |  2 s            n - 1; end at s + h + 1
//                                                                O   O   O |    s            n - 1, moved by t; end at
//                                                                s + h
//                                g = sqrt(1 - f^2)             O   O   O   |  0
//
// The second row of a quad is moved by t = sqrt(1 - s^2) > f, so that it sinks in deeper than a staggered one. Its last
// circle would pass the wall: it is pushed up along it, by h = sqrt(1 - (1 - t + f)^2), where it still touches its
// neighbour. The end of the third row stands on it, and the row above keeps q = sqrt(1 - (0.5 + f)^2) off that end:
// s + h + 1 + q = 2 s + r, so m / 2 = 1 + h + q, and m is the root of that. For f = 0 a quad is the stack square,
// square, hex, hex of height 2 + sqrt 3.
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

// The centres of a stack as Info.ChooseTypeNum, AddMode and the fields of its rows tell; the lowest row starts at
// (0, 0). Linear in the circles.
TVPoint2DList LooseStack(const TPlaceInfo& Info, const TRowWidth& Width);
TVPoint2DList TightStack(const TPlaceInfo& Info, const TRowWidth& Width);

}  // namespace platenest::detail
