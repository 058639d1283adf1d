// Memory for nodes and their text: small blocks carved from 64 KiB pages,
// larger ones allocated one by one.
#ifndef TSXML_XML_INTERNAL_NODE_POOL_H
#define TSXML_XML_INTERNAL_NODE_POOL_H

#include <cstddef>

namespace tsxml {

// Each thread carves its blocks from a page of its own, bump-pointer style;
// a block may be freed on any thread. A page counts the blocks not yet freed
// (atomically) and goes back to operator new's heap with the last of them,
// once the thread has moved on to a new page. Pages come from the global
// operator new, so an allocation failure throws std::bad_alloc there.
//
// Blocks are 8-byte aligned; AllocateAligned16 gives 16-byte alignment for
// objects of any fundamental alignment.
class NodePool {
 public:
  // A block of `size` bytes. Free it with Free. Throws std::bad_alloc.
  static void* Allocate(std::size_t size);
  static void* AllocateAligned16(std::size_t size);
  // Frees a block of either kind; null is ignored.
  static void Free(void* block) noexcept;

  // Adds `extra` bytes behind the block that ends at `blockEnd` when it is
  // the last block carved on this thread and its page has room; true then.
  static bool TryExtend(char* blockEnd, std::size_t extra) noexcept;

  // Sizes are kept in multiples of 8.
  static constexpr std::size_t RoundUp(std::size_t size) {
    return (size + 7) & ~std::size_t{7};
  }
};

}  // namespace tsxml

#endif  // TSXML_XML_INTERNAL_NODE_POOL_H
