#include "tsxml/xml/internal/output_buffer.h"

#include <algorithm>
#include <ostream>

namespace tsxml {
namespace {

// Bytes gathered before a stream write, and the least growth of the bytes.
constexpr std::size_t kStreamChunk = 16 * 1024;
constexpr std::size_t kMinGrowth = 128;

}  // namespace

OutputBuffer::OutputBuffer(std::string& out)
    : stringTarget_(&out), bytes_(&out), start_(out.size()) {
  cur_ = end_ = out.data() + out.size();
}

OutputBuffer::OutputBuffer(std::ostream& os, bool utf8)
    : stream_(&os), utf8_(utf8), bytes_(&staging_) {
  if (utf8) converter_.emplace();
  cur_ = end_ = staging_.data();
}

OutputBuffer::~OutputBuffer() {
  if (stringTarget_ != nullptr) Trim();
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
  if (stream_ != nullptr && !utf8_ && used > 0 && used + size > kStreamChunk) {
    // Raw stream: no piece spans a write, so full chunks can go now.
    stream_->write(bytes_->data(), static_cast<std::streamsize>(used));
    used = 0;
  }
  if (size > bytes_->size() - used) {
    // Grow by what this buffer has written so far: the zero fill of resize
    // stays proportional to our own output, not to the string's capacity.
    bytes_->resize(used + std::max({size, kMinGrowth, used - start_}));
  }
  cur_ = bytes_->data() + used;
  end_ = bytes_->data() + bytes_->size();
}

void OutputBuffer::ConvertPiece() {
  char* begin = bytes_->data();
  converter_->Append(begin, static_cast<std::size_t>(cur_ - begin), converted_);
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
  if (stringTarget_ != nullptr) cur_ = end_ = bytes_->data() + bytes_->size();
}

}  // namespace tsxml
