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
  const TNestRect part(1, 0, TVRect2D::FromSize(4, 3).Translate({10, 20}));
  ExpectBox(TNestedRect(part, false, {100, 200}).BoundBox(), 100, 200, 104, 203);
  ExpectBox(TNestedRect(part, true, {100, 200}).BoundBox(), 97, 200, 100, 204);
  ExpectBox(TNestedRects{TNestedRect(part, false, {100, 200})}.BoundBox(), 110, 220, 114, 223);
  ExpectBox(TNestedRects{TNestedRect(part, true, {100, 200})}.BoundBox(), 77, 210, 80, 214);
  EXPECT_FALSE(TNestedRects().BoundBox().IsValid());
}

TEST(NestSpaceList, RatiosAreSummedAndRoundedToEven) {
  EXPECT_EQ(Space(1, 1, -3).Ratio, 1);
  const TNestSpaceList list{Space(1, 1, 2), Space(2, 2, 3), Space(3, 3, 7)};
  EXPECT_EQ(list.AvgRatio(0), 2);
  EXPECT_EQ(list.AvgRatio(1), 2) << "2.5 to even";
  EXPECT_EQ(list.AvgRatio(99), 4) << "the end index is clamped, and so is the divisor";
  EXPECT_EQ(list.AvgRatio(-1), 0);
  EXPECT_EQ(TIntBox(100000, 100000, 0, 1, 0).Area, 10'000'000'000) << "of the sides, in 64 bits";
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

TEST(NestSpaceList, InsertBeginKeepsTheOrderOfBothAlsoForItself) {
  TNestSpaceList list{Space(2, 1, 1)};
  list.InsertBegin({Space(0, 1, 1), Space(1, 1, 1)});
  list.InsertBegin(list);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(list.At(i).Space.Width(), i % 3);
}

TEST(NestSpaceList, OrdersDescendByAreaTotalOrValue) {
  using L = TNestSpaceList;
  const TNestSpace large = Space(10, 10, 1);
  const TNestSpace small = Space(6, 5, 4);
  EXPECT_GT(L::CompareByTotalArea(large, small), 0) << "100 against 120";
  EXPECT_LT(L::CompareByValuedArea(large, small), 0) << "251 against 118";
  EXPECT_GT(L::CompareByValuedArea(large, Space(6, 5, 20)), 0) << "251 against 265";
  EXPECT_LT(L::CompareByValuedArea(large, Space(56.1232, 1, 4)), 0) << "0.0005 less, which leaves the plain area";
  TNestSpace none = Space(6, 5, 20);
  none.Ratio = 0;
  EXPECT_LT(L::CompareByValuedArea(large, none), 0) << "and so does a ratio of 0";
  L list{small, large, Space(5, 6, 1)};
  list.SortByArea();
  EXPECT_TRUE(list[0].Space.Width() == 10 && list[1].Space.Width() == 6) << "equal areas keep their order";
}

}  // namespace
}  // namespace platenest
