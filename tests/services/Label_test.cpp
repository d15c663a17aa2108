#include <gmock/gmock.h>

#include "ForEachSeed.h"
#include "LatticeCheck.h"
#include "Shapes.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Random.h"
#include "platenest/services/NFP.h"
#include "platenest/services/arrayInfo.h"

namespace platenest {
namespace {

TVPolyline2D Closed(std::initializer_list<TPoint2D> Points) {
  TVPolyline2D line{TVPoint2DList(Points)};
  line.push_back(line.front());
  return line;
}

TVPolyline2D BoxLine(double Width, double Height) {
  return Closed({{0, 0}, {Width, 0}, {Width, Height}, {0, Height}});
}

TPaths BoxPaths(const TVRect2D& Box) {
  return PolygonOf(TVHPolygon{TVPolyline2D(Box)});
}

struct TPlace {
  bool Found = false;
  bool DoesRotate = false;
  TPoint2D TransVec{-77, -77};
};

TPlace Place(const TVPolyline2DList& Layer, const TVPolyline2DList& Inner, const TVRect2D& Label, double Offset) {
  TPlace place;
  place.Found = TLabelInPartAlgo::CalcLabelPosInPart(Layer, Inner, Label, Offset, place.DoesRotate, place.TransVec);
  return place;
}

TEST(Label, MarginComesFromFourRounds) {
  TPoint2D at;
  const TVPolyline2DList square{BoxLine(10, 10)};
  EXPECT_DOUBLE_EQ(TLabelInPartAlgo::DoCalcLabelPosInPart(square, {}, TVRect2D::FromSize(2, 1), 0.5, at),
                   3.875);  // 0.5 + 12 / 16 * 4.5
  // No round fits, the offset itself does.
  EXPECT_DOUBLE_EQ(TLabelInPartAlgo::DoCalcLabelPosInPart(square, {}, TVRect2D::FromSize(9, 9), 0.4, at), 0.4);
  EXPECT_NEAR(at.X, 0.5, 0.11);
  EXPECT_DOUBLE_EQ(TLabelInPartAlgo::DoCalcLabelPosInPart(square, {}, TVRect2D::FromSize(9.3, 9), 0.4, at), -1);
}

TEST(Label, NoPlaceLeavesTheAnswersAlone) {
  struct TCase {
    const char* Name;
    TVPolyline2DList Layer;
    double Offset;
  };
  const TCase cases[] = {
      {"offset above half the extent", {BoxLine(10, 8)}, 4.001},
      {"open first line", {TVPolyline2D{{0, 0}, {10, 0}, {10, 8}, {0, 8}}, BoxLine(10, 8)}, 0.5},
      {"no line", {}, 0.5},
      {"a margin below 0 reads as a failure", {BoxLine(2, 1)}, -3},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.Name);
    const Int64 calls = TLabelInPartAlgo::CalcCount;
    const Int64 nfps = TNFPCalculator::CalcNFPCount;
    const TPlace place = Place(c.Layer, {}, TVRect2D::FromSize(6, 6), c.Offset);
    EXPECT_FALSE(place.Found);
    EXPECT_EQ(place.TransVec.X, -77);
    EXPECT_EQ(TLabelInPartAlgo::CalcCount - calls, 2);  // both orientations
    if (c.Offset > 0) {
      EXPECT_EQ(TNFPCalculator::CalcNFPCount, nfps);
    }
  }
}

TEST(Label, UprightBeforeTurned) {
  // Turned, the label would have far more margin in this high part.
  const TPlace upright = Place({BoxLine(4, 20)}, {}, TVRect2D::FromSize(3.5, 1), 0);
  EXPECT_TRUE(upright.Found);
  EXPECT_FALSE(upright.DoesRotate);
  const TPlace turned = Place({BoxLine(4, 20)}, {}, TVRect2D::FromBounds(31, 100, 30, 108), 0.25);
  ASSERT_TRUE(turned.Found);
  EXPECT_TRUE(turned.DoesRotate);
  // It turns about its own centre (104, 30.5).
  const TPoint2D center = TPoint2D{104, 30.5} + turned.TransVec;
  EXPECT_NEAR(center.X, 2, 1.3);
  EXPECT_GT(center.Y, 4.2);
  EXPECT_LT(center.Y, 15.8);
}

TEST(Label, ClearOfInnerLines) {
  // An open line of three points blocks also between its ends; inside its ring there is a place.
  const TVPolyline2D open{{5, 1}, {25, 1}, {15, 19}};
  const TVPolyline2DList layer{BoxLine(30, 20)};
  TPoint2D at;
  const TVRect2D label = TVRect2D::FromSize(3, 2);
  const double margin = TLabelInPartAlgo::DoCalcLabelPosInPart(layer, {open}, label, 0.1, at);
  ASSERT_GT(margin, 0.1);
  const TPaths band = PolygonOf(TLabelInPartAlgo::ExpandLine(open, 0.01));
  EXPECT_EQ(band.size(), 2u);
  EXPECT_LE(OverlapDepth(band, BoxPaths(label.Translate(at).Inflate(margin))), test::kAllowedDepth);
  EXPECT_THROW(TLabelInPartAlgo::ExpandLine({}, 0.01), TNestError);
  EXPECT_THROW(TLabelInPartAlgo::ExpandLine(open, 1e300), TNestError);
}

// Obstacles that the label has no polygon around are an error, whether or not the label fits the part.
TEST(Label, ObstaclesAreAskedForWithoutAnyPlaceInThePart) {
  const TVHPolygonList part{TVHPolygon{BoxLine(1, 1)}};
  const TVHPolygonList tooLarge{TVHPolygon{BoxLine(2, 2)}};
  TPaths nfp;
  EXPECT_THROW(TLabelInPartAlgo::CalcNFP(part, {TVHPolygon{TVPolyline2D{{0, 0}, {1, 0}}}}, tooLarge, nfp), TNestError);
  TLabelInPartAlgo::CalcNFP(part, {TVHPolygon{BoxLine(1, 1)}}, tooLarge, nfp);
  EXPECT_TRUE(nfp.empty());
}

TEST(Label, PlaceNearTheMiddleOfTheLongerExtent) {
  constexpr Int64 u = 100000;
  // The first crossing in the order of the path, which is not the lowest one.
  const TPaths wide{{{8 * u, 2 * u}, {0, 2 * u}, {0, 0}, {8 * u, 0}}};
  EXPECT_EQ(TLabelInPartAlgo::ChoosePosInNFP(wide), (TPoint2D{4, 2}));
  const TPaths square{{{0, 0}, {2 * u, 0}, {2 * u, 2 * u}, {0, 2 * u}}};
  EXPECT_EQ(TLabelInPartAlgo::ChoosePosInNFP(square), (TPoint2D{1, 0}));
  const TPaths high{{{0, 0}, {2 * u, 0}, {2 * u, 8 * u}, {0, 8 * u}}};
  EXPECT_EQ(TLabelInPartAlgo::ChoosePosInNFP(high), (TPoint2D{2, 4}));
  // Two islands beside the middle: the nearest vertex, the first of equals.
  const TPaths apart{{{0, 0}, {u, 0}, {u, u}, {0, u}}, {{7 * u, 0}, {8 * u, 0}, {8 * u, u}, {7 * u, u}}};
  EXPECT_EQ(TLabelInPartAlgo::ChoosePosInNFP(apart), (TPoint2D{1, 0}));
  EXPECT_EQ(TLabelInPartAlgo::ChoosePosInNFP({}), (TPoint2D{0, 0}));
}

TEST(Label, LiesInRandomPartsOffTheirLines) {
  int found = 0;
  ForEachSeed(22, [&](unsigned Seed) {
    const TRandomScope random(Seed);
    const TVHPolygon part = MakeShape(kShapeKinds[Seed % kShapeKinds.size()], 14, 50, Seed);
    TVPolyline2DList layer;
    for (TVPolyline2D contour : part) {
      contour.push_back(contour.front());
      layer.push_back(contour);
    }
    const TVRect2D box = part.front().BoundBox();
    const auto point = [&] {
      return TPoint2D{box.Left + box.Width() * Random(1000) / 1000, box.Bottom + box.Height() * Random(1000) / 1000};
    };
    TVPolyline2DList inner;
    for (int i = Random(3); i > 0; --i) inner.push_back(TVPolyline2D{point(), point()});
    const TVRect2D label = TVRect2D::FromSize(1 + Random(30) / 10.0, 1 + Random(20) / 10.0).Translate(point());
    for (const bool turned : {false, true}) {
      const TPoint2D c = label.Center();
      const TVRect2D start = turned ? label.Translate(-c).Rotate(std::numbers::pi / 2).Translate(c) : label;
      TPoint2D at;
      const double margin = TLabelInPartAlgo::DoCalcLabelPosInPart(layer, inner, start, 0.05, at);
      if (margin < 0) continue;
      ++found;
      const TPaths placed = BoxPaths(start.Translate(at).Inflate(margin));
      EXPECT_LE(DepthOutside(PolygonOf(part), placed), test::kAllowedDepth);
      for (const TVPolyline2D& line : inner)
        EXPECT_LE(OverlapDepth(PolygonOf(TLabelInPartAlgo::ExpandLine(line, 0.01)), placed), test::kAllowedDepth);
    }
  });
  EXPECT_GT(found, 8);
}

}  // namespace
}  // namespace platenest
