#include "compiler/native_stack.h"

#include <cstddef>
#include <cstdint>
#include <pthread.h>

namespace {

#if defined(__SANITIZE_ADDRESS__)
#define QUORVANE_LARGE_FRAMES 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer)
#define QUORVANE_LARGE_FRAMES 1
#endif
#endif

#ifdef QUORVANE_LARGE_FRAMES
constexpr std::size_t reserve = 256 * 1024;
#else
constexpr std::size_t reserve = 96 * 1024;
#endif
#undef QUORVANE_LARGE_FRAMES

// The address below which this thread is short of stack; 0 where the system doesn't tell.
std::uintptr_t findLimit() {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) {
        return 0;
    }
    void* lowest = nullptr;
    std::size_t size = 0;
    const bool known = pthread_attr_getstack(&attributes, &lowest, &size) == 0;
    pthread_attr_destroy(&attributes);
    return known ? reinterpret_cast<std::uintptr_t>(lowest) + reserve : 0;
}

} // namespace

bool nativeStackLow() {
    static thread_local const std::uintptr_t limit = findLimit();
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)) < limit;
}
