#include "platenest/services/NFP.h"

#include <cmath>
#include <string>
#include <utility>

#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Host.h"
#include "platenest/foundation/PolyOffsetter.h"

namespace platenest {

TPartsPackNFP TNFPCalculator::NFPAlgo;
std::atomic<Int64> TNFPCalculator::CalcNFPCount{0};

struct TNFPCalculator::TRequest {
  std::span<const TVHPolygon> Sub;
  std::span<const TVHPolygon> Obj;
  bool IsInside;
  TNFPType RequiredType;
  std::string_view SubName;
  std::string_view ObjName;
  const TVHPolygonList* ToUnite = nullptr;  // stands for Obj, owned by the caller
};

namespace {

bool IsUsable(double Coordinate) {
  return std::fabs(Coordinate) <= kMaxNfpCoordinate;  // false for NaN
}

bool AreUsable(std::span<const TVHPolygon> Parts) {
  for (const TVHPolygon& part : Parts)
    for (const TVPolyline2D& contour : part)
      for (const TPoint2D& point : contour)
        if (!IsUsable(point.X) || !IsUsable(point.Y)) return false;
  return true;
}

// The checks of a request that is refused before it is counted.
void CheckShapes(std::span<const TVHPolygon> Sub, std::span<const TVHPolygon> Obj, const std::string& Operation) {
  if (Sub.empty() || Obj.empty()) throw TNestError("[Error] TNFPCalculator." + Operation + ": NFP图源错误");
  if (!AreUsable(Sub) || !AreUsable(Obj))
    throw TArgumentError("[Error] TNFPCalculator." + Operation + ": a coordinate is not finite or too large");
}

std::string ClassNameOf(const std::exception& Error) {
  const auto* const own = dynamic_cast<const TNestError*>(&Error);
  return own == nullptr ? "std::exception" : own->ClassName();
}

void ReportFailure(const std::exception& Error) {
  AppSys::CallProc("CmdLogln", "0 3 TNFPCalculator.CalcNFP:计算NFP时发生异常");
  TCerr::W("[Error] TNFPCalculator.CalcNFP: 计算NFP时发生异常  " + ClassNameOf(Error) + ": " + Error.what());
}

}  // namespace

TNFP TNFPCalculator::CalcNFP(const TVHPolygon& SubHPolygon, const TVHPolygon& ObjHPolygon, bool IsInside,
                             TNFPType RequiredType, std::string_view SubName, std::string_view ObjName) {
  const std::span<const TVHPolygon> sub(&SubHPolygon, 1);
  const std::span<const TVHPolygon> obj(&ObjHPolygon, 1);
  CheckShapes(sub, obj, "CalcNFP");
  return Calculate({sub, obj, IsInside, RequiredType, SubName, ObjName});
}

TNFP TNFPCalculator::CalcNFP(const TVHPolygonList& SubHPolygons, const TVHPolygonList& ObjHPolygons, bool IsInside,
                             TNFPType RequiredType, std::string_view SubName, std::string_view ObjName) {
  CheckShapes(SubHPolygons, ObjHPolygons, "CalcNFP");
  return Calculate({SubHPolygons, ObjHPolygons, IsInside, RequiredType, SubName, ObjName});
}

TNFP TNFPCalculator::CalcNFPUI(const TVHPolygonList& SubHPolygons, const TVHPolygonList& ObjHPolygons, bool IsInside,
                               TNFPType RequiredType, std::string_view SubName, std::string_view ObjName) {
  CheckShapes(SubHPolygons, ObjHPolygons, "CalcNFPUI");
  return Calculate({SubHPolygons, ObjHPolygons, IsInside, RequiredType, SubName, ObjName, &ObjHPolygons});
}

TNFP TNFPCalculator::Calculate(const TRequest& Request) {
  CalcNFPCount.fetch_add(1, std::memory_order_relaxed);
  std::FILE* logFile = nullptr;
  const bool doesLog = GetDoesLog(Request.IsInside);
  if (doesLog)
    LogShape(Request.Sub, Request.Obj, Request.IsInside, Request.RequiredType, Request.SubName, Request.ObjName,
             logFile);
  TNFP result{TPaths(), ntNone};
  if (Request.RequiredType != ntNone) {
    try {
      const TVHPolygonList united = Request.ToUnite == nullptr ? TVHPolygonList() : Request.ToUnite->IntersectSelf();
      const std::span<const TVHPolygon> obj = Request.ToUnite == nullptr ? Request.Obj : united;
      result = NFPAlgo.CalcNFP(Request.Sub, obj, Request.IsInside, Request.RequiredType);
      if (!Request.IsInside && result.IsEmpty()) throw TNestError("NFP为空");
    } catch (const std::exception& error) {
      ReportFailure(error);
      if (doesLog) LogNFPResult(result, logFile);
      throw;
    }
  }
  if (doesLog) LogNFPResult(result, logFile);
  return result;
}

TNFP TNFPCalculator::RotateAndOffsetNFP(const TNFP& Nfp, double Radian, int Offset, int JoinType, double MiterRadian) {
  TNFP result = Nfp.Clone();
  if (result.NFP == nullptr) return result;
  const int join = JoinType & 0xFF;
  *result.NFP = TPolyOffsetter::OffsetPathsToPaths(TPathUtils::Rotate(*result.NFP, Radian), Offset, join, MiterRadian);
  return result;
}

void TNFPCalculator::LogShape(std::span<const TVHPolygon>, std::span<const TVHPolygon>, bool, TNFPType,
                              std::string_view, std::string_view, std::FILE*&) {}

void TNFPCalculator::LogNFPResult(const TNFP&, std::FILE*&) {}

}  // namespace platenest
