#include "runtime/arena.h"

#include <algorithm>
#include <cstdlib>
#include <new>

ESArena::~ESArena() {
    for (void* chunk : chunks_) {
        std::free(chunk);
    }
}

void* ESArena::allocateSlow(std::size_t bytes) {
    constexpr std::size_t largestChunk = 4 * 1024 * 1024;
    if (bytes > SIZE_MAX / 2) {
        throw std::bad_alloc();
    }
    // A large piece gets a chunk of its own, so that the rest of the present one isn't lost.
    const bool alone = bytes > nextChunk_ / 4;
    const std::size_t size = alone ? bytes : nextChunk_;
    chunks_.push_back(nullptr); // first, since it may fail
    void* chunk = std::malloc(size);
    if (chunk == nullptr) {
        chunks_.pop_back();
        throw std::bad_alloc();
    }
    chunks_.back() = chunk;
    if (alone) {
        return chunk;
    }
    nextChunk_ = std::min(nextChunk_ * 2, largestChunk);
    next_ = static_cast<std::byte*>(chunk) + bytes;
    end_ = static_cast<std::byte*>(chunk) + size;
    return chunk;
}

void* ESArena::allocateBlock(std::size_t bytes) {
    const std::size_t sizeClass = (bytes + 15) / 16;
    if (sizeClass < sizeClasses) {
        if (FreeBlock* block = free_[sizeClass]) {
            free_[sizeClass] = block->next;
            return block;
        }
        return allocate(sizeClass * 16);
    }
    return allocate(bytes);
}

void ESArena::releaseBlock(void* block, std::size_t bytes) {
    const std::size_t sizeClass = (bytes + 15) / 16;
    if (block == nullptr) {
        return;
    }
    if (sizeClass < sizeClasses) {
        auto* freed = static_cast<FreeBlock*>(block);
        freed->next = free_[sizeClass];
        free_[sizeClass] = freed;
    }
}
