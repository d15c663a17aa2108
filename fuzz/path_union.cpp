// Unites the paths read from the input as if they were the circuits of two loops also read from it, and judges them.
#include <vector>

#include "Input.h"
#include "platenest/NfpAlgorithmSet/KineticConvolution.h"
#include "platenest/foundation/Errors.h"

namespace {

using namespace platenest;

constexpr std::size_t kMaxBytes = 1024;
constexpr int kMostPoints = 40;  // of a loop or circuit

// On a coarse grid, with a fine part that may be smaller than any rule.
double Coordinate(TInput& In) {
  const int coarse = In.Next();
  return coarse % 64 + (coarse < 128 ? 0 : 1e-5 * (In.Next() - 128));
}

TVPolyline2D ReadContour(TInput& In, double Scale) {
  TVPolyline2D contour;
  const int count = 3 + In.Next() % (kMostPoints - 2);
  for (int i = 0; i < count && !In.Empty(); ++i) {
    const double x = Coordinate(In);
    contour.push_back({Scale * x, Scale * Coordinate(In)});
  }
  return contour;
}

TKMPLoop ReadLoop(TInput& In, double Scale) {
  TVPolyline2D contour = ReadContour(In, Scale);
  TKMPLoop loop;
  loop.Initialize(contour);
  return loop;
}

struct TFound : TKineticCircuits {
  using TKineticCircuits::FCircuits, TKineticCircuits::FOuterCycleCounter, TKineticCircuits::TKineticCircuits;
};

struct TProbe : TKineticConvolution {
  using TKineticConvolution::_selfNfp, TKineticConvolution::_stLoop, TKineticConvolution::_dyLoop;
  using TKineticConvolution::TKineticConvolution, TKineticConvolution::NormorlizePaths;
  using TKineticConvolution::UnionCircuits;
};

void RequirePaths(const TPaths& Paths) {
  for (const TPath& path : Paths) Require(path.size() >= 3);
}

void UniteAndJudge(TInput In) {
  const int mode = In.Next();
  const TKMPLoop st = ReadLoop(In, 0.25);
  const TKMPLoop dy = ReadLoop(In, 0.0625);
  TVectorGraph graph(kMaxBytes);
  std::vector<std::vector<int>> circuits;
  for (int id = 0; !In.Empty();) {
    circuits.emplace_back();
    for (const TPoint2D& point : ReadContour(In, 0.5)) {
      graph.AddVertex(point);
      circuits.back().push_back(id++);
    }
    if (circuits.back().size() < 3) circuits.pop_back();
  }
  TFound found(graph, 2);
  for (const auto& circuit : circuits) found.FCircuits.push_back(circuit);
  found.FOuterCycleCounter = found.CircuitCount() - mode / 16 % 2;

  TProbe convolution(mode % 2 == 0 ? ntComplete : ntConcaveHull, false);
  convolution._stLoop = &st;
  convolution._dyLoop = &dy;
  convolution._selfNfp = mode / 32 % 5;
  TPaths paths;
  Require(convolution.UnionCircuits(found, paths, false));
  RequirePaths(paths);
  const bool inside = mode / 2 % 2 == 0;
  const bool accepted = convolution.NormorlizePaths(paths, inside);
  if (accepted) RequirePaths(paths);
  if (accepted && !inside) Require(!paths.empty());
  for (const TPath& path : paths) TKineticConvolution::WholePathInvalid(st, dy, path, mode / 4 % 3 - 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Count) {
  Try<TNestError>([&] { UniteAndJudge(TInput(Data, Count, kMaxBytes)); });
  return 0;
}
