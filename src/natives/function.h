// ESNativeFunction: Function, which compiles text at run time, and Function.prototype. Script functions are
// of this class too; compiler/compilation.h makes them.
#pragma once

#include "runtime/native_class.h"

class ESNativeFunction : public ESClass {
public:
    ESNativeFunction();
    // Leaves the prototype's `length` at 1; initContext sets it to 0 when it makes the prototype callable.
    void setUp(ESContext& ctx);
    void call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc, ESValue* argv) override;
    ESObject* construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) override;
};
