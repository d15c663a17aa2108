#include <gmock/gmock.h>

#include <limits>
#include <numbers>

#include "ForEachSeed.h"
#include "LatticeCheck.h"
#include "Shapes.h"
#include "platenest/foundation/Errors.h"

namespace platenest {
namespace {

using TArray = TArrayInfoAlgo;
using TLattice = TPair<TPoint2D, TPoint2D>;

const TVHPolygonList kNoShape;
const TVHPolygonList kUnitSquare{TVHPolygon{TVPolyline2D{{0, 0}, {1, 0}, {1, 1}, {0, 1}}}};
const double kNan = std::numeric_limits<double>::quiet_NaN();

TPath Box(Int64 Left, Int64 Bottom, Int64 Right, Int64 Top) {
  constexpr Int64 u = 100000;
  return {{Left * u, Bottom * u}, {Right * u, Bottom * u}, {Right * u, Top * u}, {Left * u, Top * u}};
}

// The no-fit polygon of the unit square and itself.
const TPaths kUnitNfp{Box(-1, -1, 1, 1)};

void ExpectNear(const TPoint2D& Found, const TPoint2D& Wanted, double Tol = 1e-5) {
  EXPECT_LE(Found.DistanceTo(Wanted), Tol) << Found.X << ' ' << Found.Y;
}

auto Raises(const std::string& Text) {
  return testing::ThrowsMessage<TNestError>(testing::HasSubstr(Text));
}

TEST(ArrayInfo, NearestOrOutermostCrossings) {
  const std::tuple<std::vector<Int64>, bool, double, double> cases[] = {
      {{-400000, -100000, 100000, 400000}, false, 1, 1},
      {{-400000, -100000, 100000, 400000}, true, 4, 4},
      {{-300000, 0}, false, 0, 3},
      {{-500000}, true, -5, 5},  // signed: the outermost crossing lies on the wrong side
      {{500000}, false, 5, 0},
      {{0}, false, 0, 8.5e302},  // without a positive one the other sentinel is left standing
      {{}, true, 0, 0}};
  for (const auto& [crossings, separate, ahead, back] : cases)
    EXPECT_THAT(TArray::CalcArrayTranss(crossings, separate),
                testing::Pair(testing::DoubleEq(ahead), testing::DoubleEq(back)));
}

TEST(ArrayInfo, ScansTheNfpThatIsGivenOrMade) {
  EXPECT_NEAR(TArray::CalcArrayTransX(kUnitSquare, {}, 0.1, false), 1.1, 1e-5);
  EXPECT_THAT([] { TArray::CalcArrayTransX(kNoShape, {}, 0, false); }, Raises("NFP图源错误"));
  TPaths nfp;
  TArray::CalcNFP(kUnitSquare, 0.0000199, nfp);  // truncated to one unit
  EXPECT_EQ(TPathUtils::BoundBox(nfp).Right, 100001);
  // Only plain copies without Separate see a notch that ends 15 units above the axis.
  TPaths notched{Box(-3, -3, 3, 3)};
  notched[0].insert(notched[0].begin() + 3, {{150000, 300000}, {100000, 15}, {50000, 300000}});
  EXPECT_DOUBLE_EQ(TArray::CalcArrayTransX(kNoShape, notched, 0, false), 1);
  EXPECT_DOUBLE_EQ(TArray::CalcArrayTransX(kNoShape, notched, 0, true), 3);
  EXPECT_DOUBLE_EQ(TArray::CalcArrayTransXRotate180(kNoShape, notched, 0, false).first, 3);
}

// Copies of an L far from the origin touch it, and no more.
TEST(ArrayInfo, TurnedAndMirroredCopiesStayOnTheirBoxCentre) {
  const TVHPolygonList shape{TVHPolygon{TVPolyline2D{{10, 20}, {13, 20}, {13, 21}, {11, 21}, {11, 22}, {10, 22}}}};
  for (const test::TAxisForm& form : test::kAxisForms) {
    SCOPED_TRACE(form.Name);
    const TPaths copy = test::PathsOf(test::AboutBoxCenter(shape, form.Copy));
    const double ahead = form.First(shape, {}, 0, false).first;
    EXPECT_LE(test::DepthAt(test::PathsOf(shape), copy, ahead * form.Axis), test::kAllowedDepth);
    EXPECT_GT(test::DepthAt(test::PathsOf(shape), copy, (ahead - 0.01) * form.Axis), 0.005);
  }
}

TEST(ArrayInfo, RowOfCopies) {
  TPaths group;
  TArray::CalcGroupNFP(kUnitNfp, 2, {2, 0}, group);
  ASSERT_EQ(group.size(), 1u);
  EXPECT_EQ(group[0].front(), group[0].back());
  EXPECT_EQ(TPathUtils::BoundBox(group), (TIntRect{-500000, 500000, 100000, -100000}));
  TArray::CalcGroupNFP(kUnitNfp, std::numeric_limits<int>::min(), {2, 0}, group);
  EXPECT_TRUE(group.empty());
  // A row that leans over: its copy at (1, 1) still reaches down to the axis.
  EXPECT_NEAR(TArray::Calc2ndArrayTransX(kNoShape, {0.5, 0.5}, kUnitNfp, 0, true), 2, 1e-5);
  // Nothing is left of this polygon, so there is nothing to keep clear of.
  EXPECT_EQ(TArray::Calc2ndArrayTransX(kUnitSquare, {0.5, -0.5}, {}, -2, true), 0);
  // A negative step makes no row; then the shape speaks again, as if there were no first vector.
  EXPECT_NEAR(TArray::Calc2ndArrayTransX(kUnitSquare, {0.5, -0.5}, kUnitNfp, 0.5, true), 1.5, 1e-5);
}

TEST(ArrayInfo, VectorsThatMakeNoRowAreRefused) {
  TPaths nfp = kUnitNfp;
  for (const double step : {0.0, 1e-300, 1e-7, kNan, std::numeric_limits<double>::infinity()}) {
    EXPECT_THROW(TArray::Calc2ndArrayTransX(kNoShape, {0, step}, kUnitNfp, 0, true), TArgumentError) << step;
    EXPECT_THROW(TArray::CalcBest2ndArrayTrans(nfp, {step, 0}, 1e-3), TArgumentError) << step;
  }
  EXPECT_THROW(TArray::CalcGroupNFP(kUnitNfp, 2, {1e14, 0}, nfp), TArgumentError);
  EXPECT_THROW(TArray::CalcNFP(kUnitSquare, kNan, nfp), TArgumentError);
}

TEST(ArrayInfo, KindsOfOneVector) {
  const TPaths two{Box(-1, -2, 1, 3), Box(-9, -9, 9, 9)};
  const TPoint2D wanted[] = {{1, 0}, {9, 0}, {0, 9}, {1, 3}};
  for (int type = 0; type < 4; ++type) ExpectNear(TArray::CalcArrayTrans(two, type, true), wanted[type]);
  ExpectNear(TArray::CalcFarthest1stArrayTrans(kUnitNfp[0]), {-1, -1});      // the first of equals
  ExpectNear(TArray::CalcNearest1stArrayTrans(Box(-1, -9, 9, 9)), {-1, 0});  // on the closing edge
  EXPECT_THAT([&] { TArray::CalcArrayTrans(two, 4, false); },
              Raises("[Error] TArrayInfoAlgo.CalcArrayTrans: 类型参数错误"));
}

// Hollow corners and the nearest edges compete by what the two polygons share; the winner points up.
TEST(ArrayInfo, FirstVector) {
  ExpectNear(TArray::Calc1stArrayTrans(Box(-2, -1, 2, 1)), {0, 1});
  TPath hollow = Box(-3, -3, 1, 3);
  hollow.insert(hollow.begin() + 1, {{-200000, -300000}, {-100000, -250000}, {0, -300000}});
  ExpectNear(TArray::Calc1stArrayTrans(hollow), {1, 0});
  hollow[2] = {-70000, -50000};
  ExpectNear(TArray::Calc1stArrayTrans(hollow), {0.7, 0.5});
}

TEST(ArrayInfo, ShortestRepresentative) {
  const TPoint2D cases[][3] = {{{10, 0}, {23, 7}, {3, 7}},     {{10, 0}, {27, 7}, {7, 7}},
                               {{0, 10}, {7, 23}, {7, 3}},     {{0, 10}, {0, -3}, {0, 3}},
                               {{10, 0}, {-3, 0}, {3, 0}},     {{0, 10}, {-7, 3}, {7, 7}},
                               {{10, 1}, {23, 7}, {3, 5}},     {{3, 4}, {-1, -7}, {-2, 3}},
                               {{0, -10}, {3, -4}, {3, 6}},  // a first vector that points down does not run away
                               {{10, 0}, {1e9 + 3, 7}, {3, 7}}};
  for (const auto& [first, second, unit] : cases) ExpectNear(TArray::ToUnit2ndArrayTrans(first, second), unit, 1e-6);
  EXPECT_THROW(TArray::ToUnit2ndArrayTrans({0, 0}, {1, 1}), TNestError);
  EXPECT_THROW(TArray::ToUnit2ndArrayTrans({1e-9, 0}, {1e9, 1}), TNestError);
}

TEST(ArrayInfo, BestPlaceIsNearTheRowThenNearTheOrigin) {
  TNullable<TIntPoint> best;
  const auto judge = [&](Int64 X, Int64 Y, double Tol) {
    const TVRect2D bound = TVRect2D::FromBounds(1, -1, -1, 1);
    TArray::UpdateBest2ndArrayTrans(TPathUtils::CreateIntPoint(X, Y), best, Tol, bound, std::numbers::pi / 2);
    return best.Value;
  };
  judge(0, 0, 0);
  judge(100001, 0, 0);
  EXPECT_TRUE(best.IsNull());  // the origin itself and what lies outside never count
  EXPECT_EQ(judge(50, 40, 0), TIntPoint(-40, 50));
  EXPECT_EQ(judge(51, 0, 0), TIntPoint(-40, 50));
  EXPECT_EQ(judge(51, 0, 1), TIntPoint(0, 51));  // equal within the tolerance of path units: the nearer one
  EXPECT_EQ(judge(-51, 0, 1), TIntPoint(0, 51));
}

TEST(ArrayInfo, PlacesOnTheBorderOfARow) {
  // A first vector along X never tries the place straight above the origin, only vertices and middles.
  const TPaths group{{{-400000, 135000}, {300000, 100000}, {300000, -130000}, {-400000, -130000}, {-400000, 135000}}};
  const auto placeBeside = [&](const TPoint2D& First) {
    return TArray::CalcBest2ndArrayTransWithGroupNFP(group, First, 1e-3, TVRect2D::FromBounds(2, -2, -2, 2)).Value;
  };
  EXPECT_EQ(placeBeside({1, 0}), TIntPoint(-50000, 117500));
  EXPECT_EQ(placeBeside({0, 1}), TIntPoint(0, 115000));
  // Else where edges of the row run on a side of the bound; large coordinates do not hide that.
  constexpr Int64 n = 70000000000001;
  const TVRect2D bound = TIntRect{-n, n, n, -n}.ToRect(1.0) * 1e-5;
  const TPaths wide{{{-n, -n}, {9 * n, -n}, {9 * n, n}, {-5 * n, n}, {-5 * n, -n}}};
  EXPECT_EQ(TArray::CalcBest2ndArrayTransWithGroupNFP2(wide, {1, 0}, 1e-3, bound).Value, TIntPoint(-n, n));
  TPaths none;
  const TPoint2D first{1, 0};
  EXPECT_THAT([&] { TArray::CalcBest2ndArrayTrans(none, first, 1e-3); },
              Raises("[ERROR] TArrayInfoAlgo.CalcBest2ndArrayTrans: 无法计算合理的结果"));
}

// Outlines that are turned against each other must not cancel where copies of the row overlap, also in a polygon that
// an earlier call has oriented. A later path within the first one is a hole, however it ran before.
TEST(ArrayInfo, SeveralOutlinesForbidTogether) {
  TPaths nfp{Box(-2, -1, 2, 1), Box(3, -1, 5, 1), Box(-5, -1, -3, 1)};
  ClipperLib::ReversePath(nfp[0]);
  for (int call = 0; call < 2; ++call) EXPECT_NEAR(TArray::CalcBest2ndArrayTrans(nfp, {1, 0}, 1e-3).Y, 1, 1e-9);
  EXPECT_TRUE(ClipperLib::Orientation(nfp[0]));  // in place
  TPaths holed{Box(-9, -9, 9, 9), Box(2, 2, 4, 4)};
  ExpectNear(TArray::CalcBest2ndArrayTrans(holed, {12, 0}, 1e-3), {2, 2});
}

TEST(ArrayInfo, DirectedSecondVector) {
  ExpectNear(TArray::Calc2ndArrayTrans(kUnitNfp, {0.5, 0}, {0, -3}), {0, -1});
  ExpectNear(TArray::Calc2ndArrayTrans(kUnitNfp, {1, 0}, {3, 1}), {3, 1}, 1e-4);  // past two neighbours
  // Past a quarter turn the row is too short: the copy at (-3, 1) would be free, this one lies in the neighbour.
  ExpectNear(TArray::Calc2ndArrayTrans(kUnitNfp, {1, 0}, {-3, 1}), {-1, 1.0 / 3});
  const auto refuses = [](const TPaths& NFP, const TPoint2D& First, const TPoint2D& Dir, const char* Start,
                          const char* Reason) {
    EXPECT_THAT([&] { TArray::Calc2ndArrayTrans(NFP, First, Dir); },
                Raises(std::string(Start) + " TArrayInfoAlgo.Calc2ndArrayTrans: " + Reason));
  };
  refuses({}, {0, 0}, {0, 0}, "[Error]", "NFP为空");
  refuses(kUnitNfp, {1e-12, 0}, {0, 0}, "[Error]", "ArrayTrans1参数错误");
  refuses(kUnitNfp, {1, 0}, {0, 1e-12}, "[Error]", "Dir参数错误");
  for (const double angle : {0.9e-6, -0.9e-6, std::numbers::pi})
    refuses(kUnitNfp, {2, 1}, TPoint2D{4, 2}.RotateBy(angle), "[Error]", "2个阵列位移方向相同");
  refuses({Box(2, 2, 3, 3)}, {1, 0}, {0, 1}, "[ERROR]", "无法计算合理的结果");
}

TEST(ArrayInfo, CopiesOfRandomShapesKeepClear) {
  ForEachSeed(11, [](unsigned Seed) {
    const TVHPolygonList shape{MakeShape(kShapeKinds[Seed % kShapeKinds.size()], 12, 40, Seed)};
    const TPaths part = test::PathsOf(shape);
    const auto expectClear = [&](const TLattice& Lattice) {
      EXPECT_LE(test::LatticeDepth(part, Lattice), test::kAllowedDepth);
      EXPECT_GE(test::CellArea(Lattice), RegionArea(part) * 0.999);
    };
    TPaths nfp;
    TArray::CalcNFP(shape, 0, nfp);
    for (int flags = 0; flags < 8; ++flags) {
      SCOPED_TRACE(flags);
      const TLattice lattice = TArray::CalcArrayInfo(nfp, flags & 1, flags & 2, flags & 4, 1e-3);
      expectClear(lattice);
      EXPECT_TRUE(flags % 4 == 0 || (flags & 1 ? lattice.first.Y : lattice.first.X) == 0);
      EXPECT_TRUE(flags % 4 < 3 || lattice.second.X == 0);
    }
    const TPoint2D first = TArray::Calc1stArrayTrans(nfp.front());
    for (const double angle : {0.3, 1.0, std::numbers::pi / 2, 3.6})
      expectClear({first, TArray::Calc2ndArrayTrans(nfp, first, first.RotateBy(angle))});
    for (const test::TAxisForm& form : test::kAxisForms) {
      SCOPED_TRACE(form.Name);
      for (const bool separate : {false, true})
        EXPECT_LE(test::AxisFormDepth(form, shape, separate), test::kAllowedDepth);
    }
  });
}

}  // namespace
}  // namespace platenest
