#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platenest/layoutcheck/NfpCheck.h"
#include "platenest/layoutcheck/PartCheck.h"

namespace platenest {
namespace {

using testing::HasSubstr;

TPath Box(double Left, double Bottom, double Right, double Top, bool IsHole = false) {
  TPath path;
  for (const TPoint2D& p : {TPoint2D{Left, Bottom}, {Right, Bottom}, {Right, Top}, {Left, Top}})
    path.push_back(TPathUtils::CreateIntPoint(p, kPathScale));
  if (IsHole) ClipperLib::ReversePath(path);
  return path;
}

// A frame of 10 with a hole of 6 and a square of 2: 12 by 12 around, of which 4 by 4 in the hole are free.
const TNfpQuestion kFrame{{Box(0, 0, 10, 10), Box(2, 2, 8, 8, true)}, {Box(0, 0, 2, 2)}, false};

TEST(NfpCheck, TellsOverlapFromTouchAtTheTolerance) {
  EXPECT_EQ(CheckNfp(kFrame, {Box(-2, -2, 10, 10), Box(2, 2, 6, 6, true)}), "");
  EXPECT_EQ(CheckNfp(kFrame, {Box(-2, -1.9992, 10, 10), Box(2, 2, 6, 6, true)}), "");
  EXPECT_THAT(CheckNfp(kFrame, {Box(-2, -1.998, 10, 10), Box(2, 2, 6, 6, true)}), HasSubstr("the parts overlap at ["));
  EXPECT_THAT(CheckNfp(kFrame, {Box(-2, -2, 10, 10), Box(1.99, 2, 6, 6, true)}), HasSubstr("the parts overlap at ["));
}

TEST(NfpCheck, SeesALostHoleOnlyWhereFullOutlinesAreClaimed) {
  const TPaths smaller{Box(-2, -2, 10, 10), Box(3, 2, 6, 6, true)};
  EXPECT_THAT(CheckNfp(kFrame, smaller), HasSubstr("would fit at ["));
  EXPECT_EQ(CheckNfp(kFrame, smaller, {.IsFull = false}), "");
  EXPECT_THAT(CheckNfp(kFrame, {Box(-2, -2, 10, 10), Box(2, 2, 6, 6)}), HasSubstr("wrong way"));
}

// With areas: a contour that is lost whole, a wrong piece between the samples, and a plate that has room.
TEST(NfpCheck, ComparesAreasOfSmallPairs) {
  const TNfpCheckOptions whole{.MostContacts = 100};
  const TNfpCheckOptions samples{.MostSamples = 2};
  const TPaths lost{Box(-2, -2, 10, 10)};
  EXPECT_EQ(CheckNfp(kFrame, lost, samples), "");
  EXPECT_THAT(CheckNfp(kFrame, lost, whole), HasSubstr("would fit at ["));
  EXPECT_EQ(CheckNfp(kFrame, lost, {.IsFull = false, .MostContacts = 100}), "");
  const TPaths right{Box(-2, -2, 10, 10), Box(2, 2, 6, 6, true)};
  const TPaths wrong{right[0], Box(2, 2, 6, 7, true)};
  EXPECT_EQ(CheckNfp(kFrame, wrong, samples), "");
  EXPECT_THAT(CheckNfp(kFrame, wrong, {.MostSamples = 2, .MostContacts = 100}), HasSubstr("the parts overlap at ["));
  EXPECT_EQ(CheckNfp(kFrame, right, whole), "");
  EXPECT_EQ(CheckNfp({kFrame.Moving, kFrame.Fixed, false}, {Box(-10, -10, 2, 2), Box(-6, -6, -2, -2, true)}, whole), "")
      << "a hole of the moving shape";
  EXPECT_EQ(CheckNfp({kFrame.Moving, {Box(0, 0, 10, 10)}, false}, {Box(-10, -10, 2, 2)}, whole), "")
      << "the fixed shape within the moving one";
  const TNfpQuestion plate{kFrame.Fixed, {Box(0, 0, 1, 1)}, true};
  EXPECT_THAT(CheckNfp(plate, {}, whole), HasSubstr("would fit at ["));
  EXPECT_EQ(CheckNfp(plate, {}), "");
  EXPECT_EQ(CheckNfp(plate, {Box(0, 0, 9, 9), Box(1, 1, 8, 8, true)}, whole), "");
}

// The plate's hole of 2 keeps a square of 1 out of 3 by 3.
TEST(NfpCheck, JudgesRegionsFromWithin) {
  const TNfpQuestion plate{{Box(0, 0, 10, 10), Box(4, 4, 6, 6, true)}, {Box(0, 0, 1, 1)}, true};
  EXPECT_EQ(CheckNfp(plate, {Box(0, 0, 9, 9), Box(3, 3, 6, 6, true)}), "");
  EXPECT_THAT(CheckNfp(plate, {Box(0, 0, 9.01, 9), Box(3, 3, 6, 6, true)}), HasSubstr("sticks out at ["));
  EXPECT_THAT(CheckNfp(plate, {Box(0, 0, 8, 9), Box(3, 3, 6, 6, true)}), HasSubstr("would fit at ["));
}

constexpr double kTol = 1e-3;
const TPaths kUnit = {Box(0, 0, 1, 1)};
// A square ring, four wide in a square of ten.
const TPaths kRing = {Box(0, 0, 10, 10), Box(4, 4, 6, 6, true)};

TEST(LatticeCheck, TellsGapsFromOverlaps) {
  EXPECT_EQ(CheckLattice(kUnit, {{1, 0}, {0, 1}}, 0, kTol), "");
  EXPECT_EQ(CheckLattice(kUnit, {{1, 0}, {0.37, -1}}, 0, kTol), "");
  EXPECT_EQ(CheckLattice(kUnit, {{0.9995, 0}, {0, 1}}, 0, kTol), "") << "within the tolerance";
  EXPECT_THAT(CheckLattice(kUnit, {{0.99, 0}, {0, 1}}, 0, kTol), HasSubstr("the copy at [0.99, 0] overlaps"));
  EXPECT_EQ(CheckLattice(kUnit, {{1.5, 0}, {0, 1.5}}, 0.5, kTol), "");
  EXPECT_THAT(CheckLattice(kUnit, {{1.5, 0}, {0, 1.49}}, 0.5, kTol), HasSubstr("too near"));
  // Corner to corner the distance counts as the crow flies: 0.3 and 0.4 make 0.5.
  EXPECT_EQ(CheckLattice(kUnit, {{1.3, 1.4}, {-1.3, 1.4}}, 0.5, kTol), "");
  EXPECT_THAT(CheckLattice(kUnit, {{1.3, 1.39}, {-1.3, 1.4}}, 0.5, kTol), HasSubstr("too near"));
}

// The stated vectors are long and nearly parallel: only far combinations of them come near.
TEST(LatticeCheck, SeesThroughSlantedVectors) {
  EXPECT_EQ(CheckLattice(kUnit, {{1, 0}, {1000, 1}}, 0, kTol), "");
  EXPECT_THAT(CheckLattice(kUnit, {{100, 1}, {99.5, 1}}, 0, kTol), HasSubstr("overlaps"));
  EXPECT_EQ(CheckLattice(kUnit, {{1, 1}, {2, 2}}, 0, kTol), "the vectors span no cell");
  EXPECT_EQ(CheckLattice(kUnit, {{1e-7, 0}, {0, 1}}, 0, kTol), "copies lie on each other");
  EXPECT_NE(CheckLattice(kUnit, {{std::nan(""), 0}, {0, 1}}, 0, kTol), "");
}

TEST(LabelCheck, KeepsItsMarginFromEdgesHolesAndLines) {
  EXPECT_EQ(CheckLabel(kRing, {}, {1, 1, 9, 3}, 1, kTol), "");
  EXPECT_NE(CheckLabel(kRing, {}, {1, 1, 9, 3}, 1.01, kTol), "");
  EXPECT_NE(CheckLabel(kRing, {}, {3, 3, 7, 7}, 0, kTol), "") << "over the hole";
  EXPECT_NE(CheckLabel(kRing, {}, {-1e300, 0, 1e300, 1}, 0, kTol), "");
  const auto lined = [](const TPoint2D& From, const TPoint2D& To) {
    return CheckLabel(kRing, {{From, To}}, {2, 1, 8, 2}, 0.5, kTol);
  };
  EXPECT_EQ(lined({0, 2.5}, {10, 2.5}), "") << "just at the margin";
  EXPECT_THAT(lined({0, 2.49}, {10, 2.49}), HasSubstr("meets the inner line from [0, 2.49]"));
  EXPECT_NE(lined({5, 0}, {5, 10}), "") << "right through";
  EXPECT_NE(lined({4, 1.5}, {5, 1.6}), "") << "inside as a whole";
  EXPECT_EQ(lined({0, 3}, {1, 0}), "") << "past a corner";
}

TEST(DiscCheck, LiesInThePart) {
  EXPECT_EQ(CheckDisc(kRing, {2, 2}, 2, kTol), "");
  EXPECT_EQ(CheckDisc(kRing, {2, 2}, 2.01, kTol), "the disc sticks out of the part");
  EXPECT_EQ(CheckDisc(kRing, {5, 5}, 0.1, kTol), "the centre lies outside the part") << "in the hole";
  EXPECT_EQ(CheckDisc(kRing, {3, 3}, 1.42, kTol), "the disc sticks out of the part") << "the hole's corner";
  EXPECT_NE(CheckDisc(kRing, {std::nan(""), 5}, 1, kTol), "");
}

}  // namespace
}  // namespace platenest
