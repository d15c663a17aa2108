#include "Input.h"
#include "platenest/URectNest/RectFile.h"

// Any text either reads or is refused with an input error; what was there before stays on a refusal.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace platenest;
  TNestRectList list(1);
  TVRect2D plate = TVRect2D::FromSize(-1, -1);
  if (!Try<TInputError>([&] { ReadRectsFromText(TextOf(data, size), "fuzz.txt", list, plate); }))
    Require(list.size() == 1 && plate.Width() == -1);
  for (std::size_t i = 1; i < list.size(); ++i) {
    const TVRect2D& box = list[i].BoundBox;
    Require((box.Width() < 0 || box.Width() > 0) && (box.Height() < 0 || box.Height() > 0));
  }
  return 0;
}
