#include "tsxml/xml/internal/node_pool.h"

#include <atomic>
#include <cstdint>
#include <new>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TSXML_ASAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define TSXML_ASAN 1
#endif
#if defined(TSXML_ASAN)
#include <sanitizer/asan_interface.h>
#define TSXML_POISON(at, size) ASAN_POISON_MEMORY_REGION(at, size)
#define TSXML_UNPOISON(at, size) ASAN_UNPOISON_MEMORY_REGION(at, size)
#else
#define TSXML_POISON(at, size) ((void)(at), (void)(size))
#define TSXML_UNPOISON(at, size) ((void)(at), (void)(size))
#endif

namespace tsxml {
namespace {

constexpr std::size_t kPageSize = 64 * 1024;
// Blocks above this size are allocated one by one.
constexpr std::size_t kLargestCarved = 4096;

// A page: this header, then blocks, each behind a word that points back to
// the page. `live` holds kBias less the blocks freed; the thread that
// carves the page counts what it carved, and takes kBias less that count off
// when it leaves the page, so that `live` can reach 0 only after that.
struct alignas(16) Page {
  std::atomic<std::size_t> live;
};
constexpr std::size_t kBias = std::size_t{1} << 62;

// A block allocated on its own: 16 bytes in front of it, the last 8 null.
constexpr std::size_t kStandaloneHeader = 16;

struct Carving {
  char* cur;
  char* end;
  Page* page;
  std::size_t carved;
};

#if defined(__GNUC__) && defined(__ELF__)
#define TSXML_TLS_MODEL __attribute__((tls_model("initial-exec")))
#else
#define TSXML_TLS_MODEL
#endif

// Trivial, so that reading it costs no initialisation check.
thread_local Carving tCarving TSXML_TLS_MODEL = {nullptr, nullptr, nullptr, 0};

void DeletePage(Page* page) noexcept {
  TSXML_UNPOISON(page, kPageSize);
  page->~Page();
  ::operator delete(page);
}

// Leaves the thread's page: it goes when its last block has been freed.
void LeavePage(Carving& carving) noexcept {
  Page* page = carving.page;
  if (page == nullptr) return;
  const std::size_t unused = kBias - carving.carved;
  carving = Carving{nullptr, nullptr, nullptr, 0};
  if (page->live.fetch_sub(unused, std::memory_order_acq_rel) == unused) {
    DeletePage(page);
  }
}

// Hands the thread's page back when the thread ends.
struct PageKeeper {
  bool active = false;
  ~PageKeeper() { LeavePage(tCarving); }
};
thread_local PageKeeper tPageKeeper;

void TakeNewPage(Carving& carving) {
  void* memory = ::operator new(kPageSize);
  Page* page = ::new (memory) Page{{kBias}};
  TSXML_POISON(page + 1, kPageSize - sizeof(Page));
  tPageKeeper.active = true;  // registers the keeper's destructor
  LeavePage(carving);
  carving.page = page;
  carving.cur = static_cast<char*>(memory) + sizeof(Page);
  carving.end = static_cast<char*>(memory) + kPageSize;
  carving.carved = 0;
}

void* AllocateStandalone(std::size_t size) {
  if (size > SIZE_MAX / 2) throw std::bad_alloc();
  char* base = static_cast<char*>(
      ::operator new(NodePool::RoundUp(size) + kStandaloneHeader));
  char* block = base + kStandaloneHeader;
  *reinterpret_cast<Page**>(block - sizeof(Page*)) = nullptr;
  return block;
}

}  // namespace

void* NodePool::Allocate(std::size_t size) {
  if (size > kLargestCarved) return AllocateStandalone(size);
  const std::size_t need = sizeof(Page*) + RoundUp(size);
  Carving& carving = tCarving;
  if (static_cast<std::size_t>(carving.end - carving.cur) < need) {
    TakeNewPage(carving);
  }
  char* at = carving.cur;
  carving.cur += need;
  ++carving.carved;
  TSXML_UNPOISON(at, need);
  *reinterpret_cast<Page**>(at) = carving.page;
  return at + sizeof(Page*);
}

void* NodePool::AllocateAligned16(std::size_t size) {
  return AllocateStandalone(size);
}

void NodePool::Free(void* block) noexcept {
  if (block == nullptr) return;
  char* at = static_cast<char*>(block) - sizeof(Page*);
  Page* page = *reinterpret_cast<Page**>(at);
  if (page == nullptr) {
    ::operator delete(static_cast<char*>(block) - kStandaloneHeader);
    return;
  }
  const std::size_t before = page->live.fetch_sub(1, std::memory_order_acq_rel);
  if (before == 1) {
    DeletePage(page);
    return;
  }
  TSXML_POISON(block, 8);
  // On the thread that carves this page, a page whose blocks have all been
  // freed goes at once, so that an idle thread holds no page.
  Carving& carving = tCarving;
  if (carving.page == page && before - 1 == kBias - carving.carved) {
    LeavePage(carving);
  }
}

bool NodePool::TryExtend(char* blockEnd, std::size_t extra) noexcept {
  Carving& carving = tCarving;
  if (blockEnd != carving.cur ||
      static_cast<std::size_t>(carving.end - carving.cur) < extra) {
    return false;
  }
  TSXML_UNPOISON(carving.cur, extra);
  carving.cur += extra;
  return true;
}

}  // namespace tsxml
