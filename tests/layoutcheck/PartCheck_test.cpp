#include "platenest/layoutcheck/PartCheck.h"

#include <gmock/gmock.h>

#include "platenest/layoutcheck/PartSvg.h"

namespace platenest {
namespace {

using testing::HasSubstr;

constexpr double kTol = 1e-3;

TPath PathOf(const std::vector<TPoint2D>& Points) {
  TPath path;
  for (const TPoint2D& point : Points) path.push_back(TPathUtils::CreateIntPoint(point, kPathScale));
  return path;
}

const TPaths kUnit = {PathOf({{0, 0}, {1, 0}, {1, 1}, {0, 1}})};
// A square ring, four wide in a square of ten.
const TPaths kRing = {PathOf({{0, 0}, {10, 0}, {10, 10}, {0, 10}}), PathOf({{4, 4}, {4, 6}, {6, 6}, {6, 4}})};

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

TEST(PartSvg, EscapesTextsAndRefusesWhatCannotBeDrawn) {
  TPartPicture picture;
  picture.Title = "<t>";
  picture.PartId = "a\"b";
  picture.Remarks = {"x & y"};
  EXPECT_THROW(PartSvg(picture), TArgumentError);
  picture.Part = {{{0, 0}, {4, 0}, {4, 2}, {0, 2}}};
  EXPECT_THAT(PartSvg(picture),
              testing::AllOf(HasSubstr("<title>&lt;t&gt;: a&quot;b</title>"), HasSubstr("x &amp; y")));
  picture.Disc = {{INFINITY, 1}, 0.5};
  EXPECT_THROW(PartSvg(picture), TArgumentError);
}

}  // namespace
}  // namespace platenest
