#pragma once

#include <string>
#include <string_view>

#include "platenest/foundation/Types.h"

// Files and standard streams whole, without half results: every failure is a FileError with the path as its place.
namespace platenest {

// The bytes of a file, a named pipe, or standard input for "-". Raises LimitError beyond Limit bytes, for a file before
// reading it, and StoppedError when a stop signal comes while it waits for input.
std::string ReadInput(const std::string& Path, Int64 Limit);

// Writes a temporary name in the same folder and renames it, so that the path holds either its former or the whole new
// content. What is no regular file (a pipe, a device) is written as it stands. A symbolic link keeps pointing at its
// target.
void WriteFile(const std::string& Path, std::string_view Text);

// WriteFile, or standard output for "-".
void WriteOutput(const std::string& Path, std::string_view Text);

// Raises what WriteOutput would raise because of the path, before any work is done.
void RequireWritable(const std::string& Path);

// Makes the folder and those above it.
void RequireFolder(const std::string& Path);

// All of Text to a descriptor, however often the system takes only a part. False with errno on failure.
bool WriteAll(int Fd, std::string_view Text) noexcept;

// A standard stream that came closed gets a descriptor on which every read or write fails, so that no file opened later
// is taken for it.
void HoldStandardStreams() noexcept;

}  // namespace platenest
