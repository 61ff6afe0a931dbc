#include "elf/demangle.h"

#include "elf/arm_demangle.h"
#include "elf/name_graph.h"

#include <array>
#include <csetjmp>
#include <libiberty/demangle.h>
#include <utility>

namespace {

constexpr int options = DMGL_GNU_V3 | DMGL_PARAMS | DMGL_TYPES;

// Takes the library's output piece by piece, and says when there has been enough of it.
class OutputSink {
public:
    virtual bool take(std::string_view piece) = 0;

protected:
    ~OutputSink() = default;
};

class CollectingSink final : public OutputSink {
public:
    explicit CollectingSink(std::size_t limit) : limit_(limit) {}

    bool take(std::string_view piece) override {
        text.append(piece);
        return !isFull();
    }
    bool isFull() const { return text.size() > limit_; }

    std::string text;

private:
    std::size_t limit_;
};

class ComparingSink final : public OutputSink {
public:
    explicit ComparingSink(std::string_view expected) : rest(expected) {}

    bool take(std::string_view piece) override {
        if (!rest.starts_with(piece)) {
            return false;
        }
        rest.remove_prefix(piece.size());
        return true;
    }

    std::string_view rest;
};

struct Escape {
    OutputSink* sink;
    std::jmp_buf target;
};

extern "C" void passPiece(const char* piece, std::size_t length, void* opaque) {
    auto* escape = static_cast<Escape*>(opaque);
    if (!escape->sink->take({piece, length})) {
        // The library can't be told to stop. Between here and the target lie only its frames, which own
        // nothing.
        std::longjmp(escape->target, 1);
    }
}

// False when the name isn't a mangled one, costs too much or the sink has had enough. The frame holds nothing
// that a jump could lose.
bool runLibrary(const char* name, OutputSink& sink) {
    if (!isAffordable(name)) {
        return false;
    }
    Escape escape;
    escape.sink = &sink;
    if (setjmp(escape.target) != 0) {
        return false;
    }
    return cplus_demangle_v3_callback(name, options, passPiece, &escape) != 0;
}

// The library wants a NUL behind the name.
class TerminatedName {
public:
    explicit TerminatedName(std::string_view name) {
        name.copy(buffer_.data(), name.size());
        buffer_[name.size()] = '\0';
    }
    const char* get() const { return buffer_.data(); }

private:
    std::array<char, maxMangledLength(NameStyle::GnuV3) + 1> buffer_;
};

} // namespace

TextStart startOfDemangled(std::string_view name, NameStyle style, std::size_t limit) {
    name = withoutExtraUnderscore(name);
    if (name.size() > maxMangledLength(style)) {
        return {std::string(name), true};
    }
    if (style == NameStyle::Arm) {
        return {demangleArm(name).value_or(std::string(name)), true};
    }
    CollectingSink sink(limit);
    const bool isDone = runLibrary(TerminatedName(name).get(), sink);
    if (sink.isFull()) {
        return {std::move(sink.text), false};
    }
    return {isDone ? std::move(sink.text) : std::string(name), true};
}

std::string demangle(std::string_view name, NameStyle style) {
    TextStart start = startOfDemangled(name, style, maxDemangledLength);
    return start.isWhole ? std::move(start.text) : std::string(withoutExtraUnderscore(name));
}

bool matchesName(std::string_view name, std::string_view text, NameStyle style) {
    name = withoutExtraUnderscore(name);
    if (name.size() > maxMangledLength(style)) {
        return name == text;
    }
    // A name that fails half-way counts as it is, so the output says nothing before its end.
    if (style == NameStyle::Arm || name == text) {
        return demangle(name, style) == text;
    }
    if (text.size() > maxDemangledLength) {
        return false;
    }
    ComparingSink sink(text);
    return runLibrary(TerminatedName(name).get(), sink) && sink.rest.empty();
}
