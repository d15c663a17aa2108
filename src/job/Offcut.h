#pragma once

#include <vector>

#include "platenest/job/Result.h"

// What laying plates anew for the sake of their offcut, the largest free rectangle, has in common.
namespace platenest::detail {

// Positions of the layouts that leave most room, the emptiest first: those worth the time.
std::vector<int> EmptiestLayouts(const std::vector<Layout>& Layouts);

// Takes over a layout, measured, that leaves a larger offcut.
void TakeWider(Layout Widened, Layout& ALayout);

}  // namespace platenest::detail
