#pragma once

#include "platenest/foundation/Paths.h"
#include "platenest/foundation/Polyline.h"
#include "platenest/job/Job.h"

namespace platenest::detail {

struct TKernelAnswer {
  TPaths Paths;  // outer contours counter-clockwise, cavities clockwise, none crossing another
  NfpQuality Quality;
};

// What the kernel says to one pair. The kernel's outer paths and the reversed paths of holes lie side by side; they are
// united here. Raises what the kernel raises.
TKernelAnswer AskKernel(const TVHPolygon& Moving, const TVHPolygon& Fixed, bool IsInside, NfpQuality Quality);

}  // namespace platenest::detail
