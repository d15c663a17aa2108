// How many 300 x 200 panels come out of a 2440 x 1220 board with 5 between them? Asked of the nester itself.
#include <cstdio>

#include <platenest/platenest.h>

int main() {
  using namespace platenest;
  const TVRect2D board = TVRect2D::FromSize(2440, 1220);
  const TNestRect panel(100, 0, TVRect2D::FromSize(300, 200));

  TNestedRects layout;
  bool isFull = false;
  const int count = TRectangleNest(board, panel, 5).SingleNest(layout, isFull);

  std::printf("%d panels, the board is %s, usage %.4f, at most %lld by Barnes' bound\n", count,
              isFull ? "full" : "not full", TRectangleNest::NestUsageRatio(board, panel, 5),
              static_cast<long long>(BarnesUpbound(2445, 1225, 305, 205)));
  const TVRect2D first = layout.First().BoundBox();
  std::printf("the first one stands at (%g, %g)\n", first.Left, first.Bottom);
  return count == 46 ? 0 : 1;
}
