#include "platenest/services/NFP.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "Region.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Host.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const TVHPolygon kSquare{{{{0, 0}, {1, 0}, {1, 1}, {0, 1}}}};
const TVHPolygon kLine{{{{0, 0}, {1, 0}}}};  // no contour, so its outer polygon is empty

TVHPolygonList ListOf(std::vector<TVHPolygon> Parts) {
  return TVHPolygonList(std::move(Parts));
}

TVHPolygon SquareAt(double X, double Y, double Side) {
  return {{{{X, Y}, {X + Side, Y}, {X + Side, Y + Side}, {X, Y + Side}}}};
}

// What a call says on its way out, in order.
std::vector<std::string> Record(const std::function<void()>& Call) {
  std::vector<std::string> said;
  const THostProcScope host([&said](std::string_view Name, std::string_view Text) {
    said.push_back(std::string(Name) + "|" + std::string(Text));
  });
  const TWarningScope warnings([&said](std::string_view Line) { said.emplace_back(Line); });
  try {
    Call();
  } catch (const TNestError& error) {
    said.push_back(std::string("raised ") + error.ClassName() + ": " + error.Text());
  }
  return said;
}

TEST(NfpCalculator, EmptyListsAreRefusedBeforeTheyCount) {
  const Int64 before = TNFPCalculator::CalcNFPCount;
  const TVHPolygonList some = ListOf({kSquare});
  EXPECT_THAT(Record([&] { TNFPCalculator::CalcNFP({}, some, false, ntNone, "", ""); }),
              ElementsAre("raised TNestError: [Error] TNFPCalculator.CalcNFP: NFP图源错误"));
  EXPECT_THAT(Record([&] { TNFPCalculator::CalcNFP(some, {}, true, ntComplete, "", ""); }),
              ElementsAre("raised TNestError: [Error] TNFPCalculator.CalcNFP: NFP图源错误"));
  EXPECT_THAT(Record([&] { TNFPCalculator::CalcNFPUI(some, {}, false, ntComplete, "", ""); }),
              ElementsAre("raised TNestError: [Error] TNFPCalculator.CalcNFPUI: NFP图源错误"));
  EXPECT_EQ(TNFPCalculator::CalcNFPCount, before);
}

TEST(NfpCalculator, CoordinatesThatNoPathCanHoldAreRefused) {
  const Int64 before = TNFPCalculator::CalcNFPCount;
  for (const double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), -1e14}) {
    const TVHPolygon part{{{{0, 0}, {1, 0}, {1, bad}}}};
    EXPECT_THROW(TNFPCalculator::CalcNFP(part, kSquare, false, ntComplete, "", ""), TArgumentError);
    EXPECT_THROW(TNFPCalculator::CalcNFPUI(ListOf({kSquare}), ListOf({part}), true, ntNone, "", ""), TArgumentError);
  }
  EXPECT_EQ(TNFPCalculator::CalcNFPCount, before);
}

TEST(NfpCalculator, NothingAskedForIsNothingCalculated) {
  const Int64 before = TNFPCalculator::CalcNFPCount;
  for (const bool isInside : {false, true}) {
    const TNFP nfp = TNFPCalculator::CalcNFP(kLine, kLine, isInside, ntNone, "", "");
    EXPECT_TRUE(nfp.IsEmpty());
    EXPECT_EQ(nfp.NFPType, ntNone);
  }
  EXPECT_EQ(TNFPCalculator::CalcNFPCount, before + 2);
}

TEST(NfpCalculator, EmptyOuterPolygonIsReportedAndRaised) {
  const Int64 before = TNFPCalculator::CalcNFPCount;
  const auto expected = ElementsAre("CmdLogln|0 3 TNFPCalculator.CalcNFP:计算NFP时发生异常",
                                    "[Error] TNFPCalculator.CalcNFP: 计算NFP时发生异常  TNestError: NFP为空",
                                    "raised TNestError: NFP为空");
  EXPECT_THAT(Record([] { TNFPCalculator::CalcNFP(kLine, kSquare, false, ntComplete, "", ""); }), expected);
  EXPECT_THAT(Record([] { TNFPCalculator::CalcNFPUI(ListOf({kLine}), ListOf({kSquare}), false, ntComplete, "", ""); }),
              expected);
  EXPECT_EQ(TNFPCalculator::CalcNFPCount, before + 2);
}

