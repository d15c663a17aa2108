#include "platenest/URectNest/RectRecords.h"

#include <gtest/gtest.h>

#include <limits>

namespace platenest {
namespace {

TNestSpace Space(double Width, double Height, int Ratio, bool IsUdf = false) {
  return TNestSpace(TVRect2D::FromSize(Width, Height), Ratio, IsUdf);
}

void ExpectBox(const TVRect2D& Box, double Left, double Bottom, double Right, double Top) {
  EXPECT_NEAR(Box.Left, Left, 1e-12);
  EXPECT_NEAR(Box.Bottom, Bottom, 1e-12);
  EXPECT_NEAR(Box.Right, Right, 1e-12);
  EXPECT_NEAR(Box.Top, Top, 1e-12);
}

TEST(NestedRect, ItemIgnoresThePositionOfItsPartAndTheListKeepsIt) {
  const TNestRect elsewhere(1, 0, TVRect2D::FromSize(4, 3).Translate({10, 20}));
  const TNestedRect upright(elsewhere, false, {100, 200}), turned(elsewhere, true, {100, 200});
  ExpectBox(upright.BoundBox(), 100, 200, 104, 203);
  ExpectBox(turned.BoundBox(), 97, 200, 100, 204);
  ExpectBox(TNestedRects{upright}.BoundBox(), 110, 220, 114, 223);
  ExpectBox(TNestedRects{turned}.BoundBox(), 77, 210, 80, 214);
  EXPECT_FALSE(TNestedRects().BoundBox().IsValid());
}

TEST(NestSpaceList, RatiosAreSummedAndRoundedToEven) {
  EXPECT_EQ(Space(1, 1, -3).Ratio, 1);
  const TNestSpaceList list{Space(1, 1, 2), Space(2, 2, 3), Space(3, 3, 7)};
  EXPECT_EQ(list.AvgRatio(0), 2);
  EXPECT_EQ(list.AvgRatio(1), 2) << "2.5 to even";
  EXPECT_EQ(list.AvgRatio(99), 4) << "the end index is clamped, and so is the divisor";
  EXPECT_EQ(list.AvgRatio(-1), 0);
  EXPECT_TRUE((TNestSpaceList{Space(1, 1, 2, true)}.HasMultiRatio(true)));
  EXPECT_FALSE((TNestSpaceList{Space(1, 1, 2, true), Space(1, 1, 1)}.HasMultiRatio(false)));
}

TEST(NestSpaceList, MergingKeepsTheFirstPlaceAndTheLastRecord) {
  TNestSpaceList list{Space(5, 5, 1), Space(10, 4, 1), Space(10 + 5e-7, 4, 2), Space(4, 10, 9), Space(10, 4, 3, true)};
  list[4].Space = list[4].Space.Translate({7, 0});
  list.MergeSameSizeInPlace();
  ASSERT_EQ(list.Count(), 3);
  EXPECT_EQ(list[1].Ratio, 6);
  EXPECT_TRUE(list[1].IsUdf);
  EXPECT_EQ(list[1].Space.Left, 7);
  EXPECT_EQ(list[2].Ratio, 9) << "a turned plate is another size";
  const int most = std::numeric_limits<int>::max();
  EXPECT_THROW((TNestSpaceList{Space(1, 1, most), Space(1, 1, 1)}.MergeSameSize()), TRangeError);
}

TEST(NestSpaceList, OrdersDescendByAreaTotalOrValue) {
  const TNestSpace large = Space(10, 10, 1);
  const TNestSpace small = Space(6, 5, 4);
  EXPECT_LT(TNestSpaceList::CompareByArea(large, small), 0);
  EXPECT_GT(TNestSpaceList::CompareByTotalArea(large, small), 0) << "100 against 120";
  EXPECT_LT(TNestSpaceList::CompareByValuedArea(large, small), 0) << "251 against 118";
  EXPECT_GT(TNestSpaceList::CompareByValuedArea(large, Space(6, 5, 20)), 0) << "251 against 265";
  const TNestSpace nearly = Space(10, 10 + 1e-6, 1);
  EXPECT_GT(TNestSpaceList::CompareByValuedArea(large, nearly), 0) << "values within 0.001 leave the plain area";
}

}  // namespace
}  // namespace platenest
