#include "platenest/colgen/ColumnList.h"

#include <gmock/gmock.h>

#include <tuple>
#include <vector>

#include "platenest/foundation/Errors.h"

namespace platenest {
namespace {

using testing::ElementsAre;

// One item a given area on a plate of 100 by 50.
TOneColumn Column(double Used, int Number, int Idx = 0) {
  TNestedRects layout;
  layout.emplace_back(TNestRect(1, Idx, TVRect2D::FromSize(Used / 10, 10)), false, TPoint2D());
  return TOneColumn(layout, TVRect2D::FromSize(100, 50), Number);
}

TEST(ColumnList, CountsTheEmptiestPlateByItsUse) {
  TColumnList list{Column(2000, 1), Column(4500, 2)};
  double parts = 0;
  EXPECT_DOUBLE_EQ(list.PlateUsed(), 2.4);
  EXPECT_DOUBLE_EQ(list.LastPlateUsage(), 0.4);
  EXPECT_EQ(list.Usage(parts), 10000);
  EXPECT_EQ(parts, 11000);
  list.push_back(Column(100, 7));
  EXPECT_EQ(list.Usage(parts), 10000) << "kept from the first call";
  EXPECT_EQ(list.Clone().Usage(parts), 45000);

  EXPECT_DOUBLE_EQ(TColumnList{Column(2000, 3)}.PlateUsed(), 2.4);
  EXPECT_EQ(TColumnList().PlateUsed(), 0.0);
  EXPECT_EQ(TColumnList().LastPlateUsage(), 2.0);
  EXPECT_EQ((TColumnList{TOneColumn({}, TVRect2D(), 1)}).LastPlateUsage(), 2.0);
}

TEST(ColumnList, MergesSameNeighboursInOrderOfUse) {
  TColumnList list{Column(100, 1), Column(300, 1, 1), Column(100.0005, 2), Column(300, 4, 1), Column(300, 8, 2)};
  list.MergeSameColumn();
  std::vector<int> numbers;
  for (const TOneColumn& column : list) numbers.push_back(column.Number);
  EXPECT_THAT(numbers, ElementsAre(5, 8, 3));
  EXPECT_THAT(list.NumVec(3), ElementsAre(3, 5, 8));
  EXPECT_THROW(list.NumVec(2), TRangeError);

  TColumnList apart{Column(100, 1), Column(100.0003, 1, 1), Column(100.0006, 1)};
  apart.MergeSameColumn();
  EXPECT_EQ(apart.Count(), 3) << "another one lies between the same ones";

  TOneColumn mapped = Column(100, 1, 1);
  mapped.ConvertIndexBy({5, 6});
  EXPECT_EQ(mapped.Pattern[0].Part.Idx, 6);
  EXPECT_THROW(mapped.ConvertIndexBy({5, 6}), TRangeError);
}

TEST(ColumnList, SameColumnsAgreeInPlateAreaAndCopies) {
  const TOneColumn column = Column(100, 1);
  TOneColumn other = Column(100, 5);
  EXPECT_TRUE(column.IsSameAs(other));
  other.Plate = TVRect2D::FromSize(50, 100);
  EXPECT_TRUE(column.IsSameAs(other)) << "turned";
  other.Plate = TVRect2D::FromSize(200, 25);
  EXPECT_FALSE(column.IsSameAs(other));
  EXPECT_FALSE(column.IsSameAs(Column(100.002, 1)));
  EXPECT_FALSE(column.IsSameAs(Column(100, 1, 1)));
}

TEST(ColumnList, TheBetterListHasMorePartsOnItsPlates) {
  using TCase = std::tuple<TColumnList, TColumnList, int>;
  for (const auto& [left, right, sign] : {
           TCase{{Column(4000, 2)}, {Column(4000, 1), Column(2000, 2)}, -1},  // same parts on fewer plates
           TCase{{Column(4500, 2), Column(500, 1)}, {Column(3000, 3)}, -1},   // 9500 against 9000, both on two plates
           TCase{{Column(4000, 1)}, {Column(4500, 1)}, 0},                    // one plate each: no area is charged
           TCase{{Column(4000, 1)}, {Column(4000, 1)}, 0},                    // equal parts
           TCase{{Column(4500, 2)}, {Column(4000, 1)}, 1},                    // a single plate beats every ratio
           TCase{{}, {Column(4000, 1)}, 0}                                    // as good as a plate that is not charged
       }) {
    EXPECT_EQ(left.CompareTo(right), sign);
    EXPECT_EQ(right.CompareTo(left), -sign);
  }
}

}  // namespace
}  // namespace platenest
