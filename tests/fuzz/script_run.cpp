#include "script_run.h"

#include "fuzz_target.h"
#include "host/run.h"
#include "hostobjects/elf_file_class.h"
#include "hostobjects/tbsys_class.h"
#include "hostobjects/wscript_class.h"
#include "machine/code_block.h"
#include "runtime/atom.h"
#include "system/h_exception.h"

#include <new>

#ifdef QUORVANE_METERED // the fuzzer's build
#include <sanitizer/allocator_interface.h>
static std::size_t usedMemory() { return __sanitizer_get_current_allocated_bytes(); }

// No single piece of memory is larger, whatever a script asks for: the engine meets std::bad_alloc instead of
// the sanitizer's own operator new, which would end the process.
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=64:alloc_dealloc_mismatch=0:"
           "detect_stack_use_after_return=0";
}
void* operator new(std::size_t size) {
    if (void* memory = std::malloc(size != 0 ? size : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
#else
static std::size_t usedMemory() { return 0; }
#endif

namespace {

constexpr std::size_t mostOutput = 64 * 1024;

struct OutOfSteps {};

class BoundedContext : public ESContext {
public:
    explicit BoundedContext(ScriptBounds bounds) : ESContext(bounds.steps != 0), left_(bounds.steps) {
        executionForm = bounds.form;
    }

    bool keepRunning() override {
        --left_;
        // Natives that call back don't hear of the end; they get a while.
        if (left_ < -256 || (left_ % 256 == 0 && usedMemory() > mostMemory)) {
            throw OutOfSteps{};
        }
        return left_ > 0;
    }
    bool isOutOfSteps() const { return asksKeepRunning && left_ <= 0; }

private:
    static constexpr std::size_t mostMemory = std::size_t{512} << 20;

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
            return TBSysESClass::call(ctx, fn, self, argc, argv);
        }
        for (std::int32_t i = argc; i-- > 0;) {
            ctx.toString(argv[i]);
        }
        argv[0] = undefinedValue();
    }
};

class ElfFileOfOneImage : public ElfFileESClass {
public:
    void call(ESContext& ctx, ESObject* fn, ESObject* self, std::int32_t argc, ESValue* argv) override {
        const std::string member = memberName(fn);
        const bool saves = member.ends_with(".save");
        if (saves || member.ends_with(".load")) {
            ctx.toString(argv[0]);
            argv[0] = saves ? undefinedValue()
                            : ctx.newString(QUORVANE_SOURCE_DIR "/examples/firmware/firmware.elf");
        }
        if (!saves) {
            ElfFileESClass::call(ctx, fn, self, argc, argv);
        }
    }
};

// Tells whether a script can bring a fault of the system about.
bool isLimit(const QString& fault) {
    const QStringList limits = {
        QStringLiteral("operand too large"), QStringLiteral("patch constant too large"),
        QStringLiteral("jump target too large"), QStringLiteral("too many values on the stack")};
    return fault == QLatin1String("virtual machine stack too small") ||
           limits.contains(QString(fault).remove(QLatin1String("compiler error: ")));
}

// Shows a primitive; converting an object could run the script again.
std::string describe(ESContext& ctx, const ESValue& v) {
    return v.isObject() ? "object" : ctx.toString(v).toLatin1().toStdString();
}

} // namespace

ScriptRun runScript(const QString& text, ScriptBounds bounds) {
    forgetAllRuns();
    ScriptRun run;
    EchoToText wscript(run.output);
    TBSysWithoutSystem tbsys;
    ElfFileOfOneImage elfFile;
    BoundedContext ctx(bounds);
    const auto ended = [&run](ScriptRun::End end, const std::string& how) {
        run.end = end;
        run.output += how;
    };
    try {
        ctx.initContext();
        wscript.init(ctx);
        tbsys.init(ctx);
        elfFile.init(ctx);
        ctx.put(ctx.globalObject, intern("load"), undefinedValue());
        const ESCompletion completion = ctx.evaluate(text);
        if (ctx.isOutOfSteps()) {
            throw OutOfSteps{};
        }
        reportResult(ctx, completion);
        ended(ScriptRun::End::Finished, "result: " + describe(ctx, completion.value));
    } catch (const HException& failure) {
        ended(ScriptRun::End::Finished, "error: " + failure.text());
    } catch (const ESException&) {
        ended(ScriptRun::End::Finished, "error of an error");
    } catch (const ESFatalError& fault) {
        expect(isLimit(fault.message), fault.message.toLatin1().constData());
        ended(ScriptRun::End::TooLarge, fault.message.toStdString());
    } catch (const OutOfSteps&) {
        ended(ScriptRun::End::OutOfSteps, "out of steps");
    } catch (const std::bad_alloc&) {
        ended(ScriptRun::End::OutOfMemory, "out of memory");
    }
    return run;
}
