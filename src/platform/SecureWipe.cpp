#include "platform/SecureWipe.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

#if defined(__GLIBC__)
#include <malloc.h>
#include <unistd.h>
#endif

namespace orlune {

#if defined(__GLIBC__)

namespace {

/// Blocks that were taken from the heap, to be returned at the end.
class Blocks {
  public:
    explicit Blocks(std::size_t limit) : left_(limit) {}
    ~Blocks() {
        while (first_) {
            auto* const block = first_;
            first_ = block->next;
            std::free(block);
        }
    }
    Blocks(const Blocks&) = delete;
    Blocks& operator=(const Blocks&) = delete;

    /// Takes a block and overwrites it. False when it lies at `end` or beyond.
    bool take(std::size_t size, const char* end) {
        auto* const memory = size <= left_ ? static_cast<char*>(std::malloc(size)) : nullptr;
        if (!memory) {
            return false;
        }
        left_ -= size;
        ::explicit_bzero(memory, size);
        first_ = new (memory) Block{first_};
        return memory < end;
    }

  private:
    struct Block {
        Block* next;
    };

    Block* first_ = nullptr;
    std::size_t left_;
};

/// Overwrites what returned functions left on the stack, mainly registers that were saved there
/// while a secret was copied.
[[gnu::noinline]] void wipeUnusedStack() {
    constexpr std::size_t depth = std::size_t{256} * 1024; // more than Qt uses to handle an event
    char unused[depth];
    ::explicit_bzero(unused, depth);
}

} // namespace

void wipeFreeMemory() {
    wipeUnusedStack();
    // M_PERTURB is not enough: it skips blocks up to 1032 bytes that go into a thread's cache. The
    // allocator uses all free memory before it touches the unused end of the heap, so once every
    // size is served from there, all free memory has been overwritten.
    ::malloc_trim(0); // whole pages go back to the system
    const auto heap = ::mallinfo2();
    const auto* const unusedEnd = static_cast<const char*>(::sbrk(0)) - heap.keepcost;
    constexpr std::size_t threadCache = 1 << 20; // not counted as free
    Blocks blocks(heap.fordblks + threadCache);
    constexpr std::size_t largest = 1 << 16;
    constexpr std::size_t smallest = 24;
    constexpr std::size_t finest = 1032; // from here down each size has its own lists
    constexpr std::size_t step = 16;
    for (std::size_t size = largest; size > finest; size /= 2) {
        while (blocks.take(size, unusedEnd)) {
        }
    }
    for (std::size_t size = finest; size >= smallest; size -= step) {
        while (blocks.take(size, unusedEnd)) {
        }
    }
    constexpr std::size_t overhead = 64;
    if (const auto end = ::mallinfo2().keepcost; end > overhead) {
        blocks.take(end - overhead, unusedEnd);
    }
}

#else

void wipeFreeMemory() {}

#endif

} // namespace orlune
