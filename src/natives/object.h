// ESNativeObject: Object, and the members of Object.prototype on which every other object rests.
#pragma once

#include "runtime/native_class.h"

class ESNativeObject : public ESClass {
public:
    ESNativeObject();
    void setUp(ESContext& ctx);
    void call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc, ESValue* argv) override;
    ESObject* construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) override;
};
