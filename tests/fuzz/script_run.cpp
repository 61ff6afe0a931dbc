#include "script_run.h"

#include "elf/elf_file_class.h"
#include "fuzz_target.h"
#include "host/run.h"
#include "hostobjects/tbsys_class.h"
#include "hostobjects/wscript_class.h"
#include "machine/code_block.h"
#include "runtime/atom.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <elf.h>
#include <memory>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define QUORVANE_METERED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUORVANE_METERED 1
#endif
#endif

#ifdef QUORVANE_METERED
extern "C" std::size_t __sanitizer_get_current_allocated_bytes(); // g++ has no header for it

// No single piece of memory is larger, whatever a script asks for: the engine meets std::bad_alloc instead.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=64:detect_stack_use_after_return=0";
}

static void* allocate(std::size_t size) {
    if (void* memory = std::malloc(size != 0 ? size : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}

// The sanitizers' own operator new would end the process.
void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size != 0 ? size : 1);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
#endif

namespace {

constexpr std::size_t mostOutput = 64 * 1024;

struct OutOfSteps {};
struct OutOfMemory {};

class BoundedContext : public ESContext {
public:
    explicit BoundedContext(ScriptBounds bounds) : ESContext(bounds.steps != 0), left_(bounds.steps) {
        executionForm = bounds.form;
    }

    bool keepRunning() override {
        --left_;
        if (left_ % 256 == 0 && usedMemory() > mostMemory) {
            throw OutOfMemory{};
        }
        // Natives that call back don't hear of the end; they get a while.
        if (left_ < -256) {
            throw OutOfSteps{};
        }
        return left_ > 0;
    }
    bool isOutOfSteps() const { return asksKeepRunning && left_ <= 0; }

private:
    static constexpr std::size_t mostMemory = std::size_t{512} << 20;

    static std::size_t usedMemory() {
#ifdef QUORVANE_METERED
        return __sanitizer_get_current_allocated_bytes();
#else
        return 0;
#endif
    }

    std::int64_t left_;
};

std::string memberName(const ESObject* fn) { return ESContext::viewOf(fn->value).toString().toStdString(); }

class EchoToText : public WScriptESClass {
public:
    explicit EchoToText(std::string& output) : output_(output) {}
    void call(ESContext& ctx, ESObject*, ESObject*, std::int32_t, ESValue* argv) override {
        const std::string text = ctx.toString(argv[0]).toLatin1().toStdString();
        output_.append(text, 0, mostOutput - std::min(mostOutput, output_.size()));
        argv[0] = undefinedValue();
    }

private:
    std::string& output_;
};

class TBSysWithoutSystem : public TBSysESClass {
public:
    void call(ESContext& ctx, ESObject* fn, ESObject* self, std::int32_t argc, ESValue* argv) override {
        const std::string member = memberName(fn);
        if (member.ends_with(".crc32") || member.ends_with(".getRunStdout")) {
            TBSysESClass::call(ctx, fn, self, argc, argv);
            return;
        }
        for (std::int32_t i = argc; i-- > 0;) {
            ctx.toString(argv[i]);
        }
        argv[0] = undefinedValue();
    }
};

// A little-endian image of one program header with 64 bytes at 0x8000, virtual, and 0x10, physical.
std::string makeImageFile() {
    struct {
        Elf32_Ehdr header{};
        Elf32_Phdr program{};
        std::array<unsigned char, 64> bytes{};
    } image;
    std::memcpy(image.header.e_ident, ELFMAG, SELFMAG);
    image.header.e_ident[EI_CLASS] = ELFCLASS32;
    image.header.e_ident[EI_DATA] = ELFDATA2LSB;
    image.header.e_phoff = sizeof(Elf32_Ehdr);
    image.header.e_phnum = 1;
    image.program = {PT_LOAD, sizeof(Elf32_Ehdr) + sizeof(Elf32_Phdr), 0x8000, 0x10, 64, 64, 7, 4};
    const int fd = memfd_create("image", MFD_CLOEXEC);
    expect(write(fd, &image, sizeof image) == static_cast<ssize_t>(sizeof image), "the image can be written");
    return "/proc/self/fd/" + std::to_string(fd);
}

class ElfFileInMemory : public ElfFileESClass {
public:
    void call(ESContext& ctx, ESObject* fn, ESObject* self, std::int32_t argc, ESValue* argv) override {
        static const std::string path = makeImageFile();
        const std::string member = memberName(fn);
        if (member.ends_with(".load") || member.ends_with(".save")) {
            ctx.toString(argv[0]);
            argv[0] = ctx.newString(path.c_str());
        }
        if (member.ends_with(".save")) {
            argv[0] = undefinedValue();
            return;
        }
        ElfFileESClass::call(ctx, fn, self, argc, argv);
    }
};

// Gives the end of a run that came as an ESFatalError, if it is one that a script can bring about.
ScriptRun::End endOf(const QString& fault) {
    if (fault == QLatin1String("virtual machine stack too small")) {
        return ScriptRun::End::StackSmall;
    }
    for (const char* limit : {"operand too large", "patch constant too large", "jump target too large",
                              "too many values on the stack"}) {
        if (fault == QLatin1String("compiler error: ") + QLatin1String(limit)) {
            return ScriptRun::End::TooLarge;
        }
    }
    expect(false, fault.toLatin1().constData());
    std::abort();
}

// Shows a primitive; converting an object could run the script again.
std::string describe(ESContext& ctx, const ESValue& v) {
    return v.isObject() ? "object" : ctx.toString(v).toLatin1().toStdString();
}

} // namespace

struct HostObjects::Classes {
    EchoToText wscript;
    TBSysWithoutSystem tbsys;
    ElfFileInMemory elfFile;
};

HostObjects::HostObjects(std::string& output) : classes_(new Classes{EchoToText(output), {}, {}}) {}
HostObjects::~HostObjects() = default;

void HostObjects::addTo(ESContext& ctx) {
    classes_->wscript.init(ctx);
    classes_->tbsys.init(ctx);
    classes_->elfFile.init(ctx);
    ctx.put(ctx.globalObject, intern("load"), undefinedValue());
}

ScriptRun runScript(const QString& text, ScriptBounds bounds) {
    forgetAllRuns();
    ScriptRun run{ScriptRun::End::Result, {}};
    HostObjects hostObjects(run.output);
    BoundedContext ctx(bounds);
    const auto ended = [&](ScriptRun::End end, const std::string& how) {
        run.end = end;
        run.output += how;
    };
    try {
        ctx.initContext();
        hostObjects.addTo(ctx);
        const ESCompletion completion = ctx.evaluate(text);
        if (ctx.isOutOfSteps()) {
            throw OutOfSteps{};
        }
        reportResult(ctx, completion);
        ended(ScriptRun::End::Result, "result: " + describe(ctx, completion.value));
    } catch (const HException& failure) {
        ended(ScriptRun::End::Error, "error: " + failure.text());
    } catch (const ESException&) {
        ended(ScriptRun::End::Error, "error of an error");
    } catch (const ESFatalError& fault) {
        ended(endOf(fault.message), fault.message.toStdString());
    } catch (const OutOfSteps&) {
        ended(ScriptRun::End::OutOfSteps, "out of steps");
    } catch (const OutOfMemory&) {
        ended(ScriptRun::End::OutOfMemory, "out of memory");
    } catch (const std::bad_alloc&) {
        ended(ScriptRun::End::OutOfMemory, "out of memory");
    }
    return run;
}
