#include "system/process_runner.h"

#include "system/unique_fd.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <utility>
#include <vector>

namespace {

struct Pipe {
    UniqueFd readEnd;
    UniqueFd writeEnd;

    bool open() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            return false;
        }
        readEnd = UniqueFd(ends[0]);
        writeEnd = UniqueFd(ends[1]);
        // So that taking what a pipe still holds can never wait. The child's end is not touched by this.
        return fcntl(readEnd.get(), F_SETFL, O_NONBLOCK) == 0;
    }
};

// All that the child needs, made ready beforehand: between vfork and exec it may only make system calls.
struct Command {
    std::vector<QByteArray> words;
    std::vector<char*> argv;
    QByteArray workingDirectory; // null to stay

    Command(const QStringList& arguments, const QString& directory)
        : workingDirectory(directory.isNull() ? QByteArray() : directory.toLatin1()) {
        words.reserve(static_cast<std::size_t>(arguments.size()));
        for (const QString& argument : arguments) {
            words.push_back(argument.toLatin1());
        }
        for (QByteArray& word : words) {
            argv.push_back(word.data());
        }
        argv.push_back(nullptr);
    }
};

// `stdoutEnd` and `stderrEnd` are negative to inherit the host's own; dup2 leaves its copies open across
// exec.
[[noreturn]] void runInChild(const Command& command, int stdoutEnd, int stderrEnd) {
    if (stdoutEnd >= 0) {
        dup2(stdoutEnd, STDOUT_FILENO);
        dup2(stderrEnd, STDERR_FILENO);
    }
    if (!command.workingDirectory.isNull() && chdir(command.workingDirectory.constData()) != 0) {
        // The program runs where it can.
    }
    execvp(command.argv[0], command.argv.data());
    _exit(255);
}

// vfork shares the memory until exec, so the cost doesn't grow with the size of this process. That is safe as
// long as runInChild writes to nothing that the parent reads, and this function returns in the parent alone.
pid_t startChild(const Command& command, int stdoutEnd, int stderrEnd) {
    const pid_t pid = vfork(); // NOLINT(clang-analyzer-security.insecureAPI.vfork)
    if (pid == 0) {
        runInChild(command, stdoutEnd, stderrEnd); // NOLINT(clang-analyzer-unix.Vfork)
    }
    return pid;
}

int exitCode(int status) { return WIFEXITED(status) ? static_cast<signed char>(WEXITSTATUS(status)) : -1; }

// The exit code once the child has ended, nothing while it runs (only with WNOHANG).
std::optional<int> reap(pid_t pid, int options) {
    int status = 0;
    pid_t ended = -1;
    do {
        ended = waitpid(pid, &status, options);
    } while (ended < 0 && errno == EINTR);
    if (ended == 0) {
        return std::nullopt;
    }
    return ended == pid ? exitCode(status) : -1;
}

bool hasEnded(pid_t pid) {
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
           info.si_pid == pid;
}

// One of the child's two streams.
struct Stream {
    UniqueFd fd;
    QByteArray bytes;

    // What poll said of it.
    void take(short events) {
        if ((events & (POLLIN | POLLHUP | POLLERR | POLLNVAL)) != 0 && !readPipeChunk(fd.get(), bytes) &&
            errno != EAGAIN) {
            fd.close();
        }
    }

    // Only what is there at this moment: somebody else may go on writing for ever.
    void takeRest() {
        int left = 0;
        if (!fd.isOpen() || ioctl(fd.get(), FIONREAD, &left) != 0) {
            return;
        }
        const qsizetype wanted = bytes.size() + left;
        while (bytes.size() < wanted && readPipeChunk(fd.get(), bytes)) {
        }
    }
};

bool pollDescriptors(std::array<pollfd, 3>& entries, int timeoutMilliseconds) {
    for (;;) {
        if (poll(entries.data(), entries.size(), timeoutMilliseconds) >= 0) {
            return true;
        }
        if (errno != EINTR) {
            return false;
        }
    }
}

