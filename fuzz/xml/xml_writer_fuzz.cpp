// Builds a node tree from the input (names, attribute values and text from
// its bytes, numbers of every magnitude from its bits, null entries, deep
// nesting, any start layout) and checks that ToString, ToStream raw and as
// UTF-8 (in the "C" locale: a piece with a byte above 127 vanishes),
// WriteTree and WriteTreeUTF8 give the bytes of the plain reference writer in
// tests/xml/reference_writer.h.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "tsxml/xml/internal/number_format.h"
#include "tsxml/xml/xml_node.h"
#include "xml/reference_writer.h"

namespace {

using OstraTimeXML::ExportFormat;
using OstraTimeXML::XMLAttribute;
using OstraTimeXML::XMLElement;
using OstraTimeXML::XMLString;
using reference_writer::Layout;
using reference_writer::PieceWriter;

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size)
      : data_(data), size_(size) {}
  bool Empty() const { return at_ >= size_; }
  std::uint8_t Byte() { return at_ < size_ ? data_[at_++] : 0; }
  // Up to 63 bytes, or now and then a long run of one of them.
  std::string Bytes() {
    const std::uint8_t head = Byte();
    std::string text;
    if (head == 0xFF) {
      text.assign(1000 + Byte() * 40u, static_cast<char>(Byte()));
      return text;
    }
    for (unsigned n = head & 63u; n > 0 && !Empty(); --n) {
      text += static_cast<char>(Byte());
    }
    return text;
  }
  double Number() {
    switch (Byte() % 6) {
      case 0: {  // any bit pattern
        std::uint64_t bits = 0;
        for (int i = 0; i < 8; ++i) bits = bits << 8 | Byte();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
      }
      case 1:  // a small integer, as an index is
        return static_cast<double>(Byte() << 8 | Byte()) -
               (Byte() % 2 == 0 ? 0 : 40000);
      case 2:  // a short decimal at any magnitude
        return static_cast<double>(Byte() << 8 | Byte()) *
               std::pow(10.0, static_cast<int>(Byte()) - 128);
      case 3:  // halfway cases
        return static_cast<double>(Byte() << 16 | Byte() << 8 | Byte()) + 0.5;
      case 4: {
        static const double kSpecial[] = {
            0.0,   -0.0,   1e15,     1e-5,      1e-4,        999999999999999.5,
            1e300, 5e-324, HUGE_VAL, -HUGE_VAL, std::nan("")};
        return kSpecial[Byte() % (sizeof kSpecial / sizeof kSpecial[0])];
      }
      default:
        return (Byte() - 128.0) / 7.0;
    }
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t at_ = 0;
};

// Builds an element from the input while telling `reference` what it adds.
std::unique_ptr<XMLElement> Build(Input& in, PieceWriter& reference, int depth,
                                  int& budget) {
  const std::string name = in.Bytes();
  std::unique_ptr<XMLElement> element(XMLElement::Create(name));
  reference.Open(name);
  for (unsigned n = in.Byte() % 5; n > 0; --n) {
    const std::uint8_t kind = in.Byte() % 5;
    const std::string key = in.Bytes();
    if (kind == 4) {  // a null attribute, skipped
      element->AddAttribute(static_cast<XMLAttribute*>(nullptr));
      continue;
    }
    if (kind == 0 || kind == 1) {
      const std::string value = in.Bytes();
      if (kind == 0) {
        element->AddAttribute(key, value);
      } else {
        element->AddAttribute(XMLAttribute::Create(key, value));
      }
      reference.Attribute(key, value);
      continue;
    }
    const double value = in.Number();
    if (kind == 2) {
      element->AddAttribute(key, value);
    } else {
      element->AddAttribute(XMLAttribute::Create(key, value));
    }
    reference.Attribute(key, tsxml::FormatGeneral15ViaStream(value));
  }
  const unsigned children =
      depth > 60 || budget <= 0 ? 0u : in.Byte() % (depth > 3 ? 3u : 6u);
  reference.EndStart(children > 0);
  for (unsigned i = 0; i < children; ++i) {
    --budget;
    switch (in.Byte() % 5) {
      case 0: {
        const std::string text = in.Bytes();
        element->AddElement(XMLString::Create(text));
        reference.Text(text);
        break;
      }
      case 1:  // null children, skipped
        if (i % 2 == 0) {
          element->AddElement(static_cast<XMLElement*>(nullptr));
        } else {
          element->AddElement(static_cast<XMLString*>(nullptr));
        }
        break;
      default:
        element->AddElement(Build(in, reference, depth + 1, budget).release());
    }
  }
  if (children > 0) reference.Close(name);
  return element;
}

