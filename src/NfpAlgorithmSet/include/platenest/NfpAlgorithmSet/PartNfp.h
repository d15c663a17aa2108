#pragma once

#include <optional>

#include "platenest/NfpAlgorithmSet/KineticLoop.h"
#include "platenest/NfpAlgorithmSet/NfpTypes.h"
#include "platenest/foundation/Export.h"
#include "platenest/foundation/Paths.h"
#include "platenest/foundation/Polyline.h"

namespace platenest {

class PLATENEST_API TPartNFP {
 public:
  explicit TPartNFP(TNFPType RequiredType);

  static TKMPLoop GetKMPLoop(TVPolyline2D& APoly, double a);
  static TVPolyline2D GetSymmetry(const TVPolyline2D& Poly);
  static void CalcRectInnerNfp(const TVRect2D& plate, const TVRect2D& part, TPaths& NFPs);
  static void CalcRectOuterNfp(const TVRect2D& plate, const TVRect2D& part, TPaths& NFPs);

  TNFPType CalcNfp(TVPolyline2D& staticPoly, TVPolyline2D& dynamicPoly, bool putInside, TPaths& NFPs);
  TNFPType Nfp(TVPolyline2D& staticPoly, TVPolyline2D& dynamicPoly, bool putInside, TPaths& NFPs);
  void Nfp(TVHPolygon& staticPart, TVHPolygon& dynamicPart, bool putInside, TPaths& NFPs);
  void PlateNfp(TVHPolygon& plate, TVHPolygon& part, TPaths& NFPs);

  TNFPType Returned() const { return _returned; }

 private:
  std::optional<TKMPLoop> FStaticLoop;
  std::optional<TKMPLoop> FDynamicLoop;
  std::optional<TKMPLoop> _dyLoopCache;
  std::optional<TKMPLoop> _stLoopCache;
  double _dyArea = 0;
  double _stArea = 0;
  int _calcArea = 0;
  TNFPType _required;
  TNFPType _returned = ntNone;
};

// No-fit polygons of lists of parts.
class PLATENEST_API TPartsPackNFP {
 public:
  // May orient the parts and take hulls of them in place.
  static TNFP Nfp(TVHPolygonList& staticParts, TVHPolygonList& dynamicParts, bool putInside, TNFPType RequiredType);
  // On copies; the arguments stay unchanged.
  TNFP CalcNFP(const TVHPolygonList& dynamicParts, const TVHPolygonList& staticParts, bool putInside,
               TNFPType RequiredType) const;
};

}  // namespace platenest
