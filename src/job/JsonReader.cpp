#include "JsonReader.h"

#include <nlohmann/json.hpp>

#include "Texts.h"

namespace platenest::detail {

namespace {

using Json = nlohmann::json;

// Counts brackets outside of texts, so that a deep file is refused before anything is made of it. Where a file is no
// JSON the count means little, but then the parser has stopped before the depth is reached or the file is deep anyway.
void CheckDepth(std::string_view Text) {
  int depth = 0;
  bool inText = false;
  for (std::size_t i = 0; i < Text.size(); ++i) {
    const char c = Text[i];
    if (inText && c == '\\') {
      ++i;
    } else if (c == '"') {
      inText = !inText;
    } else if (!inText && (c == '[' || c == '{')) {
      if (++depth <= limits::kNestingDepth) continue;
      throw LimitError(
          Fault{"limit", "",
                Joined("is nested deeper than ", limits::kNestingDepth, " levels at ", LineAndColumn(Text, i)), ""});
    } else if (!inText && (c == ']' || c == '}')) {
      --depth;
    }
  }
}

// "syntax error while parsing value - invalid literal; expected string literal" out of the parser's message, which also
// holds a position and the token read last; the token may be as long as the file.
std::string Reason(std::string_view Message) {
  std::size_t begin = Message.find("syntax error");
  if (begin == Message.npos) begin = 0;
  const std::size_t token = Message.find("; last read: ", begin);
  std::string reason(Message.substr(begin, token == Message.npos ? token : token - begin));
  const std::size_t expected = Message.rfind("'; expected ");
  if (token != Message.npos && expected != Message.npos && expected > token) reason += Message.substr(expected + 1);
  return reason;
}

// The parser's side of JsonEvents; names and types are the parser's.
class SaxAdapter {
 public:
  SaxAdapter(std::string_view Text, JsonEvents& Events, FaultList& Faults)
      : FText(Text), FEvents(Events), FFaults(Faults) {}

  bool null() { return FEvents.Value(Scalar{}); }
  bool boolean(bool V) { return FEvents.Value(Scalar::FromFlag(V)); }
  bool number_integer(std::int64_t V) {
    const auto bits = static_cast<std::uint64_t>(V);
    return FEvents.Value(Scalar::FromWhole(V < 0 ? 0 - bits : bits, V < 0));
  }
  bool number_unsigned(std::uint64_t V) { return FEvents.Value(Scalar::FromWhole(V, false)); }
  bool number_float(double V, const std::string& Written) { return FEvents.Value(Scalar::FromNumber(V, Written)); }
  bool string(std::string& V) { return FEvents.Value(Scalar::FromText(V)); }
  bool binary(Json::binary_t&) { return false; }
  bool start_object(std::size_t) { return FEvents.BeginObject(); }
  bool key(std::string& Name) { return FEvents.Key(std::move(Name)); }
  bool end_object() { return FEvents.End(); }
  bool start_array(std::size_t) { return FEvents.BeginList(); }
  bool end_array() { return FEvents.End(); }

  bool parse_error(std::size_t Position, const std::string& Token, const nlohmann::detail::exception& Error) {
    constexpr int numberOverflow = 406;
    if (Error.id == numberOverflow) {
      FEvents.Overflow(Token);
    } else {
      const std::size_t last = Position > 0 ? Position - 1 : 0;
      FFaults.AddInput("syntax", "", Joined("is not JSON at ", LineAndColumn(FText, last), ": ", Reason(Error.what())));
    }
    return false;
  }

 private:
  std::string_view FText;
  JsonEvents& FEvents;
  FaultList& FFaults;
};

}  // namespace

bool ReadJson(std::string_view Text, Int64 MostBytes, JsonEvents& Events, FaultList& Faults) {
  CheckFileText(Text, "", MostBytes);
  CheckDepth(Text);
  SaxAdapter adapter(Text, Events, Faults);
  return Json::sax_parse(Text.begin(), Text.end(), &adapter);
}

}  // namespace platenest::detail
