#pragma once

#include <string>
#include <vector>

#include "NfpInstances.h"

// The pairs of an instance that are measured; the same ones for the kernel and for its peer.
namespace platenest::bench {

struct TNfpShape {
  std::string Name;  // id of the part, and its angle in degrees if it is turned
  TVHPolygon Shape;
};

// Every part as it stands, or at each of its angles.
std::vector<TNfpShape> ShapesOf(const TNfpInstance& Instance, bool Turned);

struct TNfpPair {
  int Number = 0;  // in the list of all ordered pairs
  int Static = 0;
  int Dynamic = 0;
};

// All ordered pairs of so many shapes, each with itself too, or Most of them evenly spread.
std::vector<TNfpPair> OrderedPairs(int Shapes, int Most);

}  // namespace platenest::bench
