#include "Files.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "Signals.h"
#include "platenest/job/Job.h"
#include "platenest/job/JobErrors.h"

namespace platenest {

namespace {

namespace fs = std::filesystem;

FileError Failure(const std::string& Path, const std::string& What, int Error) {
  return FileError(Fault{"file", Path, What + ": " + std::strerror(Error), ""});
}

class Descriptor {
 public:
  explicit Descriptor(int Fd) noexcept : FFd(Fd) {}
  ~Descriptor() {
    if (FFd > STDERR_FILENO) ::close(FFd);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int Get() const { return FFd; }
  bool Close() { return ::close(std::exchange(FFd, -1)) == 0; }

 private:
  int FFd;
};

LimitError OverLimit(Int64 Limit) {
  return LimitError(Fault{"limit", "", "must be at most " + std::to_string(Limit >> 20) + " MiB long", ""});
}

// Non-blocking, so that a named pipe without a writer does not hold the program before it can be stopped.
int OpenInput(const std::string& Path) {
  if (Path == "-") return STDIN_FILENO;
  const int fd = ::open(Path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) throw Failure(Path, "cannot be opened", errno);
  return fd;
}

// Reserves the size of a regular file, which the system knows beforehand.
void Prepare(int Fd, const std::string& Path, Int64 Limit, std::string& Text) {
  struct stat info = {};
  if (::fstat(Fd, &info) != 0) throw Failure(Path, "cannot be read", errno);
  if (S_ISDIR(info.st_mode)) throw Failure(Path, "cannot be read", EISDIR);
  if (!S_ISREG(info.st_mode)) return;
  if (info.st_size > Limit) throw OverLimit(Limit);
  Text.reserve(static_cast<std::size_t>(info.st_size));
}

struct Target {
  fs::path Path;  // links resolved
  bool Exists = false;
  bool IsRegular = true;
  mode_t Mode = 0;
};

Target FindTarget(const std::string& Path) {
  Target target{fs::path(Path)};
  struct stat info = {};
  if (::stat(Path.c_str(), &info) != 0) {
    if (errno != ENOENT) throw Failure(Path, "cannot be written", errno);
    return target;
  }
  if (S_ISDIR(info.st_mode)) throw Failure(Path, "cannot be written", EISDIR);
  if (::access(Path.c_str(), W_OK) != 0) throw Failure(Path, "cannot be written", errno);
  target.Exists = true;
  target.IsRegular = S_ISREG(info.st_mode);
  target.Mode = info.st_mode & 07777;
  std::error_code ignored;
  const fs::path real = fs::canonical(target.Path, ignored);
  if (!ignored) target.Path = real;
  return target;
}

std::string FolderOf(const fs::path& Path) {
  return Path.has_parent_path() ? Path.parent_path().string() : std::string(".");
}

void WriteInPlace(const std::string& Path, std::string_view Text) {
  Descriptor file(::open(Path.c_str(), O_WRONLY | O_CLOEXEC));
  if (file.Get() < 0 || !WriteAll(file.Get(), Text) || !file.Close()) throw Failure(Path, "cannot be written", errno);
}

// A new file in Folder; a name that a killed process left behind is passed over.
int OpenTemporary(const std::string& Folder, std::string& Name) {
  static int count = 0;
  int fd = -1;
  for (int tries = 0; fd < 0 && tries < 100; ++tries) {
    Name = Folder + "/.platenest-" + std::to_string(::getpid()) + "-" + std::to_string(++count) + ".tmp";
    fd = ::open(Name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0 && errno != EEXIST) break;
  }
  return fd;
}

void Replace(const Target& To, const std::string& Path, std::string_view Text) {
  std::string temporary;
  const SignalBlock block;
  Descriptor file(OpenTemporary(FolderOf(To.Path), temporary));
  if (file.Get() < 0) throw Failure(Path, "cannot be written", errno);
  const bool done = (!To.Exists || ::fchmod(file.Get(), To.Mode) == 0) && WriteAll(file.Get(), Text) && file.Close() &&
                    ::rename(temporary.c_str(), To.Path.c_str()) == 0;
  if (done) return;
  const int error = errno;
  ::unlink(temporary.c_str());
  throw Failure(Path, "cannot be written", error);
}

}  // namespace

std::string ReadInput(const std::string& Path, Int64 Limit) {
  const Descriptor file(OpenInput(Path));
  std::string text;
  Prepare(file.Get(), Path, Limit, text);
  char buffer[1 << 16];
  while (true) {
    if (!WaitReadable(file.Get())) throw StoppedError(Fault{"stopped", "", "stopped before any result", ""});
    const ssize_t count = ::read(file.Get(), buffer, sizeof buffer);
    if (count == 0) return text;
    if (count < 0 && errno != EINTR && errno != EAGAIN) throw Failure(Path, "cannot be read", errno);
    if (count < 0) continue;
    if (std::ssize(text) + count > Limit) throw OverLimit(Limit);
    text.append(buffer, static_cast<std::size_t>(count));
  }
}

void WriteFile(const std::string& Path, std::string_view Text) {
  const Target target = FindTarget(Path);
  if (target.IsRegular) {
    Replace(target, Path, Text);
  } else {
    WriteInPlace(Path, Text);
  }
}

void WriteOutput(const std::string& Path, std::string_view Text) {
  if (Path != "-") return WriteFile(Path, Text);
  if (!WriteAll(STDOUT_FILENO, Text)) throw Failure("standard output", "cannot be written", errno);
}

void RequireWritable(const std::string& Path) {
  if (Path == "-") return;
  const Target target = FindTarget(Path);
  if (target.IsRegular && ::access(FolderOf(target.Path).c_str(), W_OK | X_OK) != 0) {
    throw Failure(Path, "cannot be written", errno);
  }
}

void RequireFolder(const std::string& Path) {
  std::error_code error;
  fs::create_directories(Path, error);
  if (!error && !fs::is_directory(Path, error) && !error) error = std::make_error_code(std::errc::not_a_directory);
  if (error) throw Failure(Path, "cannot be made a folder", error.value());
  if (::access(Path.c_str(), W_OK | X_OK) != 0) throw Failure(Path, "cannot be written into", errno);
}

bool WriteAll(int Fd, std::string_view Text) noexcept {
  while (!Text.empty()) {
    const ssize_t count = ::write(Fd, Text.data(), Text.size());
    if (count < 0 && errno == EAGAIN) {  // a stream that someone else made non-blocking
      pollfd item = {Fd, POLLOUT, 0};
      ::poll(&item, 1, -1);
    } else if (count < 0 && errno != EINTR) {
      return false;
    }
    if (count > 0) Text.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

void HoldStandardStreams() noexcept {
  for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd) {
    if (::fcntl(fd, F_GETFD) != -1 || errno != EBADF) continue;
    // The lowest free number is this one; the direction is the useless one.
    static_cast<void>(::open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY));
  }
}

}  // namespace platenest
