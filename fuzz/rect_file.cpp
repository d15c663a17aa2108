#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platenest/URectNest/RectFile.h"

// Any text either reads or is refused with an input error; what was there before stays on a refusal.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  using namespace platenest;
  const std::string_view text(reinterpret_cast<const char*>(Data), Size);
  TNestRectList list(1);
  TVRect2D plate = TVRect2D::FromSize(-1, -1);
  try {
    ReadRectsFromText(text, "fuzz.txt", list, plate);
  } catch (const TInputError&) {
    if (list.size() != 1 || plate.Width() != -1) std::abort();
    return 0;
  }
  for (std::size_t i = 1; i < list.size(); ++i) {
    const TVRect2D& box = list[i].BoundBox;
    if (!(box.Width() < 0 || box.Width() > 0) || !(box.Height() < 0 || box.Height() > 0)) std::abort();
  }
  return 0;
}
