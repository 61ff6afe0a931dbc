#include "faults/failing_memory.h"

#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

#ifdef __SANITIZE_ADDRESS__
#define REAL(name) __interceptor_##name
#else
#define REAL(name) __libc_##name
#endif

extern "C" {
void* REAL(malloc)(std::size_t size);
void* REAL(calloc)(std::size_t count, std::size_t size);
void* REAL(realloc)(void* block, std::size_t size);
void* REAL(memalign)(std::size_t alignment, std::size_t size);
}

namespace {

bool refused() {
    FailingMemory& memory = failingMemory;
    ++memory.requests;
    if (memory.failing == 0 ||
        (memory.fromThenOn ? memory.requests < memory.failing : memory.requests != memory.failing)) {
        return false;
    }
    errno = ENOMEM;
    return true;
}

void* newBlock(std::size_t size) {
    if (void* block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc();
}

void* newBlock(std::size_t size, std::align_val_t alignment) {
    if (void* block = std::aligned_alloc(static_cast<std::size_t>(alignment), size)) {
        return block;
    }
    throw std::bad_alloc();
}

} // namespace

extern "C" {

void* malloc(std::size_t size) noexcept { return refused() ? nullptr : REAL(malloc)(size); }

void* calloc(std::size_t count, std::size_t size) noexcept {
    return refused() ? nullptr : REAL(calloc)(count, size);
}

void* realloc(void* block, std::size_t size) noexcept {
    return size != 0 && refused() ? nullptr : REAL(realloc)(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return refused() ? nullptr : REAL(memalign)(alignment, size);
}

void* mmap(void* address, std::size_t size, int protection, int flags, int fd, off_t offset) noexcept {
    if (refused()) {
        return MAP_FAILED;
    }
    return reinterpret_cast<void*>(syscall(SYS_mmap, address, size, protection, flags, fd, offset));
}

} // extern "C"

void* operator new(std::size_t size) { return newBlock(size); }
void* operator new[](std::size_t size) { return newBlock(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return std::malloc(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return std::malloc(size); }
void* operator new(std::size_t size, std::align_val_t alignment) { return newBlock(size, alignment); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return newBlock(size, alignment); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
