#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <string>
#include <vector>

#include "ForEachSeed.h"
#include "platenest/UCircleNest/MaxCirclePacking.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Random.h"

namespace platenest {
namespace {

// Stacks of rows alone, in a box of W by H pitches.
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
    if (Result() > oler + 1e-6) return "more than any packing holds";
    if (Result() != Size(ResultPt())) return "other count than told";
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

  std::string Variant() const {
    const TPlaceInfo& info = PlaceInfo();
    return std::string(info.Spec ? "tight" : "loose") + (info.Direct ? " along x" : " along y") + " mode " +
           std::to_string(info.AddMode) + (info.NewState ? " with rest row" : "");
  }

 private:
  double FW;
  double FH;
};

double RandomIn(double Low, double High) {
  return Low + (High - Low) * Random(1 << 30) / (1 << 30);
}

// Whole pitches and a fraction, often at the limits of the row kinds.
double RandomWidth(double Most) {
  if (Random(3) > 0) return RandomIn(3, Most);
  const double limits[] = {0, 0.366025, 0.430605, 0.5, 0.8660254037845, 1};
  return 3 + Random(4) + limits[Random(6)] + (Random(2) == 0 ? 1 : -1) * std::pow(10.0, -RandomIn(3, 12));
}

// A height that rows found on a plate of this width fill to the last thousandth.
double FilledHeight(const TPlaceInfo& Rows) {
  const double top = Rows.AddMode == 2 ? 0.8660254037845 : 0;
  const double rest = Rows.NewState ? Rows.RestWid : 0;
  const double height = 1 + top + rest + Random(3) * 1.732050807569 + Random(4) * Rows.SPecAdj +
                        Random(3) * (Rows.Spec ? 1.732050807569 + Rows.RestWid : Rows.RestWid);
  return std::max(3.0, height - (Random(3) - 1) * std::pow(10.0, -RandomIn(3, 12)));
}

TEST(MaxCircleStand, EveryStackIsLaidOutWithTheCountThatItTells) {
  std::map<std::string, int> seen;
  std::vector<int> kinds(7);  // pieces of the three loose and four tight ones
  const auto check = [&](const TStandProbe& Probe, double W, double H) {
    EXPECT_EQ(Probe.Fault(), "") << testing::PrintToString(std::vector{W, H}) << Probe.Variant() << " of kinds "
                                 << testing::PrintToString(Probe.PlaceInfo().ChooseTypeNum);
    if (Probe.Result() == 0) return;
    ++seen[Probe.Variant()];
    const bool isTight = Probe.PlaceInfo().Spec;
    for (int i = 0; i < (isTight ? 4 : 3); ++i) kinds[(isTight ? 3 : 0) + i] += Probe.PlaceInfo().ChooseTypeNum[i];
  };
  ForEachSeed(4000, [&](unsigned Seed) {
    SetSeed(Seed);
    const double most = Seed % 20 == 0 ? 40 : 10;
    const double width = std::max(3.0, RandomWidth(most));
    const double height = std::max(3.0, RandomWidth(most));
    const TStandProbe probe(width, height);
    check(probe, width, height);
    EXPECT_EQ(TStandProbe(height, width).Result(), probe.Result());
    if (!probe.PlaceInfo().Direct) return;
    const double filled = FilledHeight(probe.PlaceInfo());
    check(TStandProbe(width, filled), width, filled);
  });
  EXPECT_EQ(seen.size(), 14u) << testing::PrintToString(seen);
  EXPECT_THAT(kinds, testing::Each(testing::Gt(100)));
}

// Counts that were laid out by other means; the plates are in radii.
TEST(MaxCircleStand, KnownCounts) {
  struct TCase {
    double W, H;
    int Count;
  };
  constexpr TCase cases[] = {
      {15.994862, 15.994862, 66},  // hex and rest, hex and turned
      {16.722128, 16.722128, 71},  // a quad, two staggers
      {17.815984, 17.815984, 81},  // a hexagonal row on tight ones
      {18.536698, 18.536698, 88},  // two quads under a staggered row
      {12.8036, 12.6908, 41},      // a quad whose two ends fit on one side of its inner row only
      {24.5396, 11.3732, 71},      // a quad and a staggered row
      {54.1386, 35.9192, 535},     // a rest row first
      {5.4642, 5.8638, 7},         // the rest row alone
  };
  for (const TCase& c : cases) EXPECT_EQ(TStandProbe(c.W / 2, c.H / 2).Result(), c.Count) << c.W << " by " << c.H;
}

// Thousandths let two staggers of height 2 each into a length of 3.9997; the next best has one, and a pair or a quad.
TEST(MaxCircleStand, AStackThatIsATouchTooHighGivesWayToTheNextBest) {
  EXPECT_EQ(TStandProbe(3, 5).Result(), 15);
  EXPECT_EQ(TStandProbe(3, 4.9997).Result(), 14);
}

TEST(MaxCircleStand, NoStackBetweenTheFractionsOfLooseAndTightRows) {
  EXPECT_EQ(TStandProbe(4.5, 5.866).Result(), 0);
  EXPECT_GT(TStandProbe(4.5, 5.8661).Result(), 0);
  EXPECT_GT(TStandProbe(4.4999, 5.866).Result(), 0);
  EXPECT_THROW(TStandProbe::CalcRef(3.5, 0.5), TAssertionError);
  EXPECT_NO_THROW(TStandProbe::CalcRef(3.5, 0.4999));
}

}  // namespace
}  // namespace platenest
