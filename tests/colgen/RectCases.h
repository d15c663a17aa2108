#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "platenest/colgen/RectPattern.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {

// With an index that says nothing.
inline TNestRect Part(double Width, double Height, int Amount, double Value = 0) {
  TNestRect part(Amount, 77, TVRect2D::FromSize(Width, Height));
  part.Area = Value;
  return part;
}

inline TNestSpace Plate(double Width, double Height, int Ratio = 1000) {
  return TNestSpace(TVRect2D::FromSize(Width, Height), Ratio, false);
}

// The copies of each part in a layout, which must be valid with Idx as the position in Parts.
inline std::vector<int> CheckedCopies(const TNestedRects& Layout, const TVRect2D& On, TNestRectList Parts,
                                      double Gap = 0) {
  for (int i = 0; i < Size(Parts); ++i) Parts[static_cast<std::size_t>(i)].Idx = i;
  EXPECT_EQ(CheckRectLayout(Layout, On, Gap, Parts), "");
  std::vector<int> copies(Parts.size());
  for (const TNestedRect& item : Layout) ++copies.at(static_cast<std::size_t>(item.Part.Idx));
  return copies;
}

// The same for a solution, whose plates must be in stock, turned by a quarter or not.
inline std::vector<int> CheckedCopies(const TRectSolution& Solution, const TNestRectList& Parts, TNestSpaceList Plates,
                                      double Gap = 0) {
  std::vector<int> copies(Parts.size());
  for (const auto& pair : Solution) {
    const TVRect2D& on = pair.Key->Plate();
    const std::vector<int> once = CheckedCopies(pair.Key->NestedRects(), on, Parts, Gap);
    for (std::size_t i = 0; i < copies.size(); ++i) copies[i] += pair.Value * once[i];
    int open = pair.Value;
    for (TNestSpace& plate : Plates) {
      if (!plate.Space.SizeEquals(on, 1e-9) &&
          !plate.Space.SizeEquals(TVRect2D::FromSize(on.Height(), on.Width()), 1e-9))
        continue;
      const int taken = std::min(open, plate.Ratio);
      plate.Ratio -= taken;
      open -= taken;
    }
    EXPECT_EQ(open, 0) << "plates beyond the stock";
  }
  return copies;
}

// How often each pattern is used.
inline std::vector<int> Numbers(const TRectSolution& Solution) {
  std::vector<int> numbers;
  for (const auto& pair : Solution) numbers.push_back(pair.Value);
  return numbers;
}

}  // namespace platenest
