// A file written in full or not at all.
#ifndef TSXML_TOOLS_TSXML_OUTPUT_FILE_H
#define TSXML_TOOLS_TSXML_OUTPUT_FILE_H

#include <fstream>
#include <stdexcept>
#include <string>

namespace tsxml_tool {

// An I/O failure, with the path and the system's reason.
class IoError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Writes to a temporary file beside `path` and renames it to `path` on
// Commit, so that `path` is either left as it was or replaced by the whole
// new file. The temporary file is removed when Commit is not reached or
// fails. A new file gets the permissions the umask allows; a replaced one
// keeps its own.
class OutputFile {
 public:
  // Throws IoError when the temporary file can't be made.
  explicit OutputFile(std::string path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::ostream& Stream() { return stream_; }
  // Closes the temporary file and renames it; throws IoError when a write,
  // the close or the rename failed.
  void Commit();

 private:
  std::string path_;
  std::string temporary_;
  std::ofstream stream_;
  bool committed_ = false;
};

}  // namespace tsxml_tool

#endif  // TSXML_TOOLS_TSXML_OUTPUT_FILE_H
