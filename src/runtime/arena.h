// Memory that only grows: the language frees nothing before its context goes, so most of what a run needs
// comes from here, a bump of a pointer at a time. Blocks that outgrow their place come back by size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

// Hands out memory aligned to 8 bytes, all of it released when the arena is destroyed. Every allocation may
// throw std::bad_alloc, and then nothing has changed.
class ESArena {
public:
    ESArena() = default;
    ESArena(const ESArena&) = delete;
    ESArena& operator=(const ESArena&) = delete;
    ~ESArena();

    // bytes is rounded up to a multiple of 8. The memory isn't initialised.
    void* allocate(std::size_t bytes) {
        bytes = (bytes + 7) & ~std::size_t{7};
        if (bytes > static_cast<std::size_t>(end_ - next_)) {
            return allocateSlow(bytes);
        }
        void* result = next_;
        next_ += bytes;
        return result;
    }

    // Takes back what allocate() gave last; anything else it leaves as it is.
    void takeBack(void* memory, std::size_t bytes) {
        if (static_cast<std::byte*>(memory) + ((bytes + 7) & ~std::size_t{7}) == next_) {
            next_ = static_cast<std::byte*>(memory);
        }
    }

    template <typename T>
    T* allocateArray(std::size_t count) {
        return static_cast<T*>(allocate(count * sizeof(T)));
    }

    // A block that may grow: sizes are rounded up to a class, and freed blocks of a class are used again.
    void* allocateBlock(std::size_t bytes);
    void releaseBlock(void* block, std::size_t bytes);

private:
    void* allocateSlow(std::size_t bytes);

    struct FreeBlock {
        FreeBlock* next;
    };
    static constexpr int sizeClasses = 128; // multiples of 16 bytes, below 2048

    std::byte* next_ = nullptr;
    std::byte* end_ = nullptr;
    std::size_t nextChunk_ = 64 * 1024;
    std::vector<void*> chunks_;
    FreeBlock* free_[sizeClasses] = {};
};
