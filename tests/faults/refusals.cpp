// usage: quorvane_refusals COUNT KIND WAY FIRST ARGUMENT...
//
// The program with ARGUMENT..., while requests to the system are refused: those of a KIND, in a WAY, with
// FIRST the number of the request from 1, or 0 for none. A run that ends writes the number of its requests
// into the file COUNT. The definitions here stand in for those of the C and C++ libraries in the whole
// process, so what Qt and libstdc++ ask for is counted as well. Removing a file is never refused.
#include "host/run.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
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

enum Kind { Nothing, Memory, Files };
enum Way { Once, FromThenOn, Kill }; // the last refuses nothing, but the process is killed; a child goes on

int refusedKind = Nothing;
int refusedWay = Once;
long first = 0;
long requests = 0;
pid_t process = 0;
const char* countPath = "";

bool refused(Kind kind) {
    if (kind != refusedKind || ++requests < first || first == 0 ||
        (refusedWay != FromThenOn && requests > first)) {
        return false;
    }
    if (refusedWay == Kill) {
        kill(process, SIGKILL);
        return false;
    }
    errno = kind == Memory ? ENOMEM : EIO;
    return true;
}

} // namespace

extern "C" {

void* malloc(std::size_t size) noexcept { return refused(Memory) ? nullptr : REAL(malloc)(size); }

void* calloc(std::size_t count, std::size_t size) noexcept {
    return refused(Memory) ? nullptr : REAL(calloc)(count, size);
}

void* realloc(void* block, std::size_t size) noexcept {
    return size != 0 && refused(Memory) ? nullptr : REAL(realloc)(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return refused(Memory) ? nullptr : REAL(memalign)(alignment, size);
}

void* mmap(void* address, std::size_t size, int protection, int flags, int fd, off_t offset) noexcept {
    if (refused(Memory)) {
        return MAP_FAILED;
    }
    return reinterpret_cast<void*>(syscall(SYS_mmap, address, size, protection, flags, fd, offset));
}

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = va_arg(rest, mode_t);
    va_end(rest);
    return refused(Files) ? -1 : static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

int close(int fd) { // which it is in any case
    const bool fails = refused(Files);
    return static_cast<int>(syscall(SYS_close, fd)) != 0 || fails ? -1 : 0;
}

#define ON_FILES(type, name, parameters, ...)                                                                \
    type name parameters { return refused(Files) ? -1 : static_cast<type>(syscall(SYS_##__VA_ARGS__)); }

ON_FILES(ssize_t, read, (int fd, void* to, std::size_t size), read, fd, to, size)
ON_FILES(ssize_t, write, (int fd, const void* from, std::size_t size), write, fd, from, size)
ON_FILES(off_t, lseek, (int fd, off_t offset, int whence) noexcept, lseek, fd, offset, whence)
ON_FILES(int, fsync, (int fd), fsync, fd)
ON_FILES(int, fallocate, (int fd, int mode, off_t from, off_t size), fallocate, fd, mode, from, size)
ON_FILES(int, ftruncate, (int fd, off_t size) noexcept, ftruncate, fd, size)
ON_FILES(int, fstat, (int fd, struct stat* to) noexcept, newfstatat, fd, "", to, AT_EMPTY_PATH)
ON_FILES(int, fchmod, (int fd, mode_t mode) noexcept, fchmod, fd, mode)
ON_FILES(int, fchown, (int fd, uid_t user, gid_t group) noexcept, fchown, fd, user, group)
ON_FILES(int, rename, (const char* from, const char* to) noexcept, renameat2, AT_FDCWD, from, AT_FDCWD, to, 0)
ON_FILES(int, linkat, (int at, const char* from, int toAt, const char* to, int flags) noexcept, linkat, at,
         from, toAt, to, flags)
ON_FILES(ssize_t, listxattr, (const char* path, char* to, std::size_t size) noexcept, listxattr, path, to,
         size)
ON_FILES(ssize_t, getxattr, (const char* path, const char* name, void* to, std::size_t size) noexcept,
         getxattr, path, name, to, size)
ON_FILES(ssize_t, fgetxattr, (int fd, const char* name, void* to, std::size_t size) noexcept, fgetxattr, fd,
         name, to, size)
ON_FILES(int, fsetxattr, (int fd, const char* name, const void* value, std::size_t size, int flags) noexcept,
         fsetxattr, fd, name, value, size, flags)
ON_FILES(int, fremovexattr, (int fd, const char* name) noexcept, fremovexattr, fd, name)

} // extern "C"

// A sanitizer's would not come to malloc. The library makes all other forms of these.
void* operator new(std::size_t size) {
    if (void* block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return std::malloc(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

int main(int argc, char** argv) {
    if (argc < 5) {
        return EXIT_FAILURE;
    }
    countPath = argv[1];
    std::atexit([] {
        refusedKind = Nothing;
        if (FILE* const file = std::fopen(countPath, "w")) {
            std::fprintf(file, "%ld", requests);
            std::fclose(file);
        }
    });
    refusedKind = std::atoi(argv[2]);
    refusedWay = std::atoi(argv[3]);
    first = std::atol(argv[4]);
    process = getpid();
    argv[4] = argv[0];
    return runQuorvane(argc - 4, argv + 4);
}
