#pragma once

#include "MaxCircleUnits.h"
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
//                                                              O   O   O   |  2 s + 2 r = m
//                                                                O   O     |  2 s + r
//    O   O   O   |  2 r          O   O   O   |  2 g            O   O     E |  2 s        E at s + h + 1
//      O   O     |    r            O   O   O |    g              O   O   E |    s        E at s + h
//    O   O   O   |  0            O   O   O   |  0              O   O   O   |  0
//
//                                g = sqrt(1 - f^2)
//
// The second row of a quad is moved by t = sqrt(1 - s^2) > f, so that it sinks in deeper than a staggered one. Its last
// circle E would pass the wall: it is pushed up along it, by h = sqrt(1 - (1 - t + f)^2), where it still touches its
// neighbour. The end of the third row stands on it, and the row above keeps q = sqrt(1 - (0.5 + f)^2) off that end:
// s + h + 1 + q = 2 s + r, so m / 2 = 1 + h + q, and m is the root of that. For f = 0 a quad is the stack square,
// square, hex, hex of height 2 + sqrt 3.
//
// Tight rows, f > sin 60. A row of n holds one circle more, its end, where that stands at the wall and
// d = sqrt(1 - f^2) off the row. The end of a closing row stands below it; only a row that no end stands below, that is
// the lowest one or the closing row of a hex, may have an end above it.
//
//    hex, adds 2n               turned, adds 2n + 1            rest, adds 2n + 1
//
//    O   O   O   |  2 r          O   O   O    |  c             O   O   O   |  e = max(2 r, 2 d + 1)
//                                           E |  c - d                   E |  e - d
//      O   O   O |    r            O   O   O  |  c / 2           O   O     |  e / 2
//                                          (E)|  d                       E |  d
//    O   O   O   |  0            O   O   O    |  0             O   O   O   |  0
//
// In a turned piece the last circle of a row, its end and the last one of the row between touch each other: that
// triangle is turned by arccos f, so c = 2 r f + d, and the row between is moved by f / 2 - r d. A hex below lets it
// have the end in brackets, too, and both together add 4n + 2. A rest has room for two ends and always has both; it
// opens a stack, or with a hex below adds 4n + 1.
namespace platenest::detail {

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
