// The script object WScript, through which a script prints.
#pragma once

#include "runtime/native_class.h"

// To be created before any script runs, given `init`, and kept until the context is gone.
class WScriptESClass : public ESClass {
public:
    WScriptESClass();
    ESObject* init(ESContext& ctx) override;
    void call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc, ESValue* argv) override;
};
