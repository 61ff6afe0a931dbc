// An owned file descriptor, closed at the end of its scope.
#pragma once

#include <unistd.h>

#include <utility>

class UniqueFd {
public:
    UniqueFd() = default;
    explicit UniqueFd(int descriptor) : fd_(descriptor) {}
    UniqueFd(UniqueFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    UniqueFd(const UniqueFd&) = delete;
    UniqueFd& operator=(const UniqueFd&) = delete;
    ~UniqueFd() { close(); }

    bool isOpen() const { return fd_ >= 0; }
    int get() const { return fd_; }
    int release() { return std::exchange(fd_, -1); }

    // False when closing reported a failure, which for a file just written means lost data.
    bool close() { return fd_ < 0 || ::close(std::exchange(fd_, -1)) == 0; }

private:
    int fd_ = -1;
};
