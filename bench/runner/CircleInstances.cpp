#include "CircleInstances.h"

#include <fnmatch.h>

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <numbers>
#include <numeric>
#include <stdexcept>

#include "platenest/foundation/Types.h"

namespace platenest::bench {

namespace {

nlohmann::json Read(const std::string& Path) {
  std::ifstream stream(Path);
  if (!stream) throw std::runtime_error("cannot read " + Path);
  return nlohmann::json::parse(stream);
}

TCircleSizes SizesOf(const nlohmann::json& Record, double Scale) {
  TCircleSizes made;
  for (const auto& size : Record.at("sizes")) {
    made.Radii.push_back(size[0].get<double>() * Scale);
    made.Counts.push_back(size[1]);
  }
  return made;
}

template <class TInstance>
std::vector<TInstance> Sample(std::vector<TInstance> All, const std::string& Only, int Every) {
  std::erase_if(All, [&Only](const TInstance& instance) {
    return !Only.empty() && fnmatch(Only.c_str(), instance.Id.c_str(), 0) != 0;
  });
  std::vector<TInstance> some;
  for (std::size_t i = 0; i < All.size(); i += static_cast<std::size_t>(Every)) some.push_back(std::move(All[i]));
  return some;
}

constexpr const char* kStripFiles[] = {"/strip_sy.json", "/strip_kbg.json"};

}  // namespace

int TCircleSizes::Copies() const {
  return std::accumulate(Counts.begin(), Counts.end(), 0);
}

double TCircleSizes::Area() const {
  double area = 0;
  for (std::size_t i = 0; i < Radii.size(); ++i) area += std::numbers::pi * Radii[i] * Radii[i] * Counts[i];
  return area;
}

std::vector<TEqualInstance> ReadEqualInstances(const std::string& Folder, const std::string& Only, int Every) {
  std::vector<TEqualInstance> all;
  const nlohmann::json data = Read(Folder + "/equal_rect.json");
  for (const auto& record : data.at("instances"))
    all.push_back({.Id = record.at("name"),
                   .Width = record.at("plate")[0],
                   .Height = record.at("plate")[1],
                   .Best = record.at("best"),
                   .Bound = record.at("upper"),
                   .Patterns = record.at("pattern_count"),
                   .IsOptimal = record.at("status") == "optimal"});
  return Sample(std::move(all), Only, Every);
}

std::vector<TStripInstance> ReadStripInstances(const std::string& Folder, const std::string& Only, int Every) {
  std::vector<TStripInstance> all;
  for (const char* const file : kStripFiles) {
    const nlohmann::json data = Read(Folder + file);
    const double scale = data.value("scale", 1.0);
    for (const auto& record : data.at("instances"))
      all.push_back({.Id = record.at("name"),
                     .Width = record.at("width").get<double>() * scale,
                     .Sizes = SizesOf(record, scale),
                     .Best = record.at("best_length").get<double>() * scale,
                     .Bound = record.at("lower_length").get<double>() * scale,
                     .BottomLeft = record.value("own_bottom_left", 0.0) * scale,
                     .GreedyUnder = record.value("own_greedy_bisect", 0.0) * scale});
  }
  return Sample(std::move(all), Only, Every);
}

std::vector<TAreaInstance> ReadAreaInstances(const std::string& Folder, const std::string& Only, int Every) {
  std::map<std::string, TStripInstance> strips;
  for (TStripInstance& strip : ReadStripInstances(Folder, "", 1)) strips[strip.Id] = std::move(strip);
  std::vector<TAreaInstance> all;
  const nlohmann::json data = Read(Folder + "/area_fixed.json");
  for (const auto& record : data.at("instances")) {
    const TStripInstance& from = strips.at(record.at("from"));
    const double width = record.at("plate")[1], scale = from.Width / width;
    all.push_back({.Id = record.at("name"),
                   .Length = record.at("plate")[0].get<double>() * scale,
                   .Width = from.Width,
                   .Sizes = from.Sizes});
  }
  return Sample(std::move(all), Only, Every);
}

Job JobOf(const std::string& Name, double Width, double Height, const TCircleSizes& Sizes) {
  Job made;
  made.Kind = JobKind::Circles;
  made.Name = Name;
  made.Plates = {{.Id = {}, .Width = Width, .Height = Height}};
  for (int i = 0; i < Size(Sizes.Radii); ++i) {
    Part part;
    part.Radius = Sizes.Radii[static_cast<std::size_t>(i)];
    part.Amount = Sizes.Counts[static_cast<std::size_t>(i)];
    made.Parts.push_back(part);
  }
  GiveIds(made);
  return made;
}

}  // namespace platenest::bench
