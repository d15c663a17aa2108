#include "platenest/foundation/GeometryLog.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <chrono>
#include <fstream>
#include <system_error>
#include <utility>

#include "Door.h"
#include "platenest/foundation/Errors.h"

namespace platenest {

namespace {

namespace fs = std::filesystem;

constexpr double kSampleTol = 0.02;  // drawing units

detail::TDoor<TDebugGeometryView> debugView;

fs::path& BaseFolder() {
  static fs::path folder = ".";
  return folder;
}

template <class... Format>
void AppendNumber(std::string& Text, Format... Number) {
  char digits[400];  // the largest double has 309 digits before the point
  const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, Number...);
  Text.append(digits, end.ptr);
}

// Microseconds since 1970, or one more than the last answer where the clock has not moved on.
Int64 GrowingTime() {
  static std::atomic<Int64> last{0};
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  const Int64 micros = std::chrono::duration_cast<std::chrono::microseconds>(now).count();
  Int64 former = last.load();
  Int64 next = 0;
  do next = std::max(micros, former + 1);
  while (!last.compare_exchange_weak(former, next));
  return next;
}

std::string UniqueName(std::string_view FileName) {
  const fs::path name(FileName);
  return (name.parent_path() / name.stem()).string() + "_" + std::to_string(GrowingTime()) + name.extension().string();
}

[[noreturn]] void RaiseFileError(const fs::path& File, const std::string& Reason) {
  throw TNestError("[Error] TGeometryLog.WriteFile: " + File.string() + ": " + Reason);
}

}  // namespace

TGeometryText::TGeometryText(const TGeometryFormat& Format)
    : FColor(Format.Color == kNoColor ? std::string_view() : Format.Color), FFormat(Format) {
  FFormat.Color = {};
}

void TGeometryText::AddColor() {
  FText += FColor;
  FText += ' ';
}

void TGeometryText::AddFloating(const TPoint2D& Point) {
  const int decimals = FFormat.Exact ? 16 : 6;
  FText += '(';
  AppendNumber(FText, Point.X, std::chars_format::fixed, decimals);
  FText += ", ";
  AppendNumber(FText, Point.Y, std::chars_format::fixed, decimals);
  FText += ')';
}

void TGeometryText::AddInteger(Int64 X, Int64 Y) {
  FText += '(';
  AppendNumber(FText, X);
  FText += ", ";
  AppendNumber(FText, Y);
  FText += ')';
}

void TGeometryText::Add(const TPoint2D& Point) {
  AddColor();
  AddFloating(Point);
}

void TGeometryText::Add(const TPointL2D& Point) {
  AddColor();
  AddInteger(Point.X, Point.Y);
}

void TGeometryText::Add(const TIntPoint& Point) {
  AddColor();
  AddInteger(Point.X, Point.Y);
}

void TGeometryText::Add(const TVLine2D& Line) {
  AddColor();
  FText += '(';
  AddFloating(Line.StartPoint);
  FText += ", ";
  AddFloating(Line.EndPoint);
  FText += ')';
}

void TGeometryText::Add(const TVPoint2DList& Points) {
  AddColor();
  FText += '(';
  for (std::size_t i = 0; i < Points.size(); ++i) {
    if (i > 0) FText += ", ";
    AddFloating(Points[i]);
  }
  FText += ')';
}

void TGeometryText::Add(const TVRect2D& Box) {
  Add(TVPolyline2D(Box));
}

void TGeometryText::Add(const TPath& Path) {
  AddColor();
  FText += '(';
  for (std::size_t i = 0; i < Path.size(); ++i) {
    if (i > 0) FText += ", ";
    AddInteger(Path[i].X, Path[i].Y);
  }
  if (FFormat.IsClosed && !Path.empty() && Path.front() != Path.back()) {
    FText += ", ";
    AddInteger(Path.front().X, Path.front().Y);
  }
  FText += ')';
}

void TGeometryText::Add(const TPolyTree& Tree) {
  const ClipperLib::PolyNode* const first = Tree.GetFirst();
  for (const ClipperLib::PolyNode* node = first; node != nullptr; node = node->GetNext()) {
    if (node != first) FText += '\n';
    Add(node->Contour);
  }
}

void TGeometryText::Add(const TLABPolyline& Line) {
  Add(FFormat.Sample ? Line.Sample(kSampleTol, kSampleTol) : Line.Points());
}

void TGeometryText::Add(const TMPolygon& Polygon) {
  Add(Polygon.Points());
}

void TGeometryText::Add(const TMLABPolygon& Polygon) {
  Add(Polygon.Line());
}

TDebugGeometryScope::TDebugGeometryScope(TDebugGeometryView View) : FFormer(debugView.Exchange(std::move(View))) {}
TDebugGeometryScope::~TDebugGeometryScope() {
  debugView.Exchange(std::move(FFormer));
}

TGeometryFolderScope::TGeometryFolderScope(fs::path Folder) : FFormer(std::exchange(BaseFolder(), std::move(Folder))) {}
TGeometryFolderScope::~TGeometryFolderScope() {
  BaseFolder() = std::move(FFormer);
}

void TGeometryLog::Put(const std::string& Text, std::ostream& File) {
  File << Text;
  if (!File) throw TNestError("[Error] TGeometryLog.WriteToFile: the stream takes no text");
}

void TGeometryLog::PutFile(const std::string& Text, std::string_view FileName) {
  // Joined as text: a name that begins with a separator stays below the folder.
  const fs::path target = (BaseFolder() / "TestLog" / "MetaGeo" / "").string() + std::string(FileName) + ".xdr";
  std::error_code error;
  fs::create_directories(target.parent_path(), error);
  if (error) RaiseFileError(target, error.message());
  std::ofstream file(target, std::ios::trunc);
  file << Text;
  file.close();
  if (!file) RaiseFileError(target, "cannot be written");
}

void TGeometryLog::OutputDebugGeometry(const TDynPoints2D& Geom, std::string_view FileName) {
  OutputDebugGeometry(TVPolyline2D(Geom), FileName);
}

void TGeometryLog::OutputDebugGeometry(const TVPoint2DList& Geom, std::string_view FileName) {
  OutputDebugGeometry(TVPolyline2D(Geom), FileName);
}

void TGeometryLog::OutputDebugGeometry(const TVPolyline2D& Geom, std::string_view FileName) {
  OutputDebugGeometry(TVPolyline2DList{Geom}, FileName);
}

void TGeometryLog::OutputDebugGeometry(const TPath& Geom, std::string_view FileName) {
  OutputDebugGeometry(TPathUtils::CreatePolyline(Geom, kPathScale), FileName);
}

void TGeometryLog::OutputDebugGeometry(const TPaths& Geom, std::string_view FileName) {
  OutputDebugGeometry(TPathUtils::CreatePolylines(Geom, kPathScale), FileName);
}

void TGeometryLog::OutputDebugGeometry(const TVPolyline2DList& Geom, std::string_view FileName) {
  const auto view = debugView.Get();
  if (!view) return;
  try {
    (*view)(Geom, UniqueName(FileName));
  } catch (...) {  // a view that throws must not stop the caller
  }
}

Int64 TGeometryLog::GetLogUID() noexcept {
  static std::atomic<Int64> count{0};
  return ++count;
}

}  // namespace platenest
