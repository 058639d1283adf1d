// Heap allocations, heap bytes and instructions per TimeValue, phase by
// phase, for the documents of time_value_cases.h:
//
//   time_value_probe MODE COUNT
//
// MODE is "tree" (a smoothing model written as PMML through TSXMLTree),
// "nodes" (the TimeValue elements made with the node API) or "pugixml" (the
// same elements in a pugixml document). Each of the phases build, write and
// destroy prints one line: its name, the heap allocations it made, and the
// heap bytes live after it less those before it. The last line gives the peak
// resident set of the process. Under valgrind --tool=callgrind
// --instr-atstart=no each phase ends in a dump named after it, whose total is
// the phase's instruction count; run_probe.py puts the two together.
#include <malloc.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>

#include "time_value_cases.h"

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_START_INSTRUMENTATION
#define CALLGRIND_ZERO_STATS
#define CALLGRIND_DUMP_STATS_AT(name)
#endif

// Every heap block of the process passes through these replacements of the
// C allocation functions, which count blocks and their usable bytes.
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
void __libc_free(void*);
}

namespace {
std::size_t gAllocations = 0;
long long gLiveBytes = 0;

void* Counted(void* block) {
  if (block != nullptr) {
    ++gAllocations;
    gLiveBytes += static_cast<long long>(malloc_usable_size(block));
  }
  return block;
}

void Uncount(void* block) {
  if (block != nullptr) {
    gLiveBytes -= static_cast<long long>(malloc_usable_size(block));
  }
}
}  // namespace

extern "C" {
void* malloc(std::size_t size) { return Counted(__libc_malloc(size)); }
void* calloc(std::size_t n, std::size_t size) {
  return Counted(__libc_calloc(n, size));
}
void* realloc(void* block, std::size_t size) {
  Uncount(block);
  void* moved = __libc_realloc(block, size);
  if (moved == nullptr && size != 0) {  // the old block stays
    gLiveBytes += static_cast<long long>(malloc_usable_size(block));
    return nullptr;
  }
  return Counted(moved);
}
void* memalign(std::size_t alignment, std::size_t size) {
  return Counted(__libc_memalign(alignment, size));
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return Counted(__libc_memalign(alignment, size));
}
int posix_memalign(void** out, std::size_t alignment, std::size_t size) {
  *out = Counted(__libc_memalign(alignment, size));
  return *out == nullptr ? 12 /* ENOMEM */ : 0;
}
void free(void* block) {
  Uncount(block);
  __libc_free(block);
}
}

namespace {

// Runs one phase between callgrind dumps and prints what it allocated.
void Phase(const char* name, const std::function<void()>& run) {
  const std::size_t allocations = gAllocations;
  const long long bytes = gLiveBytes;
  CALLGRIND_ZERO_STATS;
  run();
  CALLGRIND_DUMP_STATS_AT(name);
  std::printf("%s allocations=%zu bytes=%lld\n", name,
              gAllocations - allocations, gLiveBytes - bytes);
}

long PeakResidentKiB() {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind("VmHWM:", 0) == 0) return std::atol(line.c_str() + 6);
  }
  return -1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s tree|nodes|pugixml COUNT\n", argv[0]);
    return 2;
  }
  const std::string mode = argv[1];
  const std::size_t count = std::strtoul(argv[2], nullptr, 10);
  const std::valarray<double> history = time_value_cases::History(count);
  std::size_t written = 0;
  CALLGRIND_START_INSTRUMENTATION;
  if (mode == "tree") {
    const TSFModel model = time_value_cases::SmoothingModel(history);
    auto tree = std::make_unique<TSXMLTree>();
    Phase("build", [&] { time_value_cases::AddToPMMLTree(*tree, model); });
    Phase("write", [&] {
      std::ostringstream os;
      tree->WriteToStream(os);
      written = static_cast<std::size_t>(os.tellp());
    });
    Phase("destroy", [&] { tree.reset(); });
  } else if (mode == "nodes") {
    std::unique_ptr<OstraTimeXML::XMLElement> series;
    Phase("build", [&] { series = time_value_cases::BuildTsxml(history); });
    Phase("write", [&] {
      std::ostringstream os;
      time_value_cases::WriteTsxml(*series, os);
      written = static_cast<std::size_t>(os.tellp());
    });
    Phase("destroy", [&] { series.reset(); });
  } else if (mode == "pugixml") {
    auto doc = std::make_unique<pugi::xml_document>();
    Phase("build", [&] { time_value_cases::BuildPugi(history, *doc); });
    Phase("write", [&] {
      std::ostringstream os;
      time_value_cases::WritePugi(*doc, os);
      written = static_cast<std::size_t>(os.tellp());
    });
    Phase("destroy", [&] { doc.reset(); });
  } else {
    std::fprintf(stderr, "unknown mode %s\n", mode.c_str());
    return 2;
  }
  std::printf("document bytes=%zu\npeak_rss_kib=%ld\n", written,
              PeakResidentKiB());
  return 0;
}
