// What a child writes: the pieces in which it comes make no difference, and its lines, each with the end that
// it had, are the whole of it but for a single byte at the end.
#include "fuzz_target.h"
#include "hostobjects/process_runner.h"
#include "hostobjects/unique_fd.h"

#include <fcntl.h>

#include <algorithm>
#include <array>

namespace {

void checkLines(const QByteArray& output) {
    QStringList lines;
    appendOutputLines(output, &lines);
    qsizetype at = 0;
    const auto endsLine = [&] { return at < output.size() && (output[at] == '\n' || output[at] == '\r'); };
    for (const QString& line : lines) {
        expect(line.isNull() == line.isEmpty(), "an empty line is a null string");
        const QByteArray bytes = line.toLatin1();
        expect(output.mid(at, bytes.size()) == bytes, "a line is the next piece of the output");
        at += bytes.size();
        expect(endsLine() || (at == output.size() && bytes.size() >= 2), "a line ends where it should");
        at += endsLine() && output[at] == '\r' ? 2 : 1;
    }
    expect(at >= output.size() - 1 && !endsLine(), "nothing is left but one byte");
}

void checkPieces(const QByteArray& output, std::uint32_t pieceSize) {
    std::array<int, 2> ends{};
    expect(pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) == 0, "there are pipes");
    const UniqueFd readEnd(ends[0]);
    UniqueFd writeEnd(ends[1]);
    QByteArray collected;
    for (qsizetype at = 0; at < output.size(); at += pieceSize) {
        const auto piece = static_cast<std::size_t>(std::min<qsizetype>(pieceSize, output.size() - at));
        expect(write(writeEnd.get(), output.constData() + at, piece) == static_cast<ssize_t>(piece),
               "a pipe takes a small piece");
        expect(readPipeChunk(readEnd.get(), collected), "what was written can be read");
    }
    expect(!readPipeChunk(readEnd.get(), collected) && errno == EAGAIN, "there is nothing yet");
    writeEnd.close();
    expect(!readPipeChunk(readEnd.get(), collected) && errno == 0, "there is an end");
    expect(collected == output, "pieces make up the output");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const QByteArray output(reinterpret_cast<const char*>(data) + 1, static_cast<qsizetype>(size) - 1);
    checkLines(output);
    const std::uint32_t pieceSize = data[0] + 1U;
    if (output.size() / pieceSize < 8) {
        checkPieces(output, pieceSize);
    }
    return 0;
}
