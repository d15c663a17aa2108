#include "NfpInstances.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>

namespace platenest {

namespace {

using TJson = nlohmann::json;

TPoint2D PointOf(const TJson& Pair) {
  return {Pair.at(0).get<double>(), Pair.at(1).get<double>()};
}

TVPolyline2D ContourOf(const TJson& Points) {
  TVPolyline2D contour;
  for (const TJson& point : Points) contour.push_back(PointOf(point));
  if (contour.size() < 3) throw std::runtime_error("a contour of fewer than three points");
  return contour;
}

TVHPolygon ShapeOf(const TJson& Holder) {
  TVHPolygon shape;
  shape.push_back(ContourOf(Holder.at("outer")));
  for (const TJson& hole : Holder.at("holes")) shape.push_back(ContourOf(hole));
  shape.SetIsClockwise(false);
  return shape;
}

std::optional<double> NumberOf(const TJson& Value) {
  return Value.is_null() ? std::nullopt : std::optional(Value.get<double>());
}

TNfpInstance InstanceOf(const TJson& Root) {
  TNfpInstance instance;
  instance.Name = Root.at("name").get<std::string>();
  instance.StripWidth = NumberOf(Root.at("strip_width"));
  const TJson& best = Root.at("best_length");
  if (!best.is_null()) instance.BestLength = best.at("length").get<double>();
  for (const TJson& part : Root.at("parts")) {
    instance.Parts.push_back({part.at("id").get<int>(), part.at("demand").get<int>(),
                              part.at("rotations").get<std::vector<double>>(), ShapeOf(part)});
  }
  for (const TJson& plate : Root.value("plates", TJson::array())) instance.Plates.push_back(ShapeOf(plate));
  for (const TJson& piece : Root.value("layout", TJson::array())) {
    instance.Layout.push_back({piece.at("part").get<int>(), PointOf(piece.at("at"))});
  }
  return instance;
}

}  // namespace

TNfpInstance ParseNfpInstance(const std::string& Json) {
  try {
    return InstanceOf(TJson::parse(Json));
  } catch (const TJson::exception& e) {
    throw std::runtime_error(e.what());
  }
}

TNfpInstance ReadNfpInstance(const std::string& File) {
  std::ifstream stream(File);
  if (!stream) throw std::runtime_error(File + ": cannot be opened");
  std::ostringstream text;
  text << stream.rdbuf();
  try {
    return ParseNfpInstance(text.str());
  } catch (const std::runtime_error& e) {
    throw std::runtime_error(File + ": " + e.what());
  }
}

}  // namespace platenest
