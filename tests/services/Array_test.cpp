#include <gmock/gmock.h>

#include <limits>
#include <numbers>

#include "ForEachSeed.h"
#include "LatticeCheck.h"
#include "Shapes.h"
#include "platenest/foundation/Errors.h"
#include "platenest/services/arrayInfo.h"

namespace platenest {
namespace {

using testing::HasSubstr;

using TArray = TArrayInfoAlgo;
using TLattice = TPair<TPoint2D, TPoint2D>;

const TVHPolygonList kNoShape;

TPath Box(Int64 Left, Int64 Bottom, Int64 Right, Int64 Top) {
  constexpr Int64 unit = 100000;
  return {{Left * unit, Bottom * unit},
          {Right * unit, Bottom * unit},
          {Right * unit, Top * unit},
          {Left * unit, Top * unit}};
}

TVHPolygonList Polygon(std::initializer_list<TPoint2D> Points) {
  return {TVHPolygon{TVPolyline2D(TVPoint2DList(Points))}};
}

TVHPolygonList UnitSquare() {
  return Polygon({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
}

// The no-fit polygon of the unit square and itself.
TPaths UnitNfp() {
  return {Box(-1, -1, 1, 1)};
}

void ExpectNear(const TPoint2D& Found, const TPoint2D& Wanted, double Tol = 1e-5) {
  EXPECT_NEAR(Found.X, Wanted.X, Tol);
  EXPECT_NEAR(Found.Y, Wanted.Y, Tol);
}

template <class Function>
std::string ErrorOf(Function F) {
  try {
    F();
  } catch (const TNestError& error) {
    return error.Text();
  }
  return "no error";
}

TEST(ArrayInfo, NearestOrOutermostCrossings) {
  struct TCase {
    std::vector<Int64> Crossings;
    TPair<double, double> Near, Separate;
  };
  const TCase cases[] = {{{-400000, -100000, 100000, 400000}, {1, 1}, {4, 4}},
                         {{-300000, 0}, {0, 3}, {0, 3}},
                         {{500000}, {5, 0}, {5, 5}},
                         {{-500000}, {0, 5}, {-5, 5}},  // signed: the outermost crossing lies on the wrong side
                         {{0}, {0, 8.5e302}, {0, 0}},
                         {{}, {0, 8.5e302}, {0, 0}}};  // without a positive one the other sentinel is left standing
  for (const TCase& c : cases) {
    const auto near = TArray::CalcArrayTranss(c.Crossings, false);
    const auto separate = TArray::CalcArrayTranss(c.Crossings, true);
    EXPECT_DOUBLE_EQ(near.first, c.Near.first);
    EXPECT_DOUBLE_EQ(near.second, c.Near.second);
    EXPECT_DOUBLE_EQ(separate.first, c.Separate.first);
    EXPECT_DOUBLE_EQ(separate.second, c.Separate.second);
  }
}

TEST(ArrayInfo, ShapeIsOnlyLookedAtWithoutNfp) {
  EXPECT_NEAR(TArray::CalcArrayTransX(UnitSquare(), {}, 0, false), 1, 1e-5);
  EXPECT_NEAR(TArray::CalcArrayTransX(UnitSquare(), {}, 0.1, false), 1.1, 1e-5);
  EXPECT_NEAR(TArray::CalcArrayTransY(UnitSquare(), {}, 0.1, true), 1.1, 1e-5);
  EXPECT_NEAR(TArray::CalcArrayTransY(UnitSquare(), {Box(-2, -3, 2, 3)}, 0.1, true), 3, 1e-5);
  EXPECT_THAT(ErrorOf([] { TArray::CalcArrayTransX(kNoShape, {}, 0, false); }), HasSubstr("NFP图源错误"));
}

TEST(ArrayInfo, OffsetIsTruncatedToPathUnits) {
  TPaths nfp;
  TArray::CalcNFP(UnitSquare(), 0.0000199, nfp);
  EXPECT_EQ(TPathUtils::BoundBox(nfp).Right, 100001);
}

// Only plain copies without Separate see a notch that ends 15 units above the axis.
TEST(ArrayInfo, NearScanTolerance) {
  const TPaths notched{{{-300000, -300000},
                        {300000, -300000},
                        {300000, 300000},
                        {150000, 300000},
                        {100000, 15},
                        {50000, 300000},
                        {-300000, 300000}}};
  EXPECT_DOUBLE_EQ(TArray::CalcArrayTransX(kNoShape, notched, 0, false), 1);
  EXPECT_DOUBLE_EQ(TArray::CalcArrayTransX(kNoShape, notched, 0, true), 3);
  EXPECT_DOUBLE_EQ(TArray::CalcArrayTransXRotate180(kNoShape, notched, 0, false).first, 3);
  EXPECT_DOUBLE_EQ(TArray::CalcArrayTransXMirror(kNoShape, notched, 0, false).first, 3);
}

TEST(ArrayInfo, TurnedAndMirroredCopiesStayOnTheirBoxCentre) {
  //  an L: 3 wide, 2 high, one thick, far from the origin
  const TVHPolygonList shape = Polygon({{10, 20}, {13, 20}, {13, 21}, {11, 21}, {11, 22}, {10, 22}});
  for (const test::TAxisForm& form : test::kAxisForms) {
    SCOPED_TRACE(form.Name);
    const TPaths fixed = test::PathsOf(shape);
    const TPaths copy = test::PathsOf(test::AboutBoxCenter(shape, form.PointMove));
    for (const bool separate : {false, true}) {
      const auto [ahead, back] = form.First(shape, {}, 0, separate);
      EXPECT_LE(test::DepthAt(fixed, copy, ahead * form.Axis), test::kAllowedDepth);
      if (separate) continue;  // goes to the end of edges that run on the axis, where the shapes only touch
      EXPECT_GT(test::DepthAt(fixed, copy, (ahead - 0.01) * form.Axis), 0.005);
    }
  }
  EXPECT_NEAR(TArray::CalcArrayTransXRotate180(shape, {}, 0, true).first, 3, 1e-5);
  EXPECT_NEAR(TArray::CalcArrayTransXMirror(shape, {}, 0, true).second, 3, 1e-5);
  EXPECT_NEAR(TArray::CalcArrayTransYMirror(shape, {}, 0, true).first, 2, 1e-5);
}

TEST(ArrayInfo, RowOfCopies) {
  TPaths group;
  TArray::CalcGroupNFP(UnitNfp(), 2, {2, 0}, group);
  ASSERT_EQ(group.size(), 1u);
  EXPECT_EQ(group[0].front(), group[0].back());
  EXPECT_EQ(TPathUtils::BoundBox(group), (TIntRect{-500000, 500000, 100000, -100000}));
  EXPECT_DOUBLE_EQ(TPathUtils::Area(group), 20e10);
  for (const int count : {-1, std::numeric_limits<int>::min()}) {
    TArray::CalcGroupNFP(UnitNfp(), count, {2, 0}, group);
    EXPECT_TRUE(group.empty());
  }
}

TEST(ArrayInfo, SecondVectorClearsTheRow) {
  // A row that leans over: its copy at (1, 1) still reaches down to the axis.
  EXPECT_NEAR(TArray::Calc2ndArrayTransX(kNoShape, {0.5, 0.5}, UnitNfp(), 0, true), 2, 1e-5);
  // Nothing is left of this polygon, so there is nothing to keep clear of.
  EXPECT_EQ(TArray::Calc2ndArrayTransX(UnitSquare(), {0.5, -0.5}, {}, -2, true), 0);
  // A negative step makes no row; then the shape speaks again, as if there were no first vector.
  EXPECT_NEAR(TArray::Calc2ndArrayTransX(UnitSquare(), {0.5, -0.5}, UnitNfp(), 0, true), 1, 1e-5);
  EXPECT_THAT(ErrorOf([] {
                TArray::Calc2ndArrayTransX(kNoShape, {0.5, -0.5}, UnitNfp(), 0, true);
              }),
              HasSubstr("NFP图源错误"));
}

TEST(ArrayInfo, VectorsThatMakeNoRowAreRefused) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  for (const double step : {0.0, 1e-300, 1e-7, nan, inf}) {
    SCOPED_TRACE(step);
    EXPECT_THROW(TArray::Calc2ndArrayTransX(kNoShape, {0, step}, UnitNfp(), 0, true), TArgumentError);
    EXPECT_THROW(TArray::Calc2ndArrayTransYMirror(kNoShape, {step, 0}, UnitNfp(), 0, true), TArgumentError);
    TPaths nfp = UnitNfp();
    EXPECT_THROW(TArray::CalcBest2ndArrayTrans(nfp, {step, 0}, 1e-3), TArgumentError);
  }
  TPaths group;
  EXPECT_THROW(TArray::CalcGroupNFP(UnitNfp(), TArray::kMaxRowCopies + 1, {0, 0}, group), TArgumentError);
  EXPECT_THROW(TArray::CalcGroupNFP(UnitNfp(), 2, {1e14, 0}, group), TArgumentError);
  EXPECT_THROW(TArray::CalcNFP(UnitSquare(), nan, group), TArgumentError);
}

TEST(ArrayInfo, KindsOfOneVector) {
  const TPaths two{Box(-1, -2, 1, 3), Box(-9, -9, 9, 9)};
  ExpectNear(TArray::CalcArrayTrans(two, 0, false), {1, 0});
  ExpectNear(TArray::CalcArrayTrans(two, 1, true), {9, 0});
  ExpectNear(TArray::CalcArrayTrans(two, 2, false), {0, 3});
  ExpectNear(TArray::CalcArrayTrans(two, 3, false), {1, 3});
  ExpectNear(TArray::CalcArrayTrans({}, 0, false), {0, 0});
  ExpectNear(TArray::CalcArrayTrans({}, 3, false), {0, 0});
  ExpectNear(TArray::CalcFarthest1stArrayTrans(Box(-1, -1, 1, 1)), {-1, -1});  // the first of equals
  for (const int type : {-1, 4})
    EXPECT_EQ(ErrorOf([&] { TArray::CalcArrayTrans(two, type, false); }),
              "[Error] TArrayInfoAlgo.CalcArrayTrans: 类型参数错误");
}

TEST(ArrayInfo, LatticeAlongTheAxes) {
  TPaths nfp;
  TArray::CalcNFP(Polygon({{0, 0}, {2, 0}, {0, 1}}), 0, nfp);
  const TLattice lattice = TArray::CalcArrayInfoOnXY(nfp, false);
  ExpectNear(lattice.first, {2, 0});
  ExpectNear(lattice.second, {0, 1});
}

TEST(ArrayInfo, ShortestRepresentative) {
  struct TCase {
    TPoint2D First, Second, Unit;
  };
  const TCase cases[] = {
      {{10, 0}, {23, 7}, {3, 7}},     {{10, 0}, {27, 7}, {7, 7}},  {{0, 10}, {7, 23}, {7, 3}},
      {{0, 10}, {0, -5}, {0, 5}},     {{0, 10}, {-7, 3}, {7, 7}},  {{10, 1}, {23, 7}, {3, 5}},
      {{3, 4}, {-1, -7}, {-2, 3}},    {{0, -10}, {3, -4}, {3, 6}},  // a first vector that points down does not run away
      {{10, 0}, {1e9 + 3, 7}, {3, 7}}};
  for (const TCase& c : cases) ExpectNear(TArray::ToUnit2ndArrayTrans(c.First, c.Second), c.Unit, 1e-6);
  EXPECT_THROW(TArray::ToUnit2ndArrayTrans({0, 0}, {1, 1}), TNestError);
  EXPECT_THROW(TArray::ToUnit2ndArrayTrans({1e-9, 0}, {1e9, 1}), TNestError);
}

TEST(ArrayInfo, BestPlaceIsNearTheRowThenNearTheOrigin) {
  const TVRect2D bound = TVRect2D::FromBounds(1, -1, -1, 1);
  TNullable<TIntPoint> best;
  const auto judge = [&](Int64 X, Int64 Y, double Tol) {
    TArray::UpdateBest2ndArrayTrans(TPathUtils::CreateIntPoint(X, Y), best, Tol, bound, std::numbers::pi / 2);
    return best.HasValue ? best.Value : TIntPoint(0, 0);
  };
  judge(0, 0, 0);
  judge(100001, 0, 0);
  EXPECT_TRUE(best.IsNull());  // the origin itself and what lies outside never count
  EXPECT_EQ(judge(50, 40, 0), TIntPoint(-40, 50));
  EXPECT_EQ(judge(51, 0, 0), TIntPoint(-40, 50));
  EXPECT_EQ(judge(51, 0, 1), TIntPoint(0, 51));  // equal within the tolerance of path units: the nearer one
  EXPECT_EQ(judge(-51, 0, 1), TIntPoint(0, 51));
}

// A first vector along X never tries the place straight above the origin, only vertices and middles.
TEST(ArrayInfo, PlacesOnTheAxesHangOnTheFirstVectorsY) {
  const TPaths group{{{-400000, 100000}, {300000, 135000}, {300000, -130000}, {-400000, -130000}, {-400000, 100000}}};
  const TVRect2D bound = TVRect2D::FromBounds(2, -2, -2, 2);
  const auto flat = TArray::CalcBest2ndArrayTransWithGroupNFP(group, {1, 0}, 1e-3, bound);
  EXPECT_EQ(flat.Value, TIntPoint(-50000, 117500));
  const auto upright = TArray::CalcBest2ndArrayTransWithGroupNFP(group, {0, 1}, 1e-3, bound);
  EXPECT_EQ(upright.Value, TIntPoint(0, 120000));
}

TEST(ArrayInfo, BoundIsTheLastResort) {
  // No vertex, no middle and no crossing of an axis lies in the bound, but the edges of the row run on its sides; large
  // coordinates do not hide that.
  for (const Int64 size : {Int64{100001}, Int64{70000000000001}}) {
    const TPaths group{{{-size, -size}, {9 * size, -size}, {9 * size, size}, {-5 * size, size}, {-5 * size, -size}}};
    const TVRect2D bound = TIntRect{-size, size, size, -size}.ToRect(1.0) * 1e-5;
    const auto meeting = TArray::CalcBest2ndArrayTransWithGroupNFP2(group, {1, 0}, 1e-3, bound);
    ASSERT_TRUE(meeting.HasValue);
    EXPECT_EQ(meeting.Value, TIntPoint(-size, size));
  }
  EXPECT_TRUE(
      TArray::CalcBest2ndArrayTransWithGroupNFP2({Box(-9, -9, 9, 9)}, {1, 0}, 0, TVRect2D::FromBounds(1, 0, 0, 1))
          .IsNull());
  TPaths apart{Box(5, 5, 6, 6)};
  TPaths empty;
  EXPECT_EQ(ErrorOf([&] {
              TArray::CalcBest2ndArrayTrans(empty, {1, 0}, 1e-3);
            }),
            "[ERROR] TArrayInfoAlgo.CalcBest2ndArrayTrans: 无法计算合理的结果");
}

TEST(ArrayInfo, FreeLatticeOfTheUnitSquare) {
  TPaths nfp = UnitNfp();
  const TLattice lattice = TArray::DoCalcArrayInfo(nfp, 1e-3);
  EXPECT_NEAR(test::CellArea(lattice), 1, 1e-9);
  EXPECT_EQ(test::LatticeDepth(test::PathsOf(UnitSquare()), lattice), 0);
  nfp.clear();
  EXPECT_EQ(ErrorOf([&] { TArray::DoCalcArrayInfo(nfp, 1e-3); }), "[Error] TArrayInfoAlgo.DoCalcArrayInfo: NFP为空");
  EXPECT_THROW(TArray::Calc1stArrayTrans({}), TNestError);
}

// The polygon is turned counter-clockwise in place, so that a second call may see other concave vertices than a first.
TEST(ArrayInfo, NfpIsOrientedInPlace) {
  TPaths nfp = UnitNfp();
  std::reverse(nfp[0].begin(), nfp[0].end());
  TArray::CalcBest2ndArrayTrans(nfp, {1, 0}, 1e-3);
  EXPECT_GT(TPathUtils::Area(nfp), 0);
}

// Outlines that are turned against each other must not cancel where copies of the row overlap, also in a polygon that
// an earlier call has oriented. A later path within the first one is a hole, however it ran before.
TEST(ArrayInfo, SeveralOutlinesForbidTogether) {
  TPaths nfp{Box(-2, -1, 2, 1), Box(3, -1, 5, 1), Box(-5, -1, -3, 1)};
  for (int call = 0; call < 2; ++call) EXPECT_NEAR(TArray::CalcBest2ndArrayTrans(nfp, {1, 0}, 1e-3).Y, 1, 1e-9);
  TPaths holed{Box(-9, -9, 9, 9), Box(2, 2, 4, 4)};
  ExpectNear(TArray::CalcBest2ndArrayTrans(holed, {12, 0}, 1e-3), {2, 2});
}

TEST(ArrayInfo, DirectedSecondVector) {
  ExpectNear(TArray::Calc2ndArrayTrans(UnitNfp(), {2, 0}, {0, 1}), {0, 1});
  ExpectNear(TArray::Calc2ndArrayTrans(UnitNfp(), {0.5, 0}, {0, -3}), {0, -1});
  ExpectNear(TArray::Calc2ndArrayTrans(UnitNfp(), {1, 0}, {3, 1}), {3, 1}, 1e-4);  // past two neighbours
  // Past a quarter turn the row is too short: the copy at (-3, 1) would be free, this one lies in the neighbour.
  ExpectNear(TArray::Calc2ndArrayTrans(UnitNfp(), {1, 0}, {-3, 1}), {-1, 1.0 / 3});
}

TEST(ArrayInfo, DirectedFormChecksInOrder) {
  const std::string start = "[Error] TArrayInfoAlgo.Calc2ndArrayTrans: ";
  const auto error = [](const TPaths& NFP, const TPoint2D& First, const TPoint2D& Dir) {
    return ErrorOf([&] { TArray::Calc2ndArrayTrans(NFP, First, Dir); });
  };
  EXPECT_EQ(error({}, {0, 0}, {0, 0}), start + "NFP为空");
  EXPECT_EQ(error(UnitNfp(), {1e-12, 0}, {0, 0}), start + "ArrayTrans1参数错误");
  EXPECT_EQ(error(UnitNfp(), {1, 0}, {0, 1e-12}), start + "Dir参数错误");
  for (const double angle : {0.0, 0.9e-6, -0.9e-6, std::numbers::pi, std::numbers::pi + 0.9e-6})
    EXPECT_EQ(error(UnitNfp(), TPoint2D{2, 1}, TPoint2D{4, 2}.RotateBy(angle)), start + "2个阵列位移方向相同");
  EXPECT_EQ(error({Box(2, 2, 3, 3)}, {1, 0}, {0, 1}), "[ERROR] TArrayInfoAlgo.Calc2ndArrayTrans: 无法计算合理的结果");
}

void ExpectClearLattice(const char* Form, const TVHPolygonList& Shape, const TLattice& Lattice) {
  SCOPED_TRACE(Form);
  const TPaths part = test::PathsOf(Shape);
  EXPECT_LE(test::LatticeDepth(part, Lattice), test::kAllowedDepth);
  EXPECT_GE(test::CellArea(Lattice), RegionArea(part) - 1e-3 * RegionArea(part));
}

TEST(ArrayInfo, CopiesOfRandomShapesKeepClear) {
  ForEachSeed(11, [](unsigned Seed) {
    const TShapeKind kind = kShapeKinds[Seed % kShapeKinds.size()];
    SCOPED_TRACE(NameOf(kind));
    const TVHPolygonList shape{MakeShape(kind, 12, 40, Seed)};
    for (const test::TAxisForm& form : test::kAxisForms) {
      SCOPED_TRACE(form.Name);
      for (const bool separate : {false, true})
        EXPECT_LE(test::AxisFormDepth(form, shape, separate), test::kAllowedDepth);
    }
    TPaths nfp;
    TArray::CalcNFP(shape, 0, nfp);
    for (const bool separate : {false, true}) {
      ExpectClearLattice("XY", shape, TArray::CalcArrayInfo(nfp, true, true, separate, 1e-3));
      ExpectClearLattice("X", shape, TArray::CalcArrayInfo(nfp, true, false, separate, 1e-3));
      ExpectClearLattice("Y", shape, TArray::CalcArrayInfo(nfp, false, true, separate, 1e-3));
    }
    const TLattice free = TArray::CalcArrayInfo(nfp, false, false, false, 1e-3);
    ExpectClearLattice("free", shape, free);
    for (const double angle : {0.3, 1.0, std::numbers::pi / 2, 3.6})
      ExpectClearLattice("directed", shape,
                         {free.first, TArray::Calc2ndArrayTrans(nfp, free.first, free.first.RotateBy(angle))});
  });
}

}  // namespace
}  // namespace platenest
