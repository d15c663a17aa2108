#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

#include "ForEachSeed.h"
#include "platenest/UCircleNest/MaxCirclePacking.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Random.h"

namespace platenest {
namespace {

// Stacks of rows alone, on a plate of W by H pitches with circles of diameter 1.
struct TStandProbe : TMaxCirclePacking {
  using TMaxCirclePacking::CalcRef;
  using TMaxCirclePacking::PlaceInfo;
  using TMaxCirclePacking::Result;

  TStandProbe(double W, double H) : TMaxCirclePacking(TVRect2D::FromSize(W, H), 0.5), FW(W), FH(H) {
    BeginTrials();
    TryMethodNew();
    ShapeResultPt();
  }

  // The first thing wrong with the layout, or nothing.
  std::string Fault() const {
    const double oler = 2 / std::numbers::sqrt3 * (FW - 1) * (FH - 1) + FW + FH - 1;
    if (Result() > oler + 1e-9) return "more than any packing holds";
    if (Result() != static_cast<int>(ResultPt().size())) return "other count than told";
    if (FallbackCount() > 0) return "fell back";
    TVPoint2DList points = ResultPt();
    std::ranges::sort(points, {}, &TPoint2D::X);
    for (auto p = points.begin(); p != points.end(); ++p) {
      if (std::min({p->X, p->Y, FW - p->X, FH - p->Y}) < 0.5 - 2e-9) return "outside";
      for (auto q = p + 1; q != points.end() && q->X < p->X + 1; ++q)
        if (p->DistanceTo(*q) < 1 - 1e-9)
          return "too near: " + testing::PrintToString(std::vector{p->X, p->Y, q->X, q->Y, p->DistanceTo(*q)});
    }
    return "";
  }

  std::string Name() const {
    const TPlaceInfo& info = PlaceInfo();
    return testing::PrintToString(std::vector{FW, FH}) + " mode " + std::to_string(info.AddMode) + " direct " +
           std::to_string(info.Direct) + " rest row " + std::to_string(info.NewState) + " counts " +
           testing::PrintToString(info.ChooseTypeNum) + " of " + std::to_string(Result());
  }

 private:
  double FW;
  double FH;
};

double RandomIn(double Low, double High) {
  return Low + (High - Low) * Random(1 << 30) / (1 << 30);
}

TEST(MaxCircleStand, EveryStackIsLaidOutWithTheCountThatItTells) {
  ForEachSeed(3000, [](unsigned Seed) {
    SetSeed(Seed);
    const double most = Seed % 10 == 0 ? 40 : 12;
    const TStandProbe probe(RandomIn(3, most), RandomIn(3, most));
    EXPECT_EQ(probe.Fault(), "") << probe.Name();
  });
}

}  // namespace
}  // namespace platenest
