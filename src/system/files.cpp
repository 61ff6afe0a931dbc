#include "system/files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <linux/limits.h>
#include <memory>
#include <span>

QString programDir;
QString rootDir;

namespace {

bool isDirectory(const char* path) {
    struct stat status {};
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

UniqueFd openDescriptor(const char* path, int flags, mode_t mode) {
    int fd = -1;
    do {
        fd = open(path, flags | O_CLOEXEC, mode);
    } while (fd < 0 && errno == EINTR);
    return UniqueFd(fd);
}

UniqueFd openFile(const QString& path, int flags) {
    UniqueFd fd = openDescriptor(path.toLatin1().constData(), flags, 0666);
    struct stat status {};
    if (fd.isOpen() && (fstat(fd.get(), &status) != 0 || S_ISDIR(status.st_mode))) {
        fd.close();
        errno = EISDIR;
    }
    return fd;
}

QString removeSteps(const QString& path) {
    const QChar slash = u'/';
    QString cleaned;
    cleaned.reserve(path.size());
    qsizetype firstSlash = -1; // in `cleaned`; saves a search for a slash that isn't there
    for (qsizetype i = 0; i < path.size(); ++i) {
        const auto endsAt = [&](qsizetype position) {
            return position >= path.size() || path[position] == slash;
        };
        const bool startsComponent = path[i] == u'.' && cleaned.endsWith(slash);
        if (startsComponent && endsAt(i + 1)) {
            cleaned.chop(1);
        } else if (startsComponent && path[i + 1] == u'.' && endsAt(i + 2) && firstSlash >= 0 &&
                   firstSlash <= cleaned.size() - 3) {
            cleaned.truncate(cleaned.lastIndexOf(slash, cleaned.size() - 3));
            ++i;
        } else {
            if (path[i] == slash && firstSlash < 0) {
                firstSlash = cleaned.size();
            }
            cleaned.append(path[i]);
        }
        if (cleaned.size() <= firstSlash) {
            firstSlash = -1;
        }
    }
    return cleaned;
}

bool copyContent(int source, int target, std::span<char> block) {
    // The kernel can often copy without the bytes passing through here. Where it can't, or stops early, the
    // loop below takes up at the same place and finds the true end or the true failure.
    constexpr std::size_t kernelPiece = std::size_t{1} << 30;
    while (copy_file_range(source, nullptr, target, nullptr, kernelPiece, 0) > 0) {
    }
    for (;;) {
        const ssize_t count = read(source, block.data(), block.size());
        if (count == 0) {
            return true;
        }
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 || !writeAll(target, block.data(), static_cast<std::size_t>(count))) {
            return false;
        }
    }
}

// Beside an access list the group's bits of a mode are the limit of the whole list. Without it they would be
// rights of the group. False when the list can't go along.
bool copyAccessList(int source, int target) {
    constexpr char name[] = "system.posix_acl_access";
    const auto list = std::make_unique<char[]>(XATTR_SIZE_MAX);
    const ssize_t size = fgetxattr(source, name, list.get(), XATTR_SIZE_MAX);
    return size < 0 ? errno == ENODATA || errno == EOPNOTSUPP
                    : fsetxattr(target, name, list.get(), static_cast<std::size_t>(size), 0) == 0;
}

void copyTimesAndMode(int source, const struct stat& status, int target) {
    const std::array<timespec, 2> times{status.st_atim, status.st_mtim};
    futimens(target, times.data());
    const mode_t mask = umask(0);
    umask(mask);
    const mode_t group = copyAccessList(source, target) ? 0 : S_IRWXG;
    fchmod(target, status.st_mode & 07777U & ~mask & ~group);
}

} // namespace

QString cleanPath(const QString& path) {
    const QString steps = removeSteps(path);
    QString cleaned;
    cleaned.reserve(steps.size());
    for (const QChar c : steps) {
        if (c != u'/' || !cleaned.endsWith(u'/')) {
            cleaned.append(c);
        }
    }
    return cleaned;
}

bool fileExists(const QString& path) {
    struct stat status {};
    return stat(path.toLatin1().constData(), &status) == 0;
}

