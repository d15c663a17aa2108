#pragma once

#include "platenest/NfpAlgorithmSet/KineticLoop.h"
#include "platenest/foundation/HostShapes.h"
#include "platenest/foundation/Paths.h"

namespace platenest::detail {

// The path shrunk by -Delta (grown by Delta above 0), path units. A lone path counts as solid however it runs, so a
// clockwise hole shrinks as well.
TPaths OffsetPath(const TPath& Path, double Delta);

// Puts the moving shape where a path says and looks for overlap with the fixed one. Loops that run opposite ways are a
// part and its cavity, then the material of the cavity is what lies outside of it.
class TTrialPlacement {
 public:
  // dyLoop holds the moving shape mirrored through the origin.
  TTrialPlacement(const TKMPLoop& stLoop, const TKMPLoop& dyLoop);
  bool OverlapsAt(const TIntPoint& Place) const;

 private:
  bool FIsCavity;
  TMPolygon FStatic;
  TVPolyline2D FDynamic;  // at the origin
};

}  // namespace platenest::detail
