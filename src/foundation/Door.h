#pragma once

#include <memory>
#include <mutex>
#include <utility>

namespace platenest::detail {

// A process-wide door: calls work on a copy of the function, so that a sink may be replaced while another thread is in
// it.
template <class Function>
class TDoor {
 public:
  Function Exchange(Function New) {
    const std::lock_guard lock(FMutex);
    Function former = FCurrent ? *FCurrent : Function();
    FCurrent = New ? std::make_shared<Function>(std::move(New)) : nullptr;
    return former;
  }
  std::shared_ptr<Function> Get() {
    const std::lock_guard lock(FMutex);
    return FCurrent;
  }

 private:
  std::mutex FMutex;
  std::shared_ptr<Function> FCurrent;
};

}  // namespace platenest::detail
