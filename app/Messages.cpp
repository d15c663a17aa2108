#include "Messages.h"

#include <unistd.h>

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "Files.h"
#include "Text.h"

namespace platenest {

namespace {

std::string ErrorObject(const Fault& AFault) {
  nlohmann::ordered_json body = {{"code", AFault.Code}, {"pointer", AFault.Place}, {"text", AFault.Text}};
  if (!AFault.Detail.empty()) body["detail"] = AFault.Detail;
  const nlohmann::ordered_json object = {{"error", body}};
  return object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

}  // namespace

void Messages::Error(const Fault& AFault) const {
  if (FStyle.Json) {
    WriteAll(STDERR_FILENO, ErrorObject(AFault));
    return;
  }
  const std::string place = PlaceOf(AFault);
  std::string line = FStyle.Color ? "platenest: \033[1;31merror:\033[0m " : "platenest: error: ";
  if (!place.empty()) line += Printable(place) + ": ";
  line += Printable(AFault.Text);
  if (!AFault.Detail.empty()) line += " (" + Printable(AFault.Detail) + ")";
  WriteAll(STDERR_FILENO, line + "\n");
}

void Messages::Note(std::string_view Text) const {
  if (!FStyle.Quiet && !FStyle.Json) WriteAll(STDERR_FILENO, Text);
}

// A JSON Pointer is relative to the source; options, other files and lines of a table name themselves.
std::string Messages::PlaceOf(const Fault& AFault) const {
  if (FSource.empty()) return AFault.Place;
  if (AFault.Place.empty()) return FSource;
  const bool isPointer = AFault.Place.front() == '/' && AFault.Code != "file" && !AFault.Place.starts_with(FSource);
  return isPointer ? FSource + ": " + AFault.Place : AFault.Place;
}

bool StandardErrorIsTerminal() {
  const char* const terminal = std::getenv("TERM");
  return ::isatty(STDERR_FILENO) == 1 && (terminal == nullptr || std::string_view(terminal) != "dumb");
}

bool ColorAllowed() {
  const char* const wish = std::getenv("NO_COLOR");
  return wish == nullptr || *wish == '\0';
}

}  // namespace platenest
