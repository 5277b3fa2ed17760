// Where a command writes: a file that goes away again unless it was finished, or a stream that the caller owns.
#pragma once

#include <fstream>
#include <ostream>
#include <string>
#include <string_view>

#include "system/outcome.h"

namespace kapdf::tool {

// Fails when the name ends as files of another format do, upper and lower case alike: who asks for "plan.dxf" does not
// want a PDF file of that name. Any other ending, or none, is fine. `extension` with its point.
Outcome CheckExtension(const std::string &path, std::string_view extension);

class Output {
 public:
  ~Output();
  Output() = default;
  Output(const Output &) = delete;
  Output &operator=(const Output &) = delete;

  Outcome OpenFile(const std::string &path);
  void UseStream(std::ostream &stream) { stream_ = &stream; }

  // The text not written yet. Append to it and call Spill now and then.
  std::string &buffer() { return buffer_; }
  // Writes the buffer once it is large.
  Outcome Spill() { return buffer_.size() < kBufferBytes ? Outcome{} : WriteBuffer(); }
  // Writes the rest and keeps the file.
  Outcome Finish();

 private:
  static constexpr size_t kBufferBytes = size_t{1} << 20;
  Outcome WriteBuffer();

  std::string path_ = "the standard output";
  std::ofstream file_;
  std::ostream *stream_ = nullptr;
  std::string buffer_;
};

}  // namespace kapdf::tool
