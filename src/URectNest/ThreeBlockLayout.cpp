#include "ThreeBlockLayout.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::detail {

namespace {

// A place in a block that is filled by stacks: Along runs along the stacks, Across from stack to stack.
TPoint2D PlaceIn(bool Direct, double Along, double Across) {
  return Direct ? TPoint2D{Along, Across} : TPoint2D{Across, Along};
}

double LengthOf(const TNestedInfo& Info) {
  return Info.Direct ? Info.X : Info.Y;
}

bool IsOf(const TNestedInfo& Info, const TBlock& Block) {
  return Info.X == Block.X && Info.Y == Block.Y;
}

int PerStack(const TBlockValues& Blocks, const TNestedInfo& Info, TStackCode Code) {
  return Trunc<int>(CountAlong(LengthOf(Info), Info.Direct ? Blocks.SideX(Code) : Blocks.SideY(Code)));
}

}  // namespace

TNestedRects TThreeBlockLayout::LayOut(const TRectInfo& Info) const {
  TProgress progress{std::vector<int>(FParts.size(), std::numeric_limits<int>::max()), {}, 0};
  const auto blocks = BlocksOf(Info, FScan.L(), FScan.W());
  Reserve(blocks, progress);
  for (const TBlock& block : blocks)
    LayBlock(block, {static_cast<double>(block.Left), static_cast<double>(block.Bottom)}, progress);
  return std::move(progress.List);
}

TTrial TThreeBlockLayout::AddParts(const TRectInfo& Info, std::vector<int> Demand) const {
  TProgress progress{std::move(Demand), {}, 0};
  const auto blocks = BlocksOf(Info, FScan.L(), FScan.W());
  Reserve(blocks, progress);
  const TPoint2D first = LayBlock(blocks[0], {0, 0}, progress);
  if (Info.IsAlongY) {
    const double left = std::min<double>(Info.Major, first.X);
    const TPoint2D second = LayBlock(blocks[1], {left, 0}, progress);
    LayBlock(blocks[2], {left, std::min<double>(Info.Minor, second.Y)}, progress);
  } else {
    const double bottom = std::min<double>(Info.Major, first.Y);
    const TPoint2D second = LayBlock(blocks[1], {0, bottom}, progress);
    LayBlock(blocks[2], {std::min<double>(Info.Minor, second.X), bottom}, progress);
  }
  return {std::move(progress.List), -progress.FDecAera};
}

void TThreeBlockLayout::Reserve(std::span<const TBlock> Blocks, TProgress& Progress) const {
  Int64 planned = 0;
  for (const TBlock& block : Blocks) {
    const TNestedInfo* const info = FScan.Blocks().Find(block.X, block.Y);
    if (info == nullptr || !IsOf(*info, block)) continue;
    for (const int code : info->Place) planned += PerStack(FScan.Blocks(), *info, TStackCode::Of(code));
  }
  planned = std::min(planned, std::accumulate(Progress.Demand.begin(), Progress.Demand.end(), Int64{0}));
  if (planned > kMostPlacements) throw TRangeError("[Error] TMultiRectNest: too many rectangles on the plate");
  Progress.List.reserve(static_cast<std::size_t>(planned));
}

// A block whose value was that of another one with its code stays empty. The pitch within a stack gives the whole gap
// back that the scan's sizes lack, as long as the stack's copies still fit the block.
TPoint2D TThreeBlockLayout::LayBlock(const TBlock& Block, TPoint2D Corner, TProgress& Progress) const {
  const TBlockValues& blocks = FScan.Blocks();
  const TNestedInfo* const info = blocks.Find(Block.X, Block.Y);
  if (info == nullptr) return Corner;
  if (!IsOf(*info, Block)) {
    Progress.FDecAera += info->Area;
    return Corner;
  }
  double across = 0;
  double longest = 0;
  double reached = 0;
  for (const int number : info->Place) {
    const auto code = TStackCode::Of(number);
    const double sideAcross = info->Direct ? blocks.SideY(code) : blocks.SideX(code);
    const double sideAlong = info->Direct ? blocks.SideX(code) : blocks.SideY(code);
    const int wanted = PerStack(blocks, *info, code);
    const int count = std::min(wanted, Progress.Demand[code.Index]);
    const double pitch = std::min(sideAlong + FAllowance, LengthOf(*info) / wanted);
    for (int k = 0; k < count; ++k)
      Progress.List.push_back(Placed(code, Corner + PlaceIn(info->Direct, k * pitch, across)));
    Progress.Demand[code.Index] -= count;
    Progress.FDecAera += (wanted - count) * blocks.Worth(code.Index);
    if (count == 0) continue;
    longest = std::max(longest, count * pitch);
    reached = across + sideAcross + FAllowance;
    across += std::ceil(sideAcross);
  }
  return Corner + PlaceIn(info->Direct, longest, reached);
}

TNestedRect TThreeBlockLayout::Placed(TStackCode Code, TPoint2D Corner) const {
  const TNestRect& part = FParts[Code.Index];
  if (Code.IsTurned) Corner.X += part.BoundBox.Height();
  return {part, Code.IsTurned, Corner};
}

}  // namespace platenest::detail
