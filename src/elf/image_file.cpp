#include "elf/image_file.h"

#include "system/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <elf.h>
#include <limits>
#include <linux/limits.h>
#include <optional>
#include <string>
#include <utility>

namespace {

constexpr std::uint64_t maxImageSize = std::numeric_limits<std::uint32_t>::max();

// Who runs the changed content is not to gain rights by it, so set-user-id and set-group-id go.
constexpr mode_t keptModeBits = 01777;

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

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

// Gives the file behind `link` a free name and then the target's, in the place of what has that. 0, or the
// reason why not.
int moveInto(const char* link, const char* name, const char* target) {
    if (linkat(AT_FDCWD, link, AT_FDCWD, name, AT_SYMLINK_FOLLOW) != 0) {
        return errno;
    }
    if (rename(name, target) == 0) {
        return 0;
    }
    const int reason = errno;
    unlink(name);
    return reason;
}

// Nothing can give a nameless file a name that is taken, so it has another one for a moment. A child with a
// session of its own does that: whatever kills this process or its group in the same moment, the child goes
// on, and the other name doesn't stay. Until it has, it may make system calls only.
int moveIntoByChild(const char* link, const char* name, const char* target) {
    const pid_t child = vfork(); // NOLINT(clang-analyzer-security.insecureAPI.vfork)
    if (child == 0) {
        setsid();                            // NOLINT(clang-analyzer-unix.Vfork)
        _exit(moveInto(link, name, target)); // NOLINT(clang-analyzer-unix.Vfork)
    }
    if (child < 0) {
        return moveInto(link, name, target);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            return errno;
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : EIO;
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

    bool open(mode_t mode) {
        // Without a name nothing is left behind when the process is killed. Giving it one later needs /proc.
        if (access("/proc/self/fd", X_OK) == 0) {
            fd_ = openFile(folder_, O_TMPFILE | O_WRONLY, mode);
        }
        for (int number = 0; !fd_.isOpen() && number < mostNames; ++number) {
            std::string name = freeName(number);
            fd_ = openFile(name, O_WRONLY | O_CREAT | O_EXCL, mode);
            if (fd_.isOpen()) {
                name_ = std::move(name); // a copy could fail, and the file would stay
            } else if (errno != EEXIST) {
                return false;
            }
        }
        return fd_.isOpen();
    }

    // Puts the file in the place of whatever `target` names. On failure errno is set.
    bool commit(const std::string& target) {
        if (!name_.empty()) {
            if (!fd_.close() || rename(name_.c_str(), target.c_str()) != 0) {
                return false;
            }
            name_.clear();
            return true;
        }
        const std::string link = "/proc/self/fd/" + std::to_string(fd_.get());
        if (linkat(AT_FDCWD, link.c_str(), AT_FDCWD, target.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            return true; // there was nothing to replace
        }
        for (int number = 0; errno == EEXIST && number < mostNames; ++number) {
            errno = moveIntoByChild(link.c_str(), freeName(number).c_str(), target.c_str());
        }
        return errno == 0;
    }

private:
    static constexpr int mostNames = 100;

    std::string freeName(int number) const {
        return folder_ + "/.image-" + std::to_string(getpid()) + '-' + std::to_string(number);
    }

    std::string folder_;
    UniqueFd fd_;
    std::string name_; // empty while there is none
};

// What open gives a file: a folder with an ACL for its new files settles that, else the umask does.
mode_t modeOfNewFiles(const std::string& folder) {
    const mode_t mask = umask(0);
    umask(mask);
    return getxattr(folder.c_str(), "system.posix_acl_default", nullptr, 0) > 0 ? 0666 : 0666 & ~mask;
}

// Some file systems can't; only those that tried and failed have lost something.
bool reachedDisk(int fd) { return fsync(fd) == 0 || errno == EINVAL || errno == ENOSYS; }

bool isUnsupported(int reason) { return reason == EOPNOTSUPP || reason == ENOSYS || reason == EINVAL; }

bool writeFrom(int fd, std::span<const std::uint8_t> bytes, std::size_t offset) {
    return lseek(fd, static_cast<off_t>(offset), SEEK_SET) >= 0 &&
           writeAll(fd, reinterpret_cast<const char*>(bytes.data()) + offset, bytes.size() - offset);
}

// Finds out whether the image has room before a byte of the old content is harmed: it reserves what holes in
// the file and a longer image need. Where the file system can't reserve, writing the longer end tells.
bool makeRoom(int fd, std::size_t oldSize, std::span<const std::uint8_t> image) {
    if (fallocate(fd, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(image.size())) != 0 &&
        !isUnsupported(errno)) {
        return false;
    }
    return image.size() <= oldSize || (writeFrom(fd, image, oldSize) && reachedDisk(fd));
}

// Overwrites the content of a regular file, and sets its length last.
bool overwriteContent(int fd, const struct stat& old, std::span<const std::uint8_t> image) {
    const auto oldSize = static_cast<std::size_t>(old.st_size);
    const bool hasRoom = makeRoom(fd, oldSize, image);
    if (hasRoom && (old.st_mode & (S_ISUID | S_ISGID)) != 0) {
        fchmod(fd, old.st_mode & keptModeBits); // who may not do this finds that the system does
    }
    if (!hasRoom || !writeFrom(fd, image.first(std::min(oldSize, image.size())), 0)) {
        [[maybe_unused]] const int ignored = ftruncate(fd, old.st_size);
        return false;
    }
    return ftruncate(fd, static_cast<off_t>(image.size())) == 0 && reachedDisk(fd);
}

WriteResult overwriteFile(const std::string& path, std::span<const std::uint8_t> image) {
    UniqueFd fd = openFile(path, O_WRONLY);
    struct stat old {};
    if (!fd.isOpen() || fstat(fd.get(), &old) != 0) {
        return WriteResult::CannotOpen;
    }
    const bool written = S_ISREG(old.st_mode)
                             ? overwriteContent(fd.get(), old, image)
                             : writeAll(fd.get(), reinterpret_cast<const char*>(image.data()), image.size());
    return fd.close() && written ? WriteResult::Done : WriteResult::CannotWrite;
}

// Gives the new file an attribute of the old one. False when it can't be kept.
bool takeOverAttribute(int fd, const std::string& old, const char* name) {
    // These speak of the content, which changes; the system itself takes them away then.
    for (const char* const ofContent : {"security.capability", "security.ima", "security.evm"}) {
        if (std::strcmp(name, ofContent) == 0) {
            return true;
        }
    }
    std::string value(XATTR_SIZE_MAX, '\0');
    std::string present(XATTR_SIZE_MAX, '\0');
    const ssize_t size = getxattr(old.c_str(), name, value.data(), value.size());
    if (size < 0) {
        return false;
    }
    value.resize(static_cast<std::size_t>(size));
    // A label that the new file has from the start may not be one that anybody could set.
    const ssize_t presentSize = fgetxattr(fd, name, present.data(), present.size());
    present.resize(static_cast<std::size_t>(std::max<ssize_t>(presentSize, 0)));
    return (presentSize >= 0 && present == value) || fsetxattr(fd, name, value.data(), value.size(), 0) == 0;
}

// Gives the new file the group, the extended attributes, ACLs among them, and the mode of the old one. False
// when it can't have them all.
bool takeOver(int fd, const std::string& target, const struct stat& old) {
    struct stat now {};
    if (fstat(fd, &now) != 0 ||
        (old.st_gid != now.st_gid && fchown(fd, static_cast<uid_t>(-1), old.st_gid) != 0)) {
        return false;
    }
    constexpr char accessList[] = "system.posix_acl_access";
    std::string names(XATTR_LIST_MAX, '\0');
    const ssize_t size = listxattr(target.c_str(), names.data(), names.size());
    if (size < 0 && !isUnsupported(errno)) {
        return false;
    }
    bool hasAccessList = false;
    const char* const end = names.data() + std::max<ssize_t>(size, 0);
    for (const char* name = names.data(); name < end; name += std::strlen(name) + 1) {
        if (!takeOverAttribute(fd, target, name)) {
            return false;
        }
        hasAccessList = hasAccessList || std::strcmp(name, accessList) == 0;
    }
    // One that came from the folder would let in whom the old file kept out.
    if (!hasAccessList && fremovexattr(fd, accessList) != 0 && errno != ENODATA && !isUnsupported(errno)) {
        return false;
    }
    // The mode comes last: with an ACL its group bits are the limit of all that the ACL gives.
    const mode_t mode = old.st_mode & keptModeBits;
    return fchmod(fd, mode) == 0 || (now.st_mode & 07777) == mode;
}

// `old` describes the file at `target`, or is null when there is none. Nothing when the file can't be
// replaced with all that belongs to it; it hasn't been touched then.
std::optional<WriteResult> replaceFile(const std::string& target, const struct stat* old,
                                       std::span<const std::uint8_t> image) {
    const std::string folder = folderOf(target);
    NewFile file(folder);
    if (!file.open(old != nullptr ? S_IRUSR | S_IWUSR : modeOfNewFiles(folder)) ||
        (old != nullptr && !takeOver(file.fd(), target, *old))) {
        return std::nullopt;
    }
    if (!writeFrom(file.fd(), image, 0) || !reachedDisk(file.fd())) {
        return WriteResult::CannotWrite;
    }
    if (file.commit(target)) {
        return WriteResult::Done;
    }
    // A file that is mounted on its own (containers do that) can't be replaced, only written.
    return errno == EBUSY ? std::nullopt : std::optional(WriteResult::CannotWrite);
}

// Where a path leads in the end, or the empty text.
std::string resolved(const std::string& path) {
    std::array<char, PATH_MAX> real;
    return realpath(path.c_str(), real.data()) != nullptr ? std::string(real.data()) : std::string();
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
    if (*path == '\0') {
        return WriteResult::CannotOpen;
    }
    struct stat old {};
    if (stat(path, &old) == 0) {
        const std::string target = resolved(path);
        if (S_ISREG(old.st_mode) && old.st_nlink == 1 && old.st_uid == geteuid() && !target.empty()) {
            if (faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) {
                return WriteResult::CannotOpen;
            }
            if (const std::optional<WriteResult> result = replaceFile(target, &old, image)) {
                return *result;
            }
        }
        return overwriteFile(path, image);
    }
    if (errno != ENOENT) {
        return WriteResult::CannotOpen;
    }
    std::string link(PATH_MAX, '\0');
    const ssize_t length = readlink(path, link.data(), link.size());
    if (length <= 0) {
        return replaceFile(path, nullptr, image).value_or(WriteResult::CannotOpen);
    }
    // A link to nothing: what it names is made. It ends somewhere, or the system had found the circle.
    link.resize(static_cast<std::size_t>(length));
    return writeImageFile((link.front() == '/' ? link : folderOf(path) + '/' + link).c_str(), image);
}
