#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <utility>

#include "ForEachSeed.h"
#include "PatternFault.h"
#include "platenest/UCircleNest/MaxCirclePacking.h"

namespace platenest {
namespace {

// Triangles alone, on a plate of W by H pitches.
struct TTriangleProbe : TMaxCirclePacking {
  using TMaxCirclePacking::PlaceInfo;
  using TMaxCirclePacking::Result;

  TTriangleProbe(double W, double H) : TMaxCirclePacking(TVRect2D::FromSize(W, H), 0.5) {
    BeginTrials();
    TriangleDivide();
    ShapeResultPt();
  }
};

TEST(MaxCircleTriangle, EveryEndIsLaidOutWithTheCountThatItTells) {
  std::set<std::pair<int, bool>> seen;
  ForEachSeed(3000, [&seen](unsigned Seed) {
    SetSeed(Seed);
    const double most = Seed % 3 == 0 ? 30 : 9;
    const double w = std::max(RandomExtent(2.8, most), 4.47);
    const double h = RandomExtent(2.8, most);
    const TTriangleProbe probe(w, h);
    EXPECT_EQ(PatternFault(probe.ResultPt(), probe.Result(), w, h), "");
    EXPECT_EQ(probe.FallbackCount(), 0) << w << " x " << h;
    EXPECT_EQ(TTriangleProbe(h, w).Result(), probe.Result()) << "on its side, " << w << " x " << h;
    seen.insert({probe.PlaceInfo().AddMode, probe.PlaceInfo().Direct});
  });
  EXPECT_EQ(seen.size(), 8u) << "four ends, along X and along Y";
}

// The densest known packing of the first plate has 390 circles.
TEST(MaxCircleTriangle, EndsHoldWhatTheyCan) {
  struct TCase {
    double W, H;
    int Mode, Count;
  };
  for (const auto& [w, h, mode, count] :
       {TCase{20.965788, 16.7726305, 1, 390}, TCase{13.866, 11.25, 2, 167}, TCase{15.5594, 5.2094, 3, 84},
        TCase{38.8506, 20.6673, 2, 894}, TCase{7.73, 7.73, 4, 60}}) {
    const TTriangleProbe probe(w, h);
    EXPECT_EQ(probe.Result(), count) << w << " x " << h;
    EXPECT_EQ(probe.PlaceInfo().AddMode, mode) << w << " x " << h;
    EXPECT_EQ(PatternFault(probe.ResultPt(), probe.Result(), w, h), "");
  }
}

}  // namespace
}  // namespace platenest