// Straight within the tolerance of loops, yet too large in area to count as a needle.
TEST(NfpCalculator, ErrorsOfTheKernelPassThroughUnchanged) {
  const TVHPolygon sliver{{{{0, 0}, {1000, 0}, {500, 0.005}}}};
  EXPECT_THAT(Record([&sliver] { TNFPCalculator::CalcNFP(sliver, kSquare, false, ntComplete, "", ""); }),
              ElementsAre("CmdLogln|0 3 TNFPCalculator.CalcNFP:计算NFP时发生异常",
                          "[Error] TNFPCalculator.CalcNFP: 计算NFP时发生异常  TNestError: 图形存在重复边或者自交",
                          "raised TNestError: 图形存在重复边或者自交"));
}

TEST(NfpCalculator, EmptyInnerRegionIsAnAnswer) {
  const TVHPolygon plate = SquareAt(0, 0, 10);
  EXPECT_THAT(Record([&] {
                EXPECT_TRUE(TNFPCalculator::CalcNFP(SquareAt(0, 0, 11), plate, true, ntComplete, "", "").IsEmpty());
              }),
              IsEmpty());
}

TEST(NfpCalculator, SubMovesAndObjStaysInBothForms) {
  const TVHPolygon plate = SquareAt(0, 0, 10);
  const TVHPolygon part = SquareAt(1, 2, 3);
  const TNFP single = TNFPCalculator::CalcNFP(part, plate, true, ntComplete, "", "");
  const TNFP list = TNFPCalculator::CalcNFP(ListOf({part}), ListOf({plate}), true, ntComplete, "", "");
  ASSERT_FALSE(single.IsEmpty());
  EXPECT_EQ(*single.NFP, *list.NFP);
  EXPECT_EQ(TPathUtils::BoundBox(*single.NFP), (TIntRect{-100'000, 600'000, 500'000, -200'000}));
  EXPECT_EQ(single.NFPType, ntComplete);
}

// Two plates that overlap are one larger plate only for the form that unites them.
TEST(NfpCalculator, UnitedObjShapesAreOne) {
  const TVHPolygonList plates = ListOf({SquareAt(0, 0, 10), SquareAt(8, 0, 10)});
  const TVHPolygonList part = ListOf({{{{{0, 0}, {12, 0}, {12, 1}, {0, 1}}}}});
  EXPECT_TRUE(TNFPCalculator::CalcNFP(part, plates, true, ntComplete, "", "").IsEmpty());
  const TNFP united = TNFPCalculator::CalcNFPUI(part, plates, true, ntComplete, "", "");
  EXPECT_DOUBLE_EQ(RegionArea(*united.NFP), 6 * 9);
}

TEST(NfpCalculator, TurnedAndGrownCopy) {
  TPaths paths{{{0, 0}, {200'000, 0}, {200'000, 100'000}, {0, 100'000}}};
  const TNFP nfp(paths, ntConcaveHull);
  const TNFP turned = TNFPCalculator::RotateAndOffsetNFP(nfp, std::acos(0.0), 0, 0, 0.035);
  EXPECT_EQ(TPathUtils::BoundBox(*turned.NFP), (TIntRect{-100'000, 0, 200'000, 0}));
  EXPECT_EQ(turned.NFPType, ntConcaveHull);
  const TNFP grown = TNFPCalculator::RotateAndOffsetNFP(nfp, 0, 1000, 0x102, 1.5);  // the low byte: mitred
  EXPECT_EQ(TPathUtils::BoundBox(*grown.NFP), (TIntRect{-1000, 201'000, 101'000, -1000}));
  EXPECT_EQ(RegionArea(*grown.NFP), 2.02 * 1.02);
  EXPECT_EQ(*nfp.NFP, paths);
  EXPECT_THROW(TNFPCalculator::RotateAndOffsetNFP(nfp, 0, 1, 3, 0.035), TArgumentError);
  EXPECT_TRUE(TNFPCalculator::RotateAndOffsetNFP(TNFP(), 1, 1, 0, 0.035).IsEmpty());
  const Int64 edge = Int64{1} << 62;
  const TNFP outermost(TPaths{{{-edge, -edge}, {edge, -edge}, {0, edge}}}, ntComplete);
  EXPECT_THROW(TNFPCalculator::RotateAndOffsetNFP(outermost, 0, 1, 0, 0.035), TRangeError);
  EXPECT_THROW(TNFPCalculator::RotateAndOffsetNFP(outermost, 0.5, 0, 0, 0.035), TRangeError);
  EXPECT_THROW(TNFPCalculator::RotateAndOffsetNFP(nfp, std::numeric_limits<double>::quiet_NaN(), 0, 0, 0.035),
               TRangeError);
}

}  // namespace
}  // namespace platenest
