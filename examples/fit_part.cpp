// Where may a bracket lie beside another one, and where does it fit inside a plate? Asked of the kernel's door itself.
#include <cstdio>

#include <platenest/platenest.h>

using namespace platenest;

namespace {

TVHPolygon Shape(const TVPolyline2D& Outline) {
  TVHPolygon shape;
  shape.push_back(Outline);
  return shape;
}

// Integer paths, outer contours counter-clockwise and cavities clockwise, so that the sum tells what they enclose.
void Print(const char* Name, const TNFP& Nfp) {
  std::printf("%s: %zu paths, quality %s, %.0f square units\n", Name, Nfp.IsEmpty() ? 0 : Nfp.NFP->size(),
              TNFPTypeUtils::GetTypeNameStr(Nfp.NFPType),
              Nfp.IsEmpty() ? 0 : TPathUtils::Area(*Nfp.NFP) / (kPathScale * kPathScale));
}

}  // namespace

int main() {
  const TVHPolygon bracket = Shape({{0, 0}, {120, 0}, {120, 25}, {30, 25}, {30, 90}, {0, 90}});
  const TVHPolygon plate = Shape({{0, 0}, {500, 0}, {560, 120}, {560, 300}, {0, 300}});
  try {
    const TNFP around = TNFPCalculator::CalcNFP(bracket, bracket, false, ntComplete, "bracket", "bracket");
    const TNFP inside = TNFPCalculator::CalcNFP(bracket, plate, true, ntComplete, "bracket", "plate");
    Print("around another bracket", around);
    Print("inside the plate", inside);
    return around.IsEmpty() || inside.IsEmpty() ? 1 : 0;
  } catch (const TNestError& error) {
    std::fprintf(stderr, "%s\n", error.Text().c_str());
    return 1;
  }
}
