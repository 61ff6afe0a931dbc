// Files and directories as the host objects see them: copying with times and mode, making directories with
// their parents, and the cleaned path value that the image model takes. Paths are Latin-1 text whose
// characters are the very bytes of the name, so every function here hands `toLatin1()` to the system and no
// locale comes between. Nothing here prints; a failure shows in the result alone, but for std::bad_alloc.
// QFile and QTextStream aren't used to read and write: they don't outlive an allocation that fails.
#pragma once

#include "system/unique_fd.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

class QDir;

// The path text without "." and ".." steps and doubled slashes, by text alone: links are not looked at.
// A first component without a leading slash is never removed ("ab/../c" stays), nor is a step up from the
// root, and a trailing slash stays. Linear in the length of the path.
QString cleanPath(const QString& path);

// A path that has been through cleanPath.
class FilePath {
public:
    FilePath() = default;
    explicit FilePath(const QString& path) : text_(cleanPath(path)) {}
    explicit FilePath(const char* path) : FilePath(QString::fromLatin1(path)) {}

    bool isEmpty() const { return text_.isEmpty(); }
    const QString& toString() const { return text_; }
    // The bytes of the name, for system calls and messages.
    QByteArray ascii() const { return text_.toLatin1(); }

private:
    QString text_;
};

// Whether the path leads to something; a symbolic link counts as what it points to.
bool fileExists(const QString& path);

// The bytes in a file; 0 for what can't be opened for reading and for everything that is no regular file.
std::uint64_t fileSize(const QString& path);

// Opens the file with exactly the bytes of `path` as its name. For writing a missing file is made (0666 less
// the umask) and old content is dropped. A directory doesn't open. The descriptor is closed on exec; it isn't
// open when that failed, and errno has the reason.
UniqueFd openForReading(const QString& path);
UniqueFd openForWriting(const QString& path);

// Reads to the end, or until there are `most` bytes or reading fails; errno is 0 unless it failed.
QByteArray readUpTo(int fd, std::size_t most);
// False when not all could be written.
bool writeAll(int fd, const char* bytes, std::size_t count);

// Copies the bytes, then the access and modification times and the mode less the umask. A destination that is
// a directory gets a file of the source's name in it. With `createDirectory` the missing parents of
// `destination` are made first. False on any failure, which can leave a partial target, and when source and
// target are one file under whatever names: then nothing is touched.
bool copyFile(const QString& source, const QString& destination, bool createDirectory);

// Makes the directory and its missing parents. True when it exists in the end.
bool makePath(const QDir& directory);
bool makeDirectory(const QString& path);

bool removeDirectory(const QString& path); // which must be empty
bool removeFile(const QString& path);

// Where the program lies, and the directory `levels` above it; both empty until recordProgramDirs has found
// them.
extern QString programDir;
extern QString rootDir;

// `argv0` is the program's name as it was called, or null.
void recordProgramDirs(const char* argv0, int levels);
