#include "hostobjects/wscript_class.h"

#include "runtime/context.h"
#include "system/h_exception.h"

#include <cstdio>

namespace {

enum Member : std::int32_t { Echo };

constexpr ESMember members[] = {
    {"Echo", 1, Echo},
};

} // namespace

WScriptESClass::WScriptESClass() : ESClass("WScript") {}

ESObject* WScriptESClass::init(ESContext& ctx) {
    ESObject* object = ESClass::init(ctx);
    defineMembers(ctx, object, members, this, name, ESMemberNaming::Prototype);
    return object;
}

void WScriptESClass::call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc,
                          ESValue* argv) {
    if (fn->memberIndex != Echo) {
        ESClass::call(ctx, fn, thisObject, argc, argv);
        return;
    }
    // Through stdio and without a flush or a line end: scripts print in pieces. A NUL ends the text.
    if (std::fputs(ctx.toString(argv[0]).toLatin1().constData(), stdout) < 0) {
        throw HException(outputLost);
    }
    argv[0] = undefinedValue();
}