// Reads both streams in turn, so that neither fills up while the other is waited for.
void readStreams(pid_t pid, Stream& out, Stream& err) {
    // Readable when the child has ended; -1, which poll passes over, where there is no such thing.
    UniqueFd childEnd;
    while (out.fd.isOpen() || err.fd.isOpen()) {
        if (!out.fd.isOpen()) {
            // The child may have left stderr to someone who keeps it: from here on its own end counts.
            if (hasEnded(pid)) {
                break;
            }
            if (!childEnd.isOpen()) {
                childEnd = UniqueFd(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
            }
        }
        std::array<pollfd, 3> entries{pollfd{out.fd.get(), POLLIN, 0}, pollfd{err.fd.get(), POLLIN, 0},
                                      pollfd{childEnd.get(), POLLIN, 0}};
        if (!pollDescriptors(entries, 100)) {
            break;
        }
        out.take(entries[0].revents);
        err.take(entries[1].revents);
    }
    out.takeRest();
    err.takeRest();
}

// Without waiting: the exit code if the child ends at once, else 0.
int glanceAt(pid_t pid) {
    constexpr int tries = 10;
    for (int i = 0; i < tries; ++i) {
        if (i > 0) {
            usleep(1000);
        }
        if (const std::optional<int> code = reap(pid, WNOHANG)) {
            return *code;
        }
    }
    return 0;
}

int finish(pid_t pid, bool wait) { return wait ? reap(pid, 0).value_or(-1) : glanceAt(pid); }

int runCapturing(const Command& command, OutputLines* stdoutLines, OutputLines* stderrLines, bool wait) {
    Pipe out;
    Pipe err;
    if (!out.open() || !err.open()) {
        return -1;
    }
    const pid_t pid = startChild(command, out.writeEnd.get(), err.writeEnd.get());
    if (pid < 0) {
        return -1;
    }
    out.writeEnd.close();
    err.writeEnd.close();

    Stream outStream{std::move(out.readEnd), {}};
    Stream errStream{std::move(err.readEnd), {}};
    readStreams(pid, outStream, errStream);
    stdoutLines->add(outStream.bytes);
    stderrLines->add(errStream.bytes);
    return finish(pid, wait);
}

} // namespace

QStringList splitCommandLine(const QString& command) {
    QStringList words;
    QString word;
    bool inQuotes = false;
    for (qsizetype i = 0; i < command.size(); ++i) {
        const QChar c = command[i];
        if (c == u'\\' && i + 1 < command.size() && command[i + 1] == u'"') {
            word += u'"';
            ++i;
        } else if (c == u'"') {
            inQuotes = !inQuotes;
        } else if (c != u' ' || inQuotes) {
            word += c;
        } else if (!word.isEmpty()) {
            words.append(word);
            word.clear();
        }
    }
    if (!word.isEmpty()) {
        words.append(word);
    }
    return words;
}

int runProcess(const QStringList& arguments, bool wait, const QString& workingDirectory,
               OutputLines* stdoutLines, OutputLines* stderrLines) {
    if (arguments.isEmpty()) {
        return -1;
    }
    const Command command(arguments, workingDirectory);
    if (stdoutLines != nullptr && stderrLines != nullptr) {
        return runCapturing(command, stdoutLines, stderrLines, wait);
    }
    const pid_t pid = startChild(command, -1, -1);
    return pid < 0 ? -1 : finish(pid, wait);
}

bool readPipeChunk(int fd, QByteArray& output) {
    constexpr qsizetype chunkSize = 65536;
    const qsizetype before = output.size();
    output.resize(before + chunkSize);
    ssize_t count = -1;
    do {
        count = read(fd, output.data() + before, static_cast<std::size_t>(chunkSize));
    } while (count < 0 && errno == EINTR);
    const int failure = errno;
    output.resize(before + std::max<qsizetype>(count, 0));
    errno = count == 0 ? 0 : failure;
    return count > 0;
}

void OutputLines::add(const QByteArray& output) {
    if (text_.isEmpty()) { // else it grows as many small ones need it
        text_.reserve(output.size() + 1);
    }
    const auto addLine = [&](qsizetype start, qsizetype end) {
        if (std::exchange(any_, true)) {
            text_ += '\n';
        }
        text_.append(output.constData() + start, end - start);
    };
    qsizetype start = 0;
    for (qsizetype i = 0; i < output.size(); ++i) {
        const char c = output[i];
        if (c == '\n' || c == '\r') {
            addLine(start, i);
            i += c == '\r' ? 1 : 0;
            start = i + 1;
        }
    }
    if (output.size() - start >= 2) {
        addLine(start, output.size());
    }
}
