#include <gmock/gmock.h>

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
TVPolyline2D BoxLine(double Width, double Height) {
  return {{0, 0}, {Width, 0}, {Width, Height}, {0, Height}, {0, 0}};
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
    EXPECT_DOUBLE_EQ(TLabel::DoCalcLabelPosInPart({BoxLine(10, 10)}, {}, TVRect2D::FromSize(width, height), offset, at),
                     margin);
}

TEST(Label, NoPlaceLeavesTheAnswersAlone) {
  const TVPolyline2D open{{0, 0}, {9, 0}, {9, 9}};
  const TVPolyline2DList layers[] = {{BoxLine(10, 8)}, {open, BoxLine(10, 8)}, {}, {BoxLine(2, 1)}};
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
  const TVPolyline2DList high{BoxLine(4, 8.6)};  // a turned label would have far more margin
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
  const TVHPolygonList part{TVHPolygon{BoxLine(1, 1)}};
  const TVHPolygonList tooLarge{TVHPolygon{BoxLine(2, 2)}};
  TPaths nfp;
  EXPECT_THROW(TLabel::CalcNFP(part, {TVHPolygon{TVPolyline2D{{0, 0}, {1, 0}}}}, tooLarge, nfp), TNestError);
  TLabel::CalcNFP(part, part, tooLarge, nfp);
  EXPECT_TRUE(nfp.empty());
}

TEST(Label, PlaceNearTheMiddleOfTheLongerExtent) {
  constexpr Int64 u = 100000;
  // The first crossing in the order of the path, which is not the lowest one.
  EXPECT_EQ(TLabel::ChoosePosInNFP({{{8 * u, 2 * u}, {0, 2 * u}, {0, 0}, {8 * u, 0}}}), (TPoint2D{4, 2}));
  EXPECT_EQ(TLabel::ChoosePosInNFP({{{0, 0}, {2 * u, 0}, {2 * u, 2 * u}, {0, 2 * u}}}), (TPoint2D{1, 0}));
  EXPECT_EQ(TLabel::ChoosePosInNFP({{{0, 0}, {2 * u, 0}, {2 * u, 8 * u}, {0, 8 * u}}}), (TPoint2D{2, 4}));
  // Two islands beside the middle: the nearest vertex, the first of equals.
  const TPaths apart{{{0, 0}, {u, 0}, {u, u}, {0, u}}, {{7 * u, 0}, {8 * u, 0}, {8 * u, u}, {7 * u, u}}};
  EXPECT_EQ(TLabel::ChoosePosInNFP(apart), (TPoint2D{1, 0}));
}

TEST(Label, LiesInRandomPartsOffTheirLines) {
  int found = 0;
  ForEachSeed(22, [&](unsigned Seed) {
    const TRandomScope random(Seed);
    const TVHPolygon part = MakeShape(kShapeKinds[Seed % kShapeKinds.size()], 14, 50, Seed);
    TVPolyline2DList layer;
    for (const TVPolyline2D& contour : part) layer.push_back(contour);
    layer.front().push_back(TPoint2D(layer.front().front()));
    const auto inPart = [box = part.front().BoundBox()](double X, double Y) {
      return box.GetBottomLeft() + TPoint2D{box.Width() * X, box.Height() * Y};
    };
    const TVPolyline2D line{inPart(0.1 * Random(10), 0), inPart(0.1 * Random(10), 0.6)};
    const TVRect2D label = TVRect2D::FromSize(1 + 0.1 * Random(30), 1 + 0.1 * Random(20)).Translate(inPart(2, 0));
    TPoint2D at;
    const double margin = TLabel::DoCalcLabelPosInPart(layer, {line}, label, 0.05, at);
    if (margin < 0) return;
    ++found;
    const TPaths placed = BoxPaths(label.Translate(at).Inflate(margin));
    EXPECT_LE(DepthOutside(PolygonOf(part), placed), test::kAllowedDepth);
    EXPECT_LE(OverlapDepth(PolygonOf(TLabel::ExpandLine(line, 0.01)), placed), test::kAllowedDepth);
  });
  EXPECT_GT(found, 8);
}

}  // namespace
}  // namespace platenest
