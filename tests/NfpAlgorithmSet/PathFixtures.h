#pragma once

#include <utility>

#include "ExactMinkowski.h"
#include "Shapes.h"
#include "platenest/NfpAlgorithmSet/KineticConvolution.h"

namespace platenest {

inline TKMPLoop LoopOf(TVPolyline2D Contour) {
  TKMPLoop loop;
  loop.Initialize(Contour);
  return loop;
}

inline TVPolyline2D Rect(double Left, double Bottom, double Width, double Height) {
  return {{Left, Bottom}, {Left + Width, Bottom}, {Left + Width, Bottom + Height}, {Left, Bottom + Height}};
}

// A bar of height 1 with teeth of height 1, two units from tooth to tooth: four edges per tooth, four directions.
inline TVPolyline2D CombOf(int Teeth, double Scale = 1) {
  TVPolyline2D comb{{0, 0}, {2.0 * Teeth - 1, 0}};
  for (int i = Teeth - 1; i >= 0; --i) {
    comb.push_back({2.0 * i + 1, 2});
    comb.push_back({2.0 * i, 2});
    if (i == 0) break;
    comb.push_back({2.0 * i, 1});
    comb.push_back({2.0 * i - 1, 1});
  }
  comb.Zoom(Scale);
  return comb;
}

inline TVPolyline2D Clockwise(TVPolyline2D Contour) {
  Contour.SetIsClockwise(true);
  return Contour;
}

inline TVPolyline2D Mirrored(TVPolyline2D Contour) {
  Contour.Mirror();
  return Contour;
}

inline TPath PathOf(const TVPolyline2D& Contour) {
  return TPathUtils::CreatePath(Contour, kPathScale);
}

inline TPath OuterOf(const TVHPolygon& Part) {
  return PolygonOf(Part).front();
}

struct TConvolutionProbe : TKineticConvolution {
  using TKineticConvolution::_edgeCount, TKineticConvolution::_selfNfp;
  using TKineticConvolution::InnerPathSuspect, TKineticConvolution::PathBoxTooSmall, TKineticConvolution::PathInvalid;
  using TKineticConvolution::NormorlizePaths, TKineticConvolution::UnionCircuits;

  TConvolutionProbe(TKMPLoop Static, TKMPLoop Dynamic, TNFPType Required = ntComplete)
      : TKineticConvolution(Required, false), St(std::move(Static)), Dy(std::move(Dynamic)) {
    _stLoop = &St;
    _dyLoop = &Dy;
  }
  // From contours; the moving one as it is drawn.
  TConvolutionProbe(TVPolyline2D Static, TVPolyline2D Dynamic, TNFPType Required = ntComplete)
      : TConvolutionProbe(LoopOf(std::move(Static)), LoopOf(Mirrored(std::move(Dynamic))), Required) {}

  TKMPLoop St;
  TKMPLoop Dy;
};

}  // namespace platenest
