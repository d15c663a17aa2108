#pragma once

#include <string>

#include "platenest/foundation/Export.h"
#include "platenest/foundation/Paths.h"

// Verifies no-fit polygons and inner-fit regions by trying places out, with code that shares nothing with the kernel.
// Everything is in path units (kPathScale). No state; safe on any thread.
namespace platenest {

struct TNfpQuestion {
  TPaths Fixed;   // outer contour counter-clockwise, holes clockwise
  TPaths Moving;  // likewise; the places are translations of it as it is drawn
  bool IsInside = false;
};

struct TNfpCheckOptions {
  double Tol = 100;        // how deep shapes may overlap, or stick out, at a place that the region allows
  bool IsFull = true;      // also look for places that the region loses
  int MostSamples = 24;    // of places on the boundary, and as many beside it
  Int64 MostContacts = 0;  // pairs of points up to which the areas are compared too
};

// The first thing wrong as one English sentence, or an empty text:
//   - the paths wind around every point once or not at all;
//   - at places on the boundary, corners and middles of edges, the moving shape shrunk by Tol does not overlap the
//   fixed
//     one, or, with IsInside, lies within it;
//   - with IsFull, places beside the boundary, on the side where the region says that the shapes do not fit, really do
//     not: there the moving shape grown by Tol overlaps the fixed one, or sticks out of it. Places are taken some Tol
//     away from the boundary and further, so that exact fits, which a region may lose, do not count.
//   - up to MostContacts, no piece wider than some Tol is enclosed that should not be, or with IsFull the other way
//     round: this also finds whole contours that are lost, and places where an empty region says that there is none.
// An empty region is wrong without IsInside. Beyond MostContacts only samples are looked at, in an order that depends
// on the region alone. Cost: two offsets of the moving shape, for each sample one intersection of two polygons where
// their boxes meet, and one union of as many parallelograms as there are contacts.
PLATENEST_API std::string CheckNfp(const TNfpQuestion& Question, const TPaths& Region,
                                   const TNfpCheckOptions& Options = {});

}  // namespace platenest
