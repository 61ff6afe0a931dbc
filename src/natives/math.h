// The Math object: constants, and functions that are the platform's own, with `max`, `min`, `round` and
// `random` as the exceptions. math.cpp has the table of members.
#pragma once

#include "runtime/native_class.h"

class ESNativeMath : public ESClass {
public:
    ESNativeMath();
    // Makes the Math object, puts it on the global object and registers the members on it.
    void setUp(ESContext& ctx);
    void call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc, ESValue* argv) override;
    ESObject* construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) override;
};
