#include <gmock/gmock.h>

#include <set>

#include "ForEachSeed.h"
#include "PatternFault.h"
#include "platenest/UCircleNest/MaxCirclePacking.h"

namespace platenest {
namespace {

// Corner blocks alone, on a plate of W by H pitches.
struct TCornerProbe : TMaxCirclePacking {
  using TMaxCirclePacking::PlaceInfo;
  using TMaxCirclePacking::Result;

  TCornerProbe(double W, double H) : TMaxCirclePacking(TVRect2D::FromSize(W, H), 0.5) {
    BeginTrials();
    TryCornerBlocks();
    if (Result() > 0) ShapeResultPt();
  }
  // This block and no other one.
  void TryOnly(int Columns, int Rows) {
    BeginTrials();
    TryMethod2(Columns, Rows);
    if (Result() > 0) ShapeResultPt();
  }
  // The mode; for corners packed by hand the lines of both strips, below 0; 1000 more for stretched strips.
  int Variant() const {
    const TPlaceInfo& info = PlaceInfo();
    return info.AddMode == 0 ? -10 * info.Rows - info.Columns : info.AddMode + (info.Spec ? 1000 : 0);
  }
};

TEST(MaxCircleCorner, EveryBlockIsLaidOutWithTheCountThatItTells) {
  std::set<int> seen;
  ForEachSeed(1500, [&seen](unsigned Seed) {
    SetSeed(Seed);
    const double most = Seed % 3 == 0 ? 16 : 7;
    const double w = RandomExtent(2, most);
    const double h = RandomExtent(2, most);
    TCornerProbe probe(w, h);
    EXPECT_EQ(TCornerProbe(h, w).Result(), probe.Result()) << "on its side, " << w << " x " << h;
    for (int columns = 2; columns <= w; ++columns)
      for (int rows = 2; rows <= h; ++rows) {
        probe.TryOnly(columns, rows);
        EXPECT_EQ(PatternFault(probe.ResultPt(), probe.Result(), w, h), "");
        EXPECT_EQ(probe.FallbackCount(), 0) << columns << " and " << rows << " on " << w << " x " << h;
        if (probe.Result() > 0) seen.insert(probe.Variant());
      }
  });
  EXPECT_THAT(seen, testing::ElementsAre(-33, -32, -31, -23, -22, -21, -13, -12, -11, 10, 20, 30, 1030, 1040));
}

// Plates that the strips need to the last digit.
TEST(MaxCircleCorner, TightPlatesHoldTheirCounts) {
  constexpr double line = 0.8660254037845;
  struct TCase {
    int Block, LinesX, LinesY, Count;
  };
  for (const auto& [block, linesX, linesY, count] :
       {TCase{2, 1, 1, 7}, TCase{2, 2, 2, 13}, TCase{2, 2, 3, 16}, TCase{3, 2, 2, 22}, TCase{3, 3, 2, 26},
        TCase{3, 3, 3, 31}, TCase{4, 2, 2, 33}}) {
    const double w = block + linesX * line;
    const double h = block + linesY * line;
    const TCornerProbe probe(w, h);
    EXPECT_EQ(probe.Result(), count) << w << " x " << h;
    EXPECT_EQ(PatternFault(probe.ResultPt(), count, w, h), "");
    EXPECT_LT(TCornerProbe(w - 1e-6, h).Result(), count) << w << " x " << h;
  }
}

}  // namespace
}  // namespace platenest
