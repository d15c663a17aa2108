#pragma once

#include <string>
#include <vector>

#include "JsonWriter.h"
#include "Slots.h"

namespace platenest::detail {

inline constexpr std::string_view kJobSchemaNames[] = {"platenest-job/1"};
inline constexpr std::string_view kResultSchemaNames[] = {"platenest-result/1"};

template <>
std::span<const Field<Plate>> FieldsOf<Plate>();
template <>
std::span<const Field<Part>> FieldsOf<Part>();

// Kinds that ask about shapes: they have no plates.
constexpr bool IsOfShapes(JobKind Kind) {
  return Kind >= JobKind::Nfp && Kind <= JobKind::Sucker;
}

// Gives a part that stated no amount the one that Kind means by it.
void ResolveAmounts(std::vector<Part>& Parts, JobKind Kind);

// Tells of each part the sizes that Kind asks for and the form has left out, and makes them 0.
void ResolveSizes(std::vector<Part>& Parts, JobKind Kind, FaultList& Faults);

void WriteContour(JsonWriter& Out, const PolygonRing& AContour);
void WriteContours(JsonWriter& Out, std::string_view Name, const std::vector<PolygonRing>& Contours);

// Finds every fault in a job, with JSON Pointers.
void FindFaults(const Job& AJob, FaultList& Faults);
void FindFaults(const std::vector<Plate>& Plates, FaultList& Faults);
void FindFaults(const std::vector<Part>& Parts, JobKind Kind, FaultList& Faults);

}  // namespace platenest::detail
