// The Boolean constructor and Boolean.prototype: the smallest class of the library, and so the pattern of all
// others. native_class.h tells the protocol; boolean.cpp has the table of members.
#pragma once

#include "runtime/native_class.h"

class ESNativeBoolean : public ESClass {
public:
    ESNativeBoolean();
    // Registers the members; ctx.booleanPrototype is there already.
    void setUp(ESContext& ctx);
    void call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc, ESValue* argv) override;
    ESObject* construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) override;
};
