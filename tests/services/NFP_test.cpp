#include "platenest/services/NFP.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>

#include "Region.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Host.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using TCalc = TNFPCalculator;

const TVHPolygonList kNone;
const TVHPolygonList kLine{{{{{0, 0}, {1, 0}}}}};  // no contour, so its outer polygon is empty

TVHPolygonList BoxAt(double X, double Y, double Width, double Height) {
  return {{{{{X, Y}, {X + Width, Y}, {X + Width, Y + Height}, {X, Y + Height}}}}};
}

const TVHPolygonList kSquare = BoxAt(0, 0, 1, 1);
const TVHPolygonList kPlate = BoxAt(0, 0, 10, 10);

// What a call says on its way out, in order.
template <class Function>
std::vector<std::string> Record(Function Call) {
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

TEST(NfpCalculator, RefusedBeforeItCounts) {
  const Int64 before = TCalc::CalcNFPCount;
  EXPECT_THAT(Record([] { TCalc::CalcNFP(kSquare, kNone, true, ntNone, "", ""); }),
              ElementsAre("raised TNestError: [Error] TNFPCalculator.CalcNFP: NFP图源错误"));
  EXPECT_THAT(Record([] { TCalc::CalcNFPUI(kNone, kSquare, false, ntComplete, "", ""); }),
              ElementsAre("raised TNestError: [Error] TNFPCalculator.CalcNFPUI: NFP图源错误"));
  for (const double bad : {std::nan(""), std::numeric_limits<double>::infinity(), -1e14}) {
    EXPECT_THROW(TCalc::CalcNFP(BoxAt(0, bad, 1, 1).front(), kSquare.front(), false, ntNone, "", ""), TArgumentError);
    EXPECT_THROW(TCalc::CalcNFPUI(kSquare, BoxAt(bad, 0, 1, 1), true, ntNone, "", ""), TArgumentError);
  }
  EXPECT_EQ(TCalc::CalcNFPCount, before);
}

TEST(NfpCalculator, FailuresAreReportedAndPassOnUnchanged) {
  const Int64 before = TCalc::CalcNFPCount;
  const std::string log = "CmdLogln|0 3 TNFPCalculator.CalcNFP:计算NFP时发生异常";
  const std::string warning = "[Error] TNFPCalculator.CalcNFP: 计算NFP时发生异常  ";
  const auto empty = ElementsAre(log, warning + "TNestError: NFP为空", "raised TNestError: NFP为空");
  EXPECT_THAT(Record([] { TCalc::CalcNFP(kLine, kSquare, false, ntComplete, "", ""); }), empty);
  EXPECT_THAT(Record([] { TCalc::CalcNFPUI(kLine, kSquare, false, ntComplete, "", ""); }), empty);
  // Straight within the tolerance of loops, yet too large in area to count as a needle.
  const TVHPolygonList sliver{{{{{0, 0}, {1000, 0}, {500, 0.005}}}}};
  EXPECT_THAT(
      Record([&sliver] { TCalc::CalcNFP(sliver, kSquare, false, ntComplete, "", ""); }),
      ElementsAre(log, warning + "TNestError: 图形存在重复边或者自交", "raised TNestError: 图形存在重复边或者自交"));
  // Nothing asked for is nothing calculated, and no place inside is an answer.
  EXPECT_THAT(Record([] {
                EXPECT_EQ(TCalc::CalcNFP(kLine, kLine, false, ntNone, "", "").NFPType, ntNone);
                EXPECT_TRUE(TCalc::CalcNFP(BoxAt(0, 0, 11, 1), kPlate, true, ntComplete, "", "").IsEmpty());
              }),
              ElementsAre());
  EXPECT_EQ(TCalc::CalcNFPCount, before + 5);
}

TEST(NfpCalculator, SubMovesAndObjStays) {
  const TVHPolygonList part = BoxAt(1, 2, 3, 3);
  const TNFP nfp = TCalc::CalcNFP(part.front(), kPlate.front(), true, ntComplete, "", "");
  ASSERT_FALSE(nfp.IsEmpty());
  EXPECT_EQ(TPathUtils::BoundBox(*nfp.NFP), (TIntRect{-100'000, 600'000, 500'000, -200'000}));
  // Two plates that overlap are one larger plate only for the form that unites them.
  const TVHPolygonList plates{kPlate.front(), BoxAt(8, 0, 10, 10).front()};
  EXPECT_TRUE(TCalc::CalcNFP(BoxAt(0, 0, 12, 1), plates, true, ntComplete, "", "").IsEmpty());
  EXPECT_DOUBLE_EQ(RegionArea(*TCalc::CalcNFPUI(BoxAt(0, 0, 12, 1), plates, true, ntComplete, "", "").NFP), 6 * 9);
}

TEST(NfpCalculator, TurnedAndGrownCopy) {
  const TPaths paths{{{0, 0}, {200'000, 0}, {200'000, 100'000}, {0, 100'000}}};
  const TNFP nfp(paths, ntConcaveHull);
  const TNFP moved = TCalc::RotateAndOffsetNFP(nfp, std::acos(0.0), 1000, 0x102, 1.5);  // the low byte: mitred
  EXPECT_EQ(TPathUtils::BoundBox(*moved.NFP), (TIntRect{-101'000, 1000, 201'000, -1000}));
  EXPECT_EQ(RegionArea(*moved.NFP), 2.02 * 1.02);
  EXPECT_EQ(moved.NFPType, ntConcaveHull);
  EXPECT_EQ(*nfp.NFP, paths);
  EXPECT_THROW(TCalc::RotateAndOffsetNFP(nfp, 0, 1, 3, 0.035), TArgumentError);
  EXPECT_TRUE(TCalc::RotateAndOffsetNFP(TNFP(), 1, 1, 0, 0.035).IsEmpty());
}

}  // namespace
}  // namespace platenest
