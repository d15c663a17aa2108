#include "Offcut.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

constexpr std::size_t kMostLayouts = 3;
constexpr double kTol = 1e-9;

double FreeArea(const Layout& ALayout) {
  return (ALayout.FreeBox[2] - ALayout.FreeBox[0]) * (ALayout.FreeBox[3] - ALayout.FreeBox[1]);
}

}  // namespace

std::vector<int> EmptiestLayouts(const std::vector<Layout>& Layouts) {
  std::vector<int> order;
  for (int i = 0; i < Size(Layouts); ++i) order.push_back(i);
  const auto unused = [&](int i) { return (1 - Layouts[i].Usage) * Layouts[i].Width * Layouts[i].Height; };
  SortBy(order, [&](int a, int b) { return Sign(unused(b), unused(a)); });
  order.resize(std::min(order.size(), kMostLayouts));
  return order;
}

void TakeWider(Layout Widened, Layout& ALayout) {
  if (FreeArea(Widened) > FreeArea(ALayout) * (1 + kTol)) ALayout = std::move(Widened);
}

}  // namespace platenest::detail
