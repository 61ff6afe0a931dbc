// The Number constructor with its constants, and Number.prototype. How a number turns into digits is told in
// runtime/conversions.cpp; number.cpp has the table of members.
#pragma once

#include "runtime/native_class.h"

class ESNativeNumber : public ESClass {
public:
    ESNativeNumber();
    // Registers the members; ctx.numberPrototype is there already.
    void setUp(ESContext& ctx);
    void call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc, ESValue* argv) override;
    ESObject* construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) override;

private:
    static ESValue toString(ESContext& ctx, const ESObject* thisObject, const ESValue& radix);
    static ESValue toFixed(ESContext& ctx, const ESObject* thisObject, const ESValue& digits);
};
