#pragma once

#include <string_view>

#include "platenest/NfpAlgorithmSet/NfpTypes.h"
#include "platenest/NfpAlgorithmSet/PartNfp.h"
#include "platenest/foundation/Export.h"
#include "platenest/foundation/Polyline.h"

namespace platenest {

class PLATENEST_API TNFPCalculator {
 public:
  TNFPCalculator() = delete;

  static TPartsPackNFP NFPAlgo;
  static std::atomic<Int64> CalcNFPCount;

  static TNFP CalcNFP(const TVHPolygon& SubHPolygon, const TVHPolygon& ObjHPolygon, bool IsInside,
                      TNFPType RequiredType, std::string_view SubName, std::string_view ObjName);
  static TNFP CalcNFP(const TVHPolygonList& SubHPolygons, const TVHPolygonList& ObjHPolygons, bool IsInside,
                      TNFPType RequiredType, std::string_view SubName, std::string_view ObjName);
  static TNFP CalcNFPUI(const TVHPolygonList& SubHPolygons, const TVHPolygonList& ObjHPolygons, bool IsInside,
                        TNFPType RequiredType, std::string_view SubName, std::string_view ObjName);
  static TNFP RotateAndOffsetNFP(const TNFP& Nfp, double Radian, int Offset, int JoinType, double MiterRadian);
};

}  // namespace platenest
