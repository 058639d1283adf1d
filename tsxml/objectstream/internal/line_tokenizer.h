// Splits one line in place into tokens, with the skipping rules of strtok but
// with the position held in the object instead of the C runtime, so that two
// threads reading two streams do not disturb each other.
#ifndef TSXML_OBJECTSTREAM_INTERNAL_LINE_TOKENIZER_H
#define TSXML_OBJECTSTREAM_INTERNAL_LINE_TOKENIZER_H

namespace tsxml {

class LineTokenizer {
 public:
  // `line` is NUL-terminated and must outlive the tokenizer; Next writes into
  // it. A null `line` has no tokens.
  explicit LineTokenizer(char* line) : next_(line) {}

  // Skips the leading bytes found in `delims`, then returns the token that
  // runs up to the next such byte or the end of the line. A delimiter that
  // ends a token is overwritten by NUL and the search goes on behind it.
  // Returns null when nothing but delimiters is left, and from then on.
  char* Next(const char* delims);

 private:
  char* next_;  // Null once the line is used up.
};

}  // namespace tsxml

#endif  // TSXML_OBJECTSTREAM_INTERNAL_LINE_TOKENIZER_H
