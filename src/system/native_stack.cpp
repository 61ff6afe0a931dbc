#include "system/native_stack.h"

#include <cstddef>
#include <cstdint>
#include <pthread.h>
#include <sys/resource.h>

namespace {

#if defined(__SANITIZE_ADDRESS__)
#define QUORVANE_LARGE_FRAMES 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer)
#define QUORVANE_LARGE_FRAMES 1
#endif
#endif

#ifdef QUORVANE_LARGE_FRAMES
constexpr std::size_t reserve = 384 * 1024;
#else
constexpr std::size_t reserve = 192 * 1024;
#endif
#undef QUORVANE_LARGE_FRAMES

std::uintptr_t here() { return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)); }

// For when asking needs memory that isn't there: what is allowed, less the quarter that the words of the
// command line may take.
std::uintptr_t guessLowest() {
    rlimit allowed{};
    if (getrlimit(RLIMIT_STACK, &allowed) != 0 || allowed.rlim_cur > here()) {
        return 0;
    }
    return here() - allowed.rlim_cur / 4 * 3;
}

// The end of this thread's stack.
std::uintptr_t findLowest() {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) {
        return guessLowest();
    }
    void* lowest = nullptr;
    std::size_t size = 0;
    pthread_attr_getstack(&attributes, &lowest, &size);
    pthread_attr_destroy(&attributes);
    return reinterpret_cast<std::uintptr_t>(lowest);
}

std::uintptr_t lowest() {
    static const std::uintptr_t address = findLowest();
    return address;
}

} // namespace

bool nativeStackLow() { return here() < lowest() + reserve; }

std::size_t nativeStackLeft() { return here() < lowest() ? 0 : here() - lowest(); }
