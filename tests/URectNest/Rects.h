#pragma once

#include <random>

#include "platenest/URectNest/RectRecords.h"

namespace platenest {

inline TNestRect Part(int Amount, double Width, double Height, double Worth = 0, int Idx = 0) {
  TNestRect part(Amount, Idx, TVRect2D::FromSize(Width, Height));
  part.Area = Worth;
  return part;
}

// Each Idx is the position, as nesters number them.
inline TNestRectList Numbered(TNestRectList List) {
  for (int i = 0; i < Size(List); ++i) List[i].Idx = i;
  return List;
}

inline TNestedRect Placed(double Width, double Height, double X, double Y, int Idx = 0, bool Turned = false) {
  return TNestedRect(Part(1, Width, Height, 0, Idx), Turned, {X, Y});
}

// Whole numbers from Low to High.
struct TDice {
  explicit TDice(unsigned Seed) : Random(Seed) {}
  int operator()(int Low, int High) { return std::uniform_int_distribution(Low, High)(Random); }

  std::mt19937 Random;
};

}  // namespace platenest
