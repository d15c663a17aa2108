#pragma once

#include <concepts>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>

#include "platenest/foundation/HostShapes.h"
#include "platenest/foundation/Paths.h"

// Dumps of shapes for a developer's viewer: coloured point lists as plain text, or the shapes themselves for the host's
// debug view. A debugging aid that no result depends on; nesters never call it in normal runs.
namespace platenest {

// Stands for "no colour" and is written as nothing, so such elements begin with a blank.
inline constexpr std::string_view kNoColor = "#000000";

struct TGeometryFormat {
  std::string_view Color = kNoColor;
  bool Exact = false;     // 16 decimals for floating coordinates instead of 6
  bool IsClosed = false;  // integer paths repeat their first point at the end
  bool Sample = false;    // lines with arcs are flattened
};

// The text of shapes. Elements of a list stand on lines of their own, without a break behind the last one:
//   point                "#ff0000 (1.000000, 2.000000)"        integer points without decimals
//   segment              "#ff0000 ((0.000000, 0.000000), (1.000000, 0.000000))"
//   polyline, path, box  "#ff0000 ((0, 0), (1, 0), (1, 1))"    a box as its four corners from the top left, clockwise
//   polygon, any list    its members in turn
// The decimal point is a point in every locale.
class PLATENEST_API TGeometryText {
 public:
  explicit TGeometryText(const TGeometryFormat& Format);

  void Add(const TPoint2D& Point);
  void Add(const TPointL2D& Point);
  void Add(const TIntPoint& Point);
  void Add(const TVLine2D& Line);
  void Add(const TVPoint2DList& Points);
  void Add(const TVRect2D& Box);
  void Add(const TPath& Path);
  void Add(const TPolyTree& Tree);
  void Add(const TLABPolyline& Line);
  void Add(const TMPolygon& Polygon);
  void Add(const TMLABPolygon& Polygon);
  template <class List>
  requires(!std::derived_from<List, TVPoint2DList>) void Add(const List& Shapes) {
    bool isFirst = true;
    for (const auto& shape : Shapes) {
      if (!isFirst) FText += '\n';
      isFirst = false;
      Add(shape);
    }
  }

  const std::string& Text() const { return FText; }

 private:
  void AddColor();
  void AddFloating(const TPoint2D& Point);
  void AddInteger(Int64 X, Int64 Y);

  std::string FColor;
  TGeometryFormat FFormat;
  std::string FText;
};

// Integer contours, written with IsClosed in place of Exact.
template <class T>
concept TIntegerShape = std::same_as<T, TPath> || std::same_as<T, TPaths> || std::same_as<T, TPolyTree>;

// The host's shapes with arcs, written with a further flag Sample.
template <class T>
concept TArcShape =
    std::same_as<T, TLABPolyline> || std::same_as<T, TLABPolylineList> || std::same_as<T, TLABHPolygonList> ||
    std::same_as<T, TMLABPolygon> || std::same_as<T, TMLABHPolygon> || std::same_as<T, TMLABHPolygonList>;

template <class T>
concept TPlainShape = !TIntegerShape<T> && !TArcShape<T>;

// The host's debug view: takes a list of polylines and the name to show them under.
using TDebugGeometryView = std::function<void(const TVPolyline2DList& Geometry, std::string_view Name)>;

// Installs a view for its own lifetime; scopes nest like brackets. The view may be called from any thread.
class PLATENEST_API TDebugGeometryScope {
 public:
  explicit TDebugGeometryScope(TDebugGeometryView View);
  ~TDebugGeometryScope();
  TDebugGeometryScope(const TDebugGeometryScope&) = delete;
  TDebugGeometryScope& operator=(const TDebugGeometryScope&) = delete;

 private:
  TDebugGeometryView FFormer;
};

// The folder that TestLog/MetaGeo stands in, by default the current one. Set while no other thread writes dumps.
class PLATENEST_API TGeometryFolderScope {
 public:
  explicit TGeometryFolderScope(std::filesystem::path Folder);
  ~TGeometryFolderScope();
  TGeometryFolderScope(const TGeometryFolderScope&) = delete;
  TGeometryFolderScope& operator=(const TGeometryFolderScope&) = delete;

 private:
  std::filesystem::path FFormer;
};

// Only GetLogUID and OutputDebugGeometry are safe on several threads at once; file names of parallel writers must
// differ. A file or stream that cannot be written raises TNestError.
class PLATENEST_API TGeometryLog {
 public:
  TGeometryLog() = delete;

  // Writes one shape to an open stream; what stands between two shapes is the caller's.
  template <TPlainShape Shape>
  static void WriteToFile(const Shape& Geom, std::ostream& File, std::string_view Color = kNoColor,
                          bool Exact = false) {
    Put(TextOf(Geom, {.Color = Color, .Exact = Exact}), File);
  }
  template <TIntegerShape Shape>
  static void WriteToFile(const Shape& Geom, std::ostream& File, std::string_view Color = kNoColor,
                          bool IsClosed = false) {
    Put(TextOf(Geom, {.Color = Color, .IsClosed = IsClosed}), File);
  }
  template <TArcShape Shape>
  static void WriteToFile(const Shape& Geom, std::ostream& File, std::string_view Color = kNoColor, bool Exact = false,
                          bool Sample = true) {
    Put(TextOf(Geom, {.Color = Color, .Exact = Exact, .Sample = Sample}), File);
  }

  // Writes TestLog/MetaGeo/<FileName>.xdr anew, with the folders it needs.
  template <TPlainShape Shape>
  static void WriteFile(const Shape& Geom, std::string_view FileName, std::string_view Color = kNoColor,
                        bool Exact = false) {
    PutFile(TextOf(Geom, {.Color = Color, .Exact = Exact}), FileName);
  }
  template <TIntegerShape Shape>
  static void WriteFile(const Shape& Geom, std::string_view FileName, std::string_view Color = kNoColor,
                        bool IsClosed = false) {
    PutFile(TextOf(Geom, {.Color = Color, .IsClosed = IsClosed}), FileName);
  }
  template <TArcShape Shape>
  static void WriteFile(const Shape& Geom, std::string_view FileName, std::string_view Color = kNoColor,
                        bool Exact = false, bool Sample = true) {
    PutFile(TextOf(Geom, {.Color = Color, .Exact = Exact, .Sample = Sample}), FileName);
  }

  // Hands the shapes, paths in drawing units, to the host's view under a name of its own: that of FileName with "_" and
  // a strictly growing time before the extension. Without a view nothing happens; what a view raises goes no further.
  static void OutputDebugGeometry(const TDynPoints2D& Geom, std::string_view FileName);
  static void OutputDebugGeometry(const TVPoint2DList& Geom, std::string_view FileName);
  static void OutputDebugGeometry(const TVPolyline2D& Geom, std::string_view FileName);
  static void OutputDebugGeometry(const TVPolyline2DList& Geom, std::string_view FileName);
  static void OutputDebugGeometry(const TPath& Geom, std::string_view FileName);
  static void OutputDebugGeometry(const TPaths& Geom, std::string_view FileName);

  // The next number of a process-wide count, from 1.
  static Int64 GetLogUID() noexcept;

 private:
  template <class Shape>
  static std::string TextOf(const Shape& Geom, const TGeometryFormat& Format) {
    TGeometryText text(Format);
    text.Add(Geom);
    return text.Text();
  }
  static void Put(const std::string& Text, std::ostream& File);
  static void PutFile(const std::string& Text, std::string_view FileName);
};

}  // namespace platenest
