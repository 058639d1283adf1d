// The one output buffer behind every ToString and ToStream of the node model.
#ifndef TSXML_XML_INTERNAL_OUTPUT_BUFFER_H
#define TSXML_XML_INTERNAL_OUTPUT_BUFFER_H

#include <cstddef>
#include <cstring>
#include <iosfwd>
#include <optional>
#include <string>

#include "tsxml/xml/internal/narrow_to_utf8.h"

namespace tsxml {

// Collects output bytes through a raw pointer and hands them over in bulk:
// appended to a caller's string, or written to a stream with ostream::write.
// In UTF-8 mode the text is cut into pieces by EndPiece and each piece is
// converted on its own, as WriteUTF converts one text.
class OutputBuffer {
 public:
  // Appends to `out` (its storage is written directly).
  explicit OutputBuffer(std::string& out);
  // Writes to `os`; with `utf8` each piece is converted first.
  OutputBuffer(std::ostream& os, bool utf8);
  ~OutputBuffer();

  OutputBuffer(const OutputBuffer&) = delete;
  OutputBuffer& operator=(const OutputBuffer&) = delete;

  void Write(const char* data, std::size_t size) {
    if (size > static_cast<std::size_t>(end_ - cur_)) Reserve(size);
    std::memcpy(cur_, data, size);
    cur_ += size;
  }
  void Write(const std::string& text) { Write(text.data(), text.size()); }
  template <std::size_t N>
  void WriteLiteral(const char (&literal)[N]) {
    Write(literal, N - 1);
  }
  void Put(char c) {
    if (cur_ == end_) Reserve(1);
    *cur_++ = c;
  }
  // `count` tab characters, none when `count` is below 1.
  void PutTabs(int count);

  // Direct writing: Claim makes room for `size` bytes and returns where they
  // go; Commit takes the bytes up to `end` in. Nothing else may come between.
  char* Claim(std::size_t size) {
    if (size > static_cast<std::size_t>(end_ - cur_)) Reserve(size);
    return cur_;
  }
  void Commit(char* end) { cur_ = end; }

  // Marks the end of a piece: in UTF-8 mode the bytes since the last mark are
  // converted (and dropped when they do not convert).
  void EndPiece() {
    if (utf8_) ConvertPiece();
  }

  // Hands every byte so far to the string or stream, so that a node may write
  // there directly; the current piece ends.
  void Flush();
  // Picks up behind what a node wrote to the string or stream after Flush.
  void Resume();

  // The destination: exactly one of the two is non-null.
  std::string* TargetString() const { return stringTarget_; }
  std::ostream* TargetStream() const { return stream_; }
  bool IsUtf8() const { return utf8_; }

 private:
  // Makes room for at least `size` more bytes.
  void Reserve(std::size_t size);
  void ConvertPiece();
  // Shrinks the string that holds the bytes to the bytes written.
  void Trim();

  std::string* stringTarget_ = nullptr;
  std::ostream* stream_ = nullptr;
  bool utf8_ = false;
  std::string staging_;    // the bytes before they reach a stream
  std::string* bytes_;     // the caller's string or staging_
  std::string converted_;  // UTF-8 mode: converted pieces not yet written
  std::optional<NarrowToUtf8> converter_;  // UTF-8 mode only
  std::size_t start_ = 0;  // where this buffer's bytes begin in *bytes_
  char* cur_ = nullptr;
  char* end_ = nullptr;
};

}  // namespace tsxml

#endif  // TSXML_XML_INTERNAL_OUTPUT_BUFFER_H
