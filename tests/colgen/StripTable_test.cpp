#include "StripTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <vector>

#include "ForEachSeed.h"

namespace platenest::detail {
namespace {

// What a box adds to a strip of this width, along it; 0 if it is wider in both directions.
int LengthIn(const TIntBox& Box, int Width) {
  if (std::max(Box.A, Box.B) <= Width) return std::min(Box.A, Box.B);
  return std::min(Box.A, Box.B) <= Width ? std::max(Box.A, Box.B) : 0;
}

// The best value of a strip, copy by copy.
Int64 BestStrip(const TIntBoxList& Boxes, int Width, int Length) {
  std::vector<Int64> best(static_cast<std::size_t>(Length) + 1);
  for (const TIntBox& box : Boxes) {
    const int length = LengthIn(box, Width);
    for (int copy = 0; copy < box.Amount && length > 0; ++copy) {
      for (int t = Length; t >= length; --t) best[t] = std::max(best[t], best[t - length] + box.Area);
    }
  }
  return best.back();
}

TEST(StripTable, HasTheBestStripOfEveryLengthAndWidthAndItsContent) {
  ForEachSeed(60, [](unsigned seed) {
    std::mt19937 random(seed);
    const auto draw = [&random](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
    TIntBoxList boxes;
    std::set<int> sides;
    for (int k = draw(1, 6); k > 0; --k) {
      boxes.emplace_back(draw(2, 30), draw(2, 30), k, draw(1, 9), 0);
      boxes.back().Area = draw(0, 400);
      sides.insert({boxes.back().A, boxes.back().B});
    }
    const std::vector<int> widths(sides.begin(), sides.end());
    const TRaster raster(draw(40, 90), draw(20, 40), boxes, true, true);
    const TStripTable table(boxes, raster, widths);
    for (int j = 0; j < raster.SizeL; ++j) {
      const int length = raster.RasterL[static_cast<std::size_t>(j)];
      int strip = table.First(j);
      Int64 value = 0;
      for (const int width : widths) {
        if (strip < table.Past(j) && table[strip].Width == width) value = table[strip++].Value;
        ASSERT_EQ(value, BestStrip(boxes, width, length)) << "width " << width << ", length " << length;
      }
      ASSERT_EQ(strip, table.Past(j));
      for (strip = table.First(j); strip < table.Past(j); ++strip) {
        int used = 0;
        value = 0;
        for (const TStripPart& part : table.Parts(table[strip])) {
          const TIntBox& box = boxes[static_cast<std::size_t>(part.Box)];
          ASSERT_LE(part.Count, box.Amount);
          used += part.Count * LengthIn(box, table[strip].Width);
          value += part.Count * box.Area;
        }
        ASSERT_LE(used, length);
        ASSERT_EQ(value, table[strip].Value);
      }
    }
  });
}

}  // namespace
}  // namespace platenest::detail
