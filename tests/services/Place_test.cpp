#include <gmock/gmock.h>

#include "BoxContour.h"
#include "ForEachSeed.h"
#include "LatticeDepth.h"
#include "Shapes.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Random.h"
#include "platenest/services/NFP.h"
#include "platenest/services/arrayInfo.h"

namespace platenest {
namespace {

using TLabel = TLabelInPartAlgo;
using TSucker = TSuckerInPartAlgo;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TVPolyline2D Closed(TVPolyline2D Line) {
  Line.push_back(TPoint2D(Line.front()));
  return Line;
}

TVPolyline2D Plate(double Width, double Height) {
  return Closed(Box(0, 0, Width, Height));
}

TPaths BoxPaths(const TVRect2D& Box) {
  return PolygonOf(TVHPolygon{TVPolyline2D(Box)});
}

TEST(Label, MarginComesFromFourRounds) {
  const double cases[][4] = {{2, 1, 1.3, 3.84375},  // 1.3 + 11 / 16 * 3.7
                             {9, 9, 0.4, 0.4},      // no round fits, the offset itself does
                             {9.3, 9, 0.4, -1}};
  TPoint2D at;
  for (const auto& [width, height, offset, margin] : cases)
    EXPECT_DOUBLE_EQ(TLabel::DoCalcLabelPosInPart({Plate(10, 10)}, {}, TVRect2D::FromSize(width, height), offset, at),
                     margin);
}

TEST(Label, NoPlaceLeavesTheAnswersAlone) {
  const TVPolyline2DList layers[] = {{Plate(10, 8)}, {Box(0, 0, 9, 9), Plate(10, 8)}, {}, {Plate(2, 1)}};
  const double offsets[] = {4.001, 0.5, 0.5, -3};  // half the extent, an open line, none, a margin below 0
  for (int i = 0; i < 4; ++i) {
    const Int64 calls = TLabel::CalcCount;
    const Int64 nfps = TNFPCalculator::CalcNFPCount;
    bool rotates = true;
    TPoint2D at{-77, -77};
    EXPECT_FALSE(TLabel::CalcLabelPosInPart(layers[i], {}, TVRect2D::FromSize(6, 6), offsets[i], rotates, at));
    EXPECT_TRUE(rotates && at.X == -77);
    EXPECT_EQ(TLabel::CalcCount - calls, 2);  // both orientations
    EXPECT_EQ(TNFPCalculator::CalcNFPCount == nfps, offsets[i] > 0);
  }
}

TEST(Label, UprightBeforeTurned) {
  bool rotates = true;
  TPoint2D at;
  const TVPolyline2DList high{Plate(4, 8.6)};  // a turned label would have far more margin
  EXPECT_TRUE(TLabel::CalcLabelPosInPart(high, {}, TVRect2D::FromSize(3.5, 1), 0, rotates, at));
  EXPECT_FALSE(rotates);
  EXPECT_TRUE(TLabel::CalcLabelPosInPart(high, {}, TVRect2D::FromBounds(31, 100, 30, 108), 0.25, rotates, at));
  EXPECT_TRUE(rotates);  // about its own centre
  const TVRect2D turned = TVRect2D::FromBounds(34.5, 103.5, 26.5, 104.5).Translate(at);
  EXPECT_EQ(DepthOutside(BoxPaths(TVRect2D::FromSize(4, 8.6)), BoxPaths(turned)), 0);
}

// An open line of three points blocks also between its ends; inside its ring there is a place. Obstacles that the label
// has no polygon around are an error, whether or not the label fits the part.
TEST(Label, Obstacles) {
  const TVPolyline2D open{{5, 1}, {25, 1}, {15, 19}};
  EXPECT_EQ(TLabel::ExpandLine(open, 0.01).size(), 2u);
  EXPECT_THROW(TLabel::ExpandLine({}, 0.01), TNestError);
  EXPECT_THROW(TLabel::ExpandLine(open, 1e300), TNestError);
  const TVHPolygonList part{TVHPolygon{Plate(1, 1)}};
  const TVHPolygonList tooLarge{TVHPolygon{Plate(2, 2)}};
  TPaths nfp;
  EXPECT_THROW(TLabel::CalcNFP(part, {TVHPolygon{TVPolyline2D{{0, 0}, {1, 0}}}}, tooLarge, nfp), TNestError);
  TLabel::CalcNFP(part, part, tooLarge, nfp);
  EXPECT_TRUE(nfp.empty());
}

TEST(Label, PlaceNearTheMiddleOfTheLongerExtent) {
  const auto chosen = [](const TPaths& units) { return TLabel::ChoosePosInNFP(units) * kPathScale; };
  // The first crossing in the order of the path, which is not the lowest one.
  EXPECT_EQ(chosen({{{8, 2}, {0, 2}, {0, 0}, {8, 0}}}), (TPoint2D{4, 2}));
  EXPECT_EQ(chosen({{{0, 0}, {2, 0}, {2, 2}, {0, 2}}}), (TPoint2D{1, 0}));
  EXPECT_EQ(chosen({{{0, 0}, {2, 0}, {2, 8}, {0, 8}}}), (TPoint2D{2, 4}));
  // Two islands beside the middle: the nearest vertex, the first of equals.
  EXPECT_EQ(chosen({{{0, 0}, {1, 0}, {1, 1}, {0, 1}}, {{7, 0}, {8, 0}, {8, 1}, {7, 1}}}), (TPoint2D{1, 0}));
}

// Only the first contour is asked whether it is closed: an open outline means no place, an open hole is a hole.
TEST(Sucker, CentroidElseNearestPointElseNone) {
  const TVPolyline2D hole = Box(4, 4, 6, 6);
  TPoint2D at{-1, -1};
  for (const TVHPolygon& part : {TVHPolygon{}, TVHPolygon{Box(0, 0, 10, 10), Closed(hole)}})
    EXPECT_FALSE(TSucker::CalcSuckerPosInPart(part, 1, at));
  EXPECT_FALSE(TSucker::CalcSuckerPosInPart({Plate(10, 10)}, 5.01, at));
  EXPECT_EQ(at.X, -1);
  ASSERT_TRUE(TSucker::CalcSuckerPosInPart({Plate(10, 10)}, 2, at));
  EXPECT_EQ(at, (TPoint2D{5, 5}));
  ASSERT_TRUE(TSucker::CalcSuckerPosInPart({Plate(10, 10), hole}, 1, at));
  EXPECT_NEAR(std::max(std::fabs(at.X - 5), std::fabs(at.Y - 5)), 2, 1e-5);
  // The first of equals, here on the closing edge.
  EXPECT_EQ(TSucker::CalcNearestPt({{Box(0, 0, 10, 10)}, {Box(-14, 0, -4, 10)}}, {-2, 5}), (TPoint2D{0, 5}));
  EXPECT_THROW(TSucker::CalcSuckerPosInPart({Plate(10, 10)}, kInfinity, at), TArgumentError);
  EXPECT_THROW(TSucker::CalcSuckerPosInPart({Plate(1e14, 10)}, 1, at), TArgumentError);
}

TEST(Places, LieInRandomPartsOffTheirLines) {
  int labels = 0, discs = 0;
  ForEachSeed(44, [&](unsigned Seed) {
    const TRandomScope random(Seed);
    TVHPolygon part = MakeShape(kShapeKinds[Seed % kShapeKinds.size()], 14, 50, Seed);
    const TPaths paths = PolygonOf(part);
    part.front() = Closed(part.front());
    const auto inPart = [box = part.front().BoundBox()](double X, double Y) {
      return box.GetBottomLeft() + TPoint2D{box.Width() * X, box.Height() * Y};
    };
    const TVPolyline2D line{inPart(0.1 * Random(10), 0), inPart(0.1 * Random(10), 0.6)};
    const TVRect2D label = TVRect2D::FromSize(1 + 0.1 * Random(30), 1 + 0.1 * Random(20)).Translate(inPart(2, 0));
    const TVPolyline2DList layer(std::vector(part.begin(), part.end()));
    TPoint2D at;
    const double margin = TLabel::DoCalcLabelPosInPart(layer, {line}, label, 0.05, at);
    if (margin >= 0) {
      ++labels;
      const TPaths placed = BoxPaths(label.Translate(at).Inflate(margin));
      EXPECT_LE(DepthOutside(paths, placed), test::kAllowedDepth);
      EXPECT_LE(OverlapDepth(PolygonOf(TLabel::ExpandLine(line, 0.01)), placed), test::kAllowedDepth);
    }
    const double radius = 0.2 + Seed % 7;
    if (!TSucker::CalcSuckerPosInPart(part, radius, at)) return;
    ++discs;
    EXPECT_EQ(PlaceOf(test::UnitsOf(at), paths), TPlace::Inside);
    EXPECT_GE(DistanceToBorder(test::UnitsOf(at), paths) / kPathScale, radius - 1e-4);
  });
  EXPECT_GT(labels, 16);
  EXPECT_GT(discs, 10);
}

}  // namespace
}  // namespace platenest
