#include "tools/tsxml/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

namespace tsxml_tool {

namespace {

std::string Reason() { return std::strerror(errno); }

// The mode of a new file under the process's umask.
mode_t NewFileMode() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return static_cast<mode_t>(0666 & ~mask);
}

}  // namespace

OutputFile::OutputFile(std::string path) : path_(std::move(path)) {
  const std::size_t slash = path_.rfind('/');
  const std::string directory =
      slash == std::string::npos ? std::string() : path_.substr(0, slash + 1);
  const std::string name =
      slash == std::string::npos ? path_ : path_.substr(slash + 1);
  std::string pattern = directory + "." + name + ".tmp.XXXXXX";
  std::vector<char> buffer(pattern.begin(), pattern.end());
  buffer.push_back('\0');
  const int fd = ::mkstemp(buffer.data());
  if (fd < 0) {
    throw IoError("cannot create a temporary file beside " + path_ + ": " +
                  Reason());
  }
  temporary_ = buffer.data();
  ::close(fd);
  stream_.open(temporary_, std::ios::binary | std::ios::trunc);
  if (!stream_) {
    const std::string reason = Reason();
    std::remove(temporary_.c_str());
    throw IoError("cannot open " + temporary_ + ": " + reason);
  }
}

OutputFile::~OutputFile() {
  if (!committed_) {
    stream_.close();
    std::remove(temporary_.c_str());
  }
}

void OutputFile::Commit() {
  stream_.flush();
  const bool written = static_cast<bool>(stream_);
  stream_.close();
  if (!written || stream_.fail()) {
    throw IoError("cannot write " + path_ + ": " + Reason());
  }
  struct stat existing;
  const mode_t mode = ::stat(path_.c_str(), &existing) == 0
                          ? (existing.st_mode & 07777)
                          : NewFileMode();
  if (::chmod(temporary_.c_str(), mode) != 0 ||
      std::rename(temporary_.c_str(), path_.c_str()) != 0) {
    throw IoError("cannot write " + path_ + ": " + Reason());
  }
  committed_ = true;
}

}  // namespace tsxml_tool