bool Ascii(const std::string& piece) {
  for (char c : piece) {
    if ((static_cast<unsigned char>(c) & 0x80) != 0) return false;
  }
  return true;
}

void Check(bool ok, const char* what) {
  if (!ok) {
    std::fprintf(stderr, "mismatch: %s\n", what);
    std::abort();
  }
}

// The tree that the input describes, and its reference text from `start`
// (the input's own layout when `start` is null).
struct Case {
  std::unique_ptr<XMLElement> tree;
  Layout start;
  PieceWriter reference{Layout()};
};

Case Make(const std::uint8_t* data, std::size_t size, const Layout* start) {
  Input in(data, size);
  Case made;
  const std::uint8_t flags = in.Byte();
  made.start.newParagraph = (flags & 1) != 0;
  made.start.indentation = (flags & 2) != 0;
  made.start.format = (flags & 4) == 0;
  made.start.level = static_cast<int>(in.Byte() % 40) - 4;
  if (start != nullptr) made.start = *start;
  made.reference = PieceWriter(made.start);
  int budget = 400;
  made.tree = Build(in, made.reference, 0, budget);
  return made;
}

ExportFormat FormatOf(const Layout& layout) {
  ExportFormat format;
  format.SetIsNewParagraph(layout.newParagraph);
  format.SetIndentation(layout.indentation);
  format.SetFormat(layout.format);
  format.SetLevel(layout.level);
  return format;
}

bool SameEnd(const ExportFormat& format, const Layout& end) {
  return format.IsNewParagraph() == (end.format && end.newParagraph) &&
         format.HasIndentation() == (end.format && end.indentation) &&
         format.GetLevel() == end.level;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  const Case made = Make(data, size, nullptr);
  const XMLElement& tree = *made.tree;
  const PieceWriter& reference = made.reference;
  const auto any = [](const std::string&) { return true; };

  ExportFormat format = FormatOf(made.start);
  std::string text = "<before>";
  tree.ToString(text, format);
  Check(text == "<before>" + reference.Join(any), "ToString");
  Check(SameEnd(format, reference.End()), "ToString layout");

  for (const bool utf8 : {false, true}) {
    format = FormatOf(made.start);
    std::ostringstream os;
    tree.ToStream(os, format, utf8);
    Check(os.str() == (utf8 ? reference.Join(Ascii) : reference.Join(any)),
          utf8 ? "ToStream UTF-8" : "ToStream");
    Check(SameEnd(format, reference.End()), "ToStream layout");
  }

  // A whole document starts from the default layout with the format switch.
  Layout document;
  document.format = made.start.format;
  const Case again = Make(data, size, &document);
  for (const bool utf8 : {false, true}) {
    std::ostringstream os;
    (utf8 ? OstraTimeXML::WriteTreeUTF8 : OstraTimeXML::WriteTree)(
        os, nullptr, &tree, document.format);
    Check(os.str() == "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n" +
                          (utf8 ? again.reference.Join(Ascii)
                                : again.reference.Join(any)),
          utf8 ? "WriteTreeUTF8" : "WriteTree");
  }
  return 0;
}
