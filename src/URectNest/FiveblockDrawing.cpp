#include "FiveblockDrawing.h"

#include <array>
#include <vector>

namespace platenest::detail {

namespace {

// A block in the axes of the placements.
struct TBlock {
  int P;
  int Q;
  int X;
  int Y;
};

using TSides = std::array<int, 5>;

struct TSubProblems {
  TSides L;
  TSides W;
};

TSubProblems GetSubProblems(const TCutPoint& Cut, int L, int W, const TFiveblockPoints& Points) {
  const auto n = [&Points](int length) { return Points.Normalize(length); };
  return {{Cut.X1, n(L - Cut.X1), n(Cut.X2 - Cut.X1), Cut.X2, n(L - Cut.X2)},
          {n(W - Cut.Y1), n(W - Cut.Y2), n(Cut.Y2 - Cut.Y1), Cut.Y1, Cut.Y2}};
}

std::array<TBlock, 5> BlocksUpright(const TSubProblems& Sub, int X, int Y) {
  const auto& [l, w] = Sub;
  return {{{l[0], w[0], X, Y + w[3]},
           {l[1], w[1], X + l[0], Y + w[4]},
           {l[2], w[2], X + l[0], Y + w[3]},
           {l[3], w[3], X, Y},
           {l[4], w[4], X + l[3], Y}}};
}

std::array<TBlock, 5> BlocksTurned(const TSubProblems& Sub, int X, int Y) {
  const auto& [l, w] = Sub;
  return {{{w[0], l[0], X + w[3], Y + l[1]},
           {w[1], l[1], X + w[4], Y},
           {w[2], l[2], X + w[3], Y + l[4]},
           {w[3], l[3], X, Y + l[4]},
           {w[4], l[4], X, Y}}};
}

void DrawHomo(const TBlock& Block, const TFiveblockPart& Part, TNestedRects& List) {
  const auto& [P, Q, X, Y] = Block;
  const auto& [A, B, gap, amp, rect] = Part;
  const bool isRotate = Int64{P / B} * (Q / A) >= Int64{P / A} * (Q / B);
  const int stepX = isRotate ? B : A;
  const int stepY = isRotate ? A : B;
  const Int64 left = Int64{X} + (isRotate ? B - gap : gap);
  const Int64 bottom = Int64{Y} + gap;
  const auto plateUnits = [amp = amp](Int64 units) { return static_cast<double>(units) / amp; };
  for (Int64 u = 0; u + stepX <= P; u += stepX) {
    for (Int64 v = 0; v + stepY <= Q; v += stepY)
      List.emplace_back(rect, isRotate, TPoint2D{plateUnits(left + u), plateUnits(bottom + v)});
  }
}

}  // namespace

void DrawFiveblock(int P, int Q, const TFiveblockPoints& Points, const TFiveblockPart& Part, const TCutOf& CutOf,
                   TNestedRects& List) {
  std::vector<TBlock> waiting{{P, Q, 0, 0}};
  while (!waiting.empty()) {
    const TBlock block = waiting.back();
    waiting.pop_back();
    const bool isTurned = block.Q > block.P;
    const int L = isTurned ? block.Q : block.P;
    const int W = isTurned ? block.P : block.Q;
    const TCutPoint cut = CutOf(L, W);
    if (cut.Homo == 1) {
      DrawHomo(block, Part, List);
      continue;
    }
    // Blocks are smaller than the plate they come from, so this ends.
    const TSubProblems sub = GetSubProblems(cut, L, W, Points);
    const auto blocks = isTurned ? BlocksTurned(sub, block.X, block.Y) : BlocksUpright(sub, block.X, block.Y);
    for (std::size_t k = blocks.size(); k-- > 0;)
      if (blocks[k].P != 0 && blocks[k].Q != 0) waiting.push_back(blocks[k]);
  }
}

}  // namespace platenest::detail
