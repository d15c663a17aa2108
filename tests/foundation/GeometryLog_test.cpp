#include "platenest/foundation/GeometryLog.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <locale>
#include <sstream>
#include <vector>

#include "platenest/foundation/Errors.h"

namespace platenest {
namespace {

template <class Shape, class... Options>
std::string Written(const Shape& Geom, Options... Arguments) {
  std::ostringstream file;
  TGeometryLog::WriteToFile(Geom, file, Arguments...);
  return file.str();
}

const TVPolyline2D kLine{{0, -1}, {2.5, 3}};
const char kLineText[] = "red ((0.000000, -1.000000), (2.500000, 3.000000))";

struct TCommaPoint : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(GeometryLog, WritesEachShapeInItsFormInAnyLocale) {
  const std::locale former = std::locale::global(std::locale(std::locale::classic(), new TCommaPoint));
  EXPECT_EQ(Written(Point2D(1234.5, 2), "#ff0000"), "#ff0000 (1234.500000, 2.000000)");
  EXPECT_EQ(Written(Point2D(0.1, -2), "red", true), "red (0.1000000000000000, -2.0000000000000000)");
  EXPECT_EQ(Written(TPointL2D{-5, 1LL << 60}, "red"), "red (-5, 1152921504606846976)");
  EXPECT_EQ(Written(kLine, "red"), kLineText);
  const TPath path{{0, 0}, {-3, 4}};
  EXPECT_EQ(Written(path, "red"), "red ((0, 0), (-3, 4))");
  EXPECT_EQ(Written(path, "red", true), "red ((0, 0), (-3, 4), (0, 0))");
  EXPECT_EQ(Written(TVRect2D::FromSize(2, 1), "red"),
            "red ((0.000000, 1.000000), (2.000000, 1.000000), (2.000000, 0.000000), (0.000000, 0.000000))");
  std::locale::global(former);
}

TEST(GeometryLog, ListsBreakBetweenMembersOnly) {
  const std::string line = kLineText;
  const std::string three = line + "\n" + line + "\n" + line;
  const TVHPolygon polygon{kLine, kLine};
  EXPECT_EQ(Written(TVPolyline2DList{kLine, kLine, kLine}, "red"), three);
  EXPECT_EQ(Written(TVHPolygonList{polygon, TVHPolygon{kLine}}, "red"), three);
  const TLABPolyline arc(kLine);
  const TMPolygon chain(kLine);
  EXPECT_EQ(Written(TLABHPolygonList{{arc, arc}, {arc}}, "red"), three);
  EXPECT_EQ(Written(TMHPolygonList{{chain, chain}, {chain}}, "red"), three);
  EXPECT_EQ(Written(TMLABHPolygonList{{TMLABPolygon(arc), TMLABPolygon(arc)}, {TMLABPolygon(arc)}}, "red"), three);
}

TEST(GeometryLog, FilesAreWrittenAnewBelowTheBaseFolder) {
  const std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / "platenest_geometry_log";
  std::filesystem::remove_all(folder);
  const TGeometryFolderScope scope(folder);
  const std::filesystem::path target = folder / "TestLog" / "MetaGeo" / "shape.xdr";
  const auto content = [&target] {
    std::ifstream file(target);
    return std::string(std::istreambuf_iterator<char>(file), {});
  };
  TGeometryLog::WriteFile(TVPolyline2DList{kLine, kLine}, "shape", "red", true);
  TGeometryLog::WriteFile(kLine, "shape", "red");
  EXPECT_EQ(content(), kLineText);
  TGeometryLog::WriteFile(TPaths{{{1, 2}, {3, 4}}}, "shape", kNoColor, true);
  EXPECT_EQ(content(), " ((1, 2), (3, 4), (1, 2))");
  std::ostringstream broken;
  broken.setstate(std::ios::badbit);
  EXPECT_THROW(TGeometryLog::WriteToFile(kLine, broken), TNestError);
  std::filesystem::remove_all(folder);
}

TEST(GeometryLog, HostViewGetsPolylinesUnderGrowingNames) {
  std::vector<std::pair<TVPolyline2DList, std::string>> seen;
  const TDebugGeometryScope scope(
      [&seen](const TVPolyline2DList& Geometry, std::string_view Name) { seen.emplace_back(Geometry, Name); });
  TGeometryLog::OutputDebugGeometry(TPaths{{{100000, -50000}}, {}}, "dir.d/a.xdr");
  TGeometryLog::OutputDebugGeometry(TPath{{300000, 0}}, "plain");
  EXPECT_EQ(seen[0].first[0][0], (TPoint2D{1, -0.5})) << "paths in drawing units";
  EXPECT_TRUE(seen[0].second.starts_with("dir.d/a_") && seen[0].second.ends_with(".xdr")) << seen[0].second;
  EXPECT_EQ(seen[1].second.find_first_not_of("0123456789", 6), std::string::npos) << "no extension: " << seen[1].second;
  for (int i = 0; i < 2000; ++i) TGeometryLog::OutputDebugGeometry(kLine, "a");
  for (int i = 3; i < 2002; ++i) ASSERT_LT(seen[i - 1].second, seen[i].second) << "also within one tick of the clock";
}

}  // namespace
}  // namespace platenest