std::uint64_t fileSize(const QString& path) {
    const QByteArray name = path.toLatin1();
    struct stat status {};
    // Asked first, since opening a pipe would wait for its other end.
    if (stat(name.constData(), &status) != 0 || !S_ISREG(status.st_mode) ||
        !openDescriptor(name.constData(), O_RDONLY, 0).isOpen()) {
        return 0;
    }
    return static_cast<std::uint64_t>(status.st_size);
}

UniqueFd openForReading(const QString& path) { return openFile(path, O_RDONLY); }

UniqueFd openForWriting(const QString& path) { return openFile(path, O_WRONLY | O_CREAT | O_TRUNC); }

QByteArray readUpTo(int fd, std::size_t most) {
    constexpr qsizetype step = 64 * 1024;
    QByteArray bytes;
    qsizetype used = 0;
    for (;;) {
        const qsizetype wanted = std::min(static_cast<qsizetype>(most), used + step + used / 2);
        bytes.resize(wanted);
        const ssize_t count = read(fd, bytes.data() + used, static_cast<std::size_t>(wanted - used));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        used += std::max<ssize_t>(count, 0);
        if (count <= 0 || used == static_cast<qsizetype>(most)) {
            const int reason = count < 0 ? errno : 0;
            bytes.truncate(used);
            errno = reason;
            return bytes;
        }
    }
}

bool writeAll(int fd, const char* bytes, std::size_t count) {
    while (count > 0) {
        const ssize_t written = write(fd, bytes, count);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
    return true;
}

bool copyFile(const QString& source, const QString& destination, bool createDirectory) {
    const QByteArray sourceName = source.toLatin1();
    if (!fileExists(source)) {
        return false;
    }
    if (createDirectory) {
        makePath(QDir(destination.left(destination.lastIndexOf(u'/') + 1)));
    }
    QByteArray target = destination.toLatin1();
    if (isDirectory(target.constData())) {
        target += '/' + sourceName.mid(sourceName.lastIndexOf('/') + 1);
    }

    const UniqueFd from = openDescriptor(sourceName.constData(), O_RDONLY, 0);
    struct stat fromStatus {};
    if (!from.isOpen() || fstat(from.get(), &fromStatus) != 0 || S_ISDIR(fromStatus.st_mode)) {
        return false;
    }
    // Asked before the target is opened, which would cut the source to nothing if the two are one.
    struct stat toStatus {};
    if (stat(target.constData(), &toStatus) == 0 && toStatus.st_dev == fromStatus.st_dev &&
        toStatus.st_ino == fromStatus.st_ino) {
        return false;
    }
    // Made while the target is still whole.
    constexpr std::size_t blockSize = 0x20000;
    const auto block = std::make_unique<char[]>(blockSize);
    UniqueFd to = openDescriptor(target.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (!to.isOpen() || fstat(to.get(), &toStatus) != 0 ||
        !copyContent(from.get(), to.get(), {block.get(), blockSize})) {
        return false;
    }
    // A device or pipe that a file is copied into keeps its own mode.
    if (S_ISREG(toStatus.st_mode)) {
        copyTimesAndMode(from.get(), fromStatus, to.get());
    }
    return to.close();
}

bool makePath(const QDir& directory) {
    QByteArray path = QDir::cleanPath(directory.path()).toLatin1();
    if (isDirectory(path.constData())) {
        return true;
    }
    // Parents from the top down; one that is there already, or can't be made, shows in the last result.
    for (qsizetype slash = path.indexOf('/', 1); slash > 0 && slash < PATH_MAX;
         slash = path.indexOf('/', slash + 1)) {
        path[slash] = '\0';
        mkdir(path.constData(), 0777);
        path[slash] = '/';
    }
    return mkdir(path.constData(), 0777) == 0;
}

bool makeDirectory(const QString& path) { return makePath(QDir(path)); }

bool removeDirectory(const QString& path) { return rmdir(path.toLatin1().constData()) == 0; }

bool removeFile(const QString& path) { return unlink(path.toLatin1().constData()) == 0; }

void recordProgramDirs(const char* argv0, int levels) {
    if (argv0 == nullptr || *argv0 == '\0') {
        return;
    }
    QDir directory = QFileInfo(QFile::decodeName(argv0)).absoluteDir();
    programDir = directory.canonicalPath();
    for (int level = 0; level < levels; ++level) {
        directory.cdUp();
    }
    rootDir = directory.canonicalPath();
}
