#pragma once

#include <string>
#include <string_view>

#include "Slots.h"

namespace platenest::detail {

// What stands in a JSON text, in its order. Each answer says whether to go on.
class JsonEvents {
 public:
  virtual ~JsonEvents() = default;
  virtual bool Value(const Scalar& V) = 0;
  virtual bool BeginObject() = 0;
  virtual bool Key(std::string Name) = 0;
  virtual bool BeginList() = 0;
  virtual bool End() = 0;  // of the innermost object or list
  // The number that comes next is past the range of a double; no event follows.
  virtual void Overflow(std::string_view Written) = 0;
};

// Reads one JSON text. Raises InputError or LimitError, before any event, for a text that is larger than MostBytes, no
// UTF-8 or nested deeper than limits::kNestingDepth; reports syntax to Faults and then ends. A byte-order mark is
// passed over. False if the text was not read to its end.
bool ReadJson(std::string_view Text, Int64 MostBytes, JsonEvents& Events, FaultList& Faults);

}  // namespace platenest::detail
