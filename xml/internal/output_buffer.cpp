#include "xml/internal/output_buffer.h"

#include <algorithm>
#include <ostream>

#include "xml/internal/narrow_to_utf8.h"

namespace OstraTimeXML {
namespace internal {
namespace {

// Bytes gathered before a stream write, and the least growth of a string.
constexpr std::size_t kStreamChunk = 16 * 1024;
constexpr std::size_t kMinGrowth = 256;

}  // namespace

OutputBuffer::OutputBuffer(std::string& out)
    : string_target_(&out), bytes_(&out) {
  cur_ = end_ = out.data() + out.size();
}

OutputBuffer::OutputBuffer(std::ostream& os, bool utf8)
    : stream_(&os), utf8_(utf8), bytes_(&staging_) {
  staging_.resize(kStreamChunk);
  cur_ = staging_.data();
  end_ = cur_ + staging_.size();
}

OutputBuffer::~OutputBuffer() {
  if (string_target_ != nullptr) Trim();
}

void OutputBuffer::Trim() {
  bytes_->resize(static_cast<std::size_t>(cur_ - bytes_->data()));
  cur_ = end_ = bytes_->data() + bytes_->size();
}

void OutputBuffer::PutTabs(int count) {
  if (count < 1) return;
  const std::size_t size = static_cast<std::size_t>(count);
  if (size > static_cast<std::size_t>(end_ - cur_)) Reserve(size);
  std::memset(cur_, '\t', size);
  cur_ += size;
}

void OutputBuffer::Reserve(std::size_t size) {
  std::size_t used = static_cast<std::size_t>(cur_ - bytes_->data());
  if (stream_ != nullptr && !utf8_ && used > 0) {
    // Raw stream: no piece spans a write, so the bytes can go now.
    stream_->write(bytes_->data(), static_cast<std::streamsize>(used));
    used = 0;
  }
  std::size_t free = bytes_->size() - used;
  if (size > free) {
    // Room the string already has comes first; past it, double.
    std::size_t wanted = std::max({bytes_->capacity(), bytes_->size() * 2,
                                   used + size, bytes_->size() + kMinGrowth});
    bytes_->resize(wanted);
  }
  cur_ = bytes_->data() + used;
  end_ = bytes_->data() + bytes_->size();
}

void OutputBuffer::ConvertPiece() {
  char* begin = bytes_->data();
  AppendNarrowAsUtf8(begin, static_cast<std::size_t>(cur_ - begin), converted_);
  cur_ = begin;
  if (converted_.size() >= kStreamChunk) {
    stream_->write(converted_.data(),
                   static_cast<std::streamsize>(converted_.size()));
    converted_.clear();
  }
}

void OutputBuffer::Flush() {
  if (stream_ == nullptr) {
    Trim();
    return;
  }
  if (utf8_) {
    ConvertPiece();
    stream_->write(converted_.data(),
                   static_cast<std::streamsize>(converted_.size()));
    converted_.clear();
    return;
  }
  char* begin = bytes_->data();
  stream_->write(begin, static_cast<std::streamsize>(cur_ - begin));
  cur_ = begin;
}

void OutputBuffer::Resume() {
  if (string_target_ != nullptr) cur_ = end_ = bytes_->data() + bytes_->size();
}

}  // namespace internal
}  // namespace OstraTimeXML
