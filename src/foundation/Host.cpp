#include "platenest/foundation/Host.h"

#include <cstdarg>
#include <cstdio>
#include <string>
#include <utility>

#include <unistd.h>

#include "Door.h"

namespace platenest {

namespace {

detail::TDoor<THostProc> hostProc;
detail::TDoor<TWarningSink> warningSink;
thread_local TFreeMemorySource freeMemorySource;

// "MemAvailable" counts what can be had without swapping, page cache included.
Int64 ReadAvailableMemory() {
  Int64 kilobytes = 0;
  if (std::FILE* file = std::fopen("/proc/meminfo", "r")) {
    char line[256];
    long long value = 0;
    while (kilobytes == 0 && std::fgets(line, sizeof line, file) != nullptr)
      if (std::sscanf(line, "MemAvailable: %lld", &value) == 1) kilobytes = value;
    std::fclose(file);
  }
  if (kilobytes > 0) return kilobytes * 1024;
  return static_cast<Int64>(sysconf(_SC_AVPHYS_PAGES)) * sysconf(_SC_PAGESIZE);
}

}  // namespace

void AppSys::CallProc(std::string_view Name, std::string_view Text) noexcept {
  try {
    if (const auto proc = hostProc.Get()) (*proc)(Name, Text);
  } catch (...) {  // a sink that throws must not stop the caller
  }
}

void TCerr::W(std::string_view Message) noexcept {
  try {
    if (const auto sink = warningSink.Get()) (*sink)(Message);
  } catch (...) {  // a warning never stops the caller
  }
}

void TCerr::Print(const char* Format, ...) noexcept {
  char line[1024];
  std::va_list args;
  va_start(args, Format);
  const int length = std::vsnprintf(line, sizeof line, Format, args);
  va_end(args);
  if (length >= 0) W(std::string_view(line));
}

Int64 FreePhysicalMemory() noexcept {
  try {
    if (freeMemorySource) return freeMemorySource();
    return ReadAvailableMemory();
  } catch (...) {
    return 0;
  }
}

THostProcScope::THostProcScope(THostProc Proc) : FFormer(hostProc.Exchange(std::move(Proc))) {}
THostProcScope::~THostProcScope() {
  hostProc.Exchange(std::move(FFormer));
}
TWarningScope::TWarningScope(TWarningSink Sink) : FFormer(warningSink.Exchange(std::move(Sink))) {}
TWarningScope::~TWarningScope() {
  warningSink.Exchange(std::move(FFormer));
}
TFreeMemoryScope::TFreeMemoryScope(TFreeMemorySource Source)
    : FFormer(std::exchange(freeMemorySource, std::move(Source))) {}
TFreeMemoryScope::~TFreeMemoryScope() {
  freeMemorySource = std::move(FFormer);
}

}  // namespace platenest
