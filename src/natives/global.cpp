#include "natives/global.h"

#include "runtime/context.h"

#include <QByteArray>
#include <cerrno>
#include <cmath>
#include <fcntl.h>
#include <optional>
#include <unistd.h>

namespace {

enum Member : std::int32_t { Eval = 1, ParseInt, ParseFloat, IsNaN, IsFinite, Load };

constexpr ESMember members[] = {
    {"eval", 1, Eval},   {"parseInt", 2, ParseInt}, {"parseFloat", 1, ParseFloat},
    {"isNaN", 1, IsNaN}, {"isFinite", 1, IsFinite}, {"load", 1, Load},
};

// A String, Number or Boolean object counts as its primitive; only text runs. The error of a text that fails
// is dropped.
ESValue evaluateArgument(ESContext& ctx, const ESValue& argument) {
    const ESValue source = ctx.primitiveOf(argument);
    if (!source.isString()) {
        return source;
    }
    const ESCompletion completion = ctx.evaluate(ESContext::viewOf(source).toString());
    return completion.status == ESCompletion::normal ? completion.value : undefinedValue();
}

class OpenFile {
public:
    explicit OpenFile(const char* path) : descriptor_(::open(path, O_RDONLY | O_CLOEXEC)) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }
    int descriptor() const { return descriptor_; }

private:
    const int descriptor_;
};

// The whole file, read to its end whatever it is: a pipe and a device have no size to ask for.
std::optional<QByteArray> readWhole(const QString& path) {
    const QByteArray name = path.toLatin1();
    if (name.contains('\0')) {
        return std::nullopt; // the system would open what stands before it
    }
    const OpenFile file(name.constData());
    if (file.descriptor() < 0) {
        return std::nullopt;
    }
    constexpr qsizetype step = 64 * 1024;
    constexpr auto mostBytes = static_cast<qsizetype>(ESText::maxLength);
    QByteArray bytes;
    qsizetype used = 0;
    for (;;) {
        if (bytes.size() - used < step) {
            bytes.resize(used + step + used / 2);
        }
        const ssize_t got =
            ::read(file.descriptor(), bytes.data() + used, static_cast<std::size_t>(bytes.size() - used));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got == 0) {
            bytes.truncate(used);
            return bytes;
        }
        used += got;
        if (got < 0 || used > mostBytes) {
            return std::nullopt;
        }
    }
}

} // namespace

ESNativeGlobal::ESNativeGlobal() : ESClass("global") {}

void ESNativeGlobal::setUp(ESContext& ctx) {
    ctx.putProperty(ctx.globalObject, DontEnum, intern("NaN"), numberValue(esNaN));
    ctx.putProperty(ctx.globalObject, DontEnum, intern("Infinity"), numberValue(esInfinity));
    ctx.putProperty(ctx.globalObject, DontEnum, intern("undefined"), undefinedValue());
    defineMembers(ctx, ctx.globalObject, members, this, name, ESMemberNaming::Bare);
}

void ESNativeGlobal::call(ESContext& ctx, ESObject* fn, ESObject*, std::int32_t, ESValue* argv) {
    switch (fn->memberIndex) {
    case Eval:
        argv[0] = evaluateArgument(ctx, argv[0]);
        break;
    case ParseInt: // 1. text, 2. radix; nothing is parsed
        ctx.toStringValue(argv[0]);
        ctx.toInt32(argv[1]);
        argv[0] = undefinedValue();
        break;
    case ParseFloat:
        ctx.toStringValue(argv[0]);
        argv[0] = undefinedValue();
        break;
    case IsNaN:
        argv[0] = booleanValue(std::isnan(ctx.toDouble(argv[0])));
        break;
    case IsFinite:
        argv[0] = booleanValue(std::isfinite(ctx.toDouble(argv[0])));
        break;
    case Load: {
        ESCompletion dropped;
        argv[0] = booleanValue(loadFile(ctx, ctx.toString(argv[0]), dropped));
        break;
    }
    default:
        badCall(ctx);
    }
}

ESObject* ESNativeGlobal::construct(ESContext& ctx, ESObject*, std::int32_t, const ESValue*) {
    badConstruct(ctx);
}

bool ESNativeGlobal::loadFile(ESContext& ctx, const QString& path, ESCompletion& out) {
    if (readAndEvaluate(ctx, path, out)) {
        return true;
    }
    for (const QString& directory : searchPaths_) {
        if (readAndEvaluate(ctx, directory + QLatin1Char('/') + path, out)) {
            return true;
        }
    }
    return false;
}

bool ESNativeGlobal::readAndEvaluate(ESContext& ctx, const QString& path, ESCompletion& out) {
    QString text;
    {
        const std::optional<QByteArray> bytes = readWhole(path);
        if (!bytes) {
            return false;
        }
        text = QString::fromLatin1(*bytes);
    }
    out = ctx.evaluate(text);
    return true;
}
