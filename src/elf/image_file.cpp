#include "elf/image_file.h"

#include "hostobjects/unique_fd.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <elf.h>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr std::uint64_t maxImageSize = std::numeric_limits<std::uint32_t>::max();

UniqueFd openFile(const std::string& path, int flags, mode_t mode = 0) {
    int fd = -1;
    do {
        fd = open(path.c_str(), flags | O_CLOEXEC, mode);
    } while (fd < 0 && errno == EINTR);
    return UniqueFd(fd);
}

// The number of bytes read; fewer than asked for at the end of the file only. -1 on failure.
ssize_t readFully(int fd, std::uint8_t* to, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = read(fd, to + done, size - done);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return -1;
        }
        if (count == 0) {
            break;
        }
        done += static_cast<std::size_t>(count);
    }
    return static_cast<ssize_t>(done);
}

bool writeFully(int fd, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(fd, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return false;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

bool beginsWithMagic(const std::uint8_t* bytes, std::size_t size) {
    return size >= SELFMAG && std::memcmp(bytes, ELFMAG, SELFMAG) == 0;
}

// A source that doesn't tell its size. The magic is looked at first, so one without end is no matter.
ReadResult readStream(int fd, ImageBytes& image) {
    std::size_t capacity = 64 * 1024;
    auto bytes = std::make_unique_for_overwrite<std::uint8_t[]>(capacity);
    std::size_t size = 0;
    for (;;) {
        const ssize_t count = readFully(fd, bytes.get() + size, capacity - size);
        if (count < 0) {
            return ReadResult::CannotRead;
        }
        size += static_cast<std::size_t>(count);
        if (!beginsWithMagic(bytes.get(), size) || size > maxImageSize) {
            return ReadResult::NotElf;
        }
        if (size < capacity) {
            image = ImageBytes(std::move(bytes), size);
            return ReadResult::Done;
        }
        capacity *= 2;
        auto larger = std::make_unique_for_overwrite<std::uint8_t[]>(capacity);
        std::memcpy(larger.get(), bytes.get(), size);
        bytes = std::move(larger);
    }
}

ReadResult readSized(int fd, std::uint64_t fileSize, ImageBytes& image) {
    std::array<std::uint8_t, SELFMAG> magic;
    const std::size_t size = static_cast<std::size_t>(fileSize);
    const ssize_t magicRead = readFully(fd, magic.data(), std::min(size, magic.size()));
    if (magicRead < 0 || static_cast<std::size_t>(magicRead) < std::min(size, magic.size())) {
        return ReadResult::CannotRead;
    }
    if (!beginsWithMagic(magic.data(), static_cast<std::size_t>(magicRead)) || fileSize > maxImageSize) {
        return ReadResult::NotElf;
    }
    auto bytes = std::make_unique_for_overwrite<std::uint8_t[]>(size);
    std::copy(magic.begin(), magic.end(), bytes.get());
    const std::size_t rest = size - magic.size();
    if (readFully(fd, bytes.get() + magic.size(), rest) != static_cast<ssize_t>(rest)) {
        return ReadResult::CannotRead;
    }
    image = ImageBytes(std::move(bytes), size);
    return ReadResult::Done;
}

// Going past a limit on file sizes would end the process; a failed write can be reported.
class FileSizeSignalIgnored {
public:
    FileSizeSignalIgnored() {
        struct sigaction ignore {};
        ignore.sa_handler = SIG_IGN;
        sigaction(SIGXFSZ, &ignore, &before_);
    }
    FileSizeSignalIgnored(const FileSizeSignalIgnored&) = delete;
    FileSizeSignalIgnored& operator=(const FileSizeSignalIgnored&) = delete;
    ~FileSizeSignalIgnored() { sigaction(SIGXFSZ, &before_, nullptr); }

private:
    struct sigaction before_ {};
};

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool mayWrite(const std::string& path, int what) {
    return faccessat(AT_FDCWD, path.c_str(), what, AT_EACCESS) == 0;
}

// A file in the making, beside the one that it is to replace. Whatever wasn't committed is gone in the end.
class NewFile {
public:
    explicit NewFile(const std::string& folder) : folder_(folder) {}
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() {
        if (!name_.empty()) {
            unlink(name_.c_str());
        }
    }

    int fd() const { return fd_.get(); }

    bool open() {
        // Without a name nothing is left behind when the process is killed. Giving it one later needs /proc.
        if (access("/proc/self/fd", X_OK) == 0) {
            fd_ = openFile(folder_, O_TMPFILE | O_WRONLY, S_IRUSR | S_IWUSR);
        }
        if (!fd_.isOpen()) {
            std::string name = nameTemplate();
            fd_ = UniqueFd(mkostemp(name.data(), O_CLOEXEC));
            if (fd_.isOpen()) {
                name_ = std::move(name); // a copy could fail, and the file would stay
            }
        }
        return fd_.isOpen();
    }

    // Puts the file in the place of whatever `target` names. On failure errno is set.
    bool commit(const std::string& target) {
        if (name_.empty() && !giveName()) {
            return false;
        }
        if (!fd_.close() || rename(name_.c_str(), target.c_str()) != 0) {
            return false;
        }
        name_.clear();
        return true;
    }

private:
    std::string nameTemplate() const { return folder_ + "/.image-XXXXXX"; }

    bool giveName() {
        const std::string link = "/proc/self/fd/" + std::to_string(fd_.get());
        for (int attempt = 0; attempt < 100; ++attempt) {
            std::string name = nameTemplate();
            const UniqueFd placeholder(mkostemp(name.data(), O_CLOEXEC));
            if (!placeholder.isOpen() || unlink(name.c_str()) != 0) {
                return false;
            }
            if (linkat(AT_FDCWD, link.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
                name_ = std::move(name);
                return true;
            }
            if (errno != EEXIST) {
                return false;
            }
        }
        return false;
    }

    std::string folder_;
    UniqueFd fd_;
    std::string name_; // empty while there is none
};

mode_t modeOfNewFiles() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

// Some file systems can't; only those that tried and failed have lost something.
bool reachedDisk(int fd) { return fsync(fd) == 0 || errno == EINVAL || errno == ENOSYS; }

WriteResult overwriteFile(const std::string& path, std::span<const std::uint8_t> image) {
    UniqueFd fd = openFile(path, O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (!fd.isOpen()) {
        return WriteResult::CannotOpen;
    }
    const bool written = writeFully(fd.get(), image);
    return fd.close() && written ? WriteResult::Done : WriteResult::CannotWrite;
}

// Gives the new file the mode and the group of the old one, or the mode of a file just made.
bool takeOver(int fd, const struct stat* old) {
    struct stat now {};
    if (fstat(fd, &now) != 0) {
        return false;
    }
    if (old != nullptr && old->st_gid != now.st_gid && fchown(fd, static_cast<uid_t>(-1), old->st_gid) != 0) {
        return false;
    }
    // The mode comes last: changing the group takes set-id bits away.
    const mode_t mode = old != nullptr ? (old->st_mode & 07777) : modeOfNewFiles();
    return fchmod(fd, mode) == 0 || (now.st_mode & 07777) == mode;
}

// `old` describes the file at `target`, or is null when there is none.
WriteResult replaceFile(const std::string& target, const struct stat* old,
                        std::span<const std::uint8_t> image) {
    NewFile file(folderOf(target));
    if (!file.open()) {
        return WriteResult::CannotOpen;
    }
    if (!writeFully(file.fd(), image) || !takeOver(file.fd(), old) || !reachedDisk(file.fd())) {
        return WriteResult::CannotWrite;
    }
    if (file.commit(target)) {
        return WriteResult::Done;
    }
    // A file that is mounted on its own (containers do that) can't be replaced, only written.
    return errno == EBUSY ? overwriteFile(target, image) : WriteResult::CannotWrite;
}

// Where a path leads in the end, or the empty text.
std::string resolved(const std::string& path) {
    std::array<char, PATH_MAX> real;
    return realpath(path.c_str(), real.data()) != nullptr ? std::string(real.data()) : std::string();
}

bool groupCanStay(const struct stat& old) {
    if (geteuid() == 0 || old.st_gid == getegid()) {
        return true;
    }
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(getgroups(0, nullptr), 0)));
    const int count = getgroups(static_cast<int>(groups.size()), groups.data());
    return count > 0 && std::find(groups.begin(), groups.end(), old.st_gid) != groups.end();
}

} // namespace

ReadResult readImageFile(const char* path, ImageBytes& image) {
    const UniqueFd fd = openFile(path, O_RDONLY);
    struct stat status {};
    if (!fd.isOpen() || fstat(fd.get(), &status) != 0 || S_ISDIR(status.st_mode)) {
        return ReadResult::CannotOpen;
    }
    if (S_ISREG(status.st_mode) && status.st_size > 0) {
        return readSized(fd.get(), static_cast<std::uint64_t>(status.st_size), image);
    }
    return readStream(fd.get(), image);
}

WriteResult writeImageFile(const char* path, std::span<const std::uint8_t> image) {
    const FileSizeSignalIgnored guard;
    if (*path == '\0') {
        return WriteResult::CannotOpen;
    }
    struct stat status {};
    if (stat(path, &status) == 0) {
        const std::string target = resolved(path);
        const bool ownFile =
            S_ISREG(status.st_mode) && status.st_nlink == 1 && status.st_uid == geteuid() && !target.empty();
        if (!ownFile || !mayWrite(folderOf(target), W_OK | X_OK) || !groupCanStay(status)) {
            return overwriteFile(path, image);
        }
        return mayWrite(target, W_OK) ? replaceFile(target, &status, image) : WriteResult::CannotOpen;
    }
    if (errno != ENOENT) {
        return WriteResult::CannotOpen;
    }
    if (lstat(path, &status) != 0) {
        return replaceFile(path, nullptr, image);
    }
    // A link to nothing: its target is made, and is gone again if that fails.
    const WriteResult result = overwriteFile(path, image);
    if (result == WriteResult::CannotWrite) {
        unlink(resolved(path).c_str());
    }
    return result;
}
