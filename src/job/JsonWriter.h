#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platenest/foundation/Types.h"

namespace platenest::detail {

enum class JsonStyle : std::uint8_t {
  Block,  // each entry on a line of its own, indented
  Line,   // the whole value on one line, and so what stands in it
};

// Writes one JSON value into a text that ends with a line feed. Keys keep the order of the calls; names are literals. A
// number that is not finite and a text that is not UTF-8 raise InputError with a JSON Pointer.
class JsonWriter {
 public:
  void BeginObject(JsonStyle Style) { Open('{', Style); }
  void EndObject() { Close('}'); }
  void BeginList(JsonStyle Style) { Open('[', Style); }
  void EndList() { Close(']'); }
  void Key(std::string_view Name);

  void Value(double V);
  void Value(Int64 V);
  void Value(int V) { Value(Int64{V}); }
  void Value(std::uint64_t V);
  void Value(bool V);
  void Value(std::string_view V);
  void Value(const char* V) { Value(std::string_view(V)); }
  void Value(const std::string& V) { Value(std::string_view(V)); }
  void Value(std::span<const double> V);  // a list on one line
  void Null();
  template <class T>
  void Value(const std::optional<T>& V) {
    V ? Value(*V) : Null();
  }

  template <class T>
  void Member(std::string_view Name, const T& V) {
    Key(Name);
    Value(V);
  }

  // The finished text.
  std::string Text() &&;

 private:
  struct Frame {
    JsonStyle Style;
    bool IsList;
    int Count;
    std::string_view Key;
  };

  void Open(char Bracket, JsonStyle Style);
  void Close(char Bracket);
  void Separate();     // before each entry
  void BeforeValue();  // before a value: an entry of a list is one, a member has its key already
  void NewLine();
  [[noreturn]] void Refuse(std::string_view Code, std::string_view What) const;

  std::string FText;
  std::vector<Frame> FOpen;
};

}  // namespace platenest::detail
