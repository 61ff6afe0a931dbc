// The script object WScript, through which a script prints.
#pragma once

#include "runtime/native_class.h"

// The failure that ends a run when what it printed doesn't arrive.
inline constexpr char outputLost[] = "cannot write the standard output";

// To be created before any script runs, given `init`, and kept until the context is gone.
class WScriptESClass : public ESClass {
public:
    WScriptESClass();
    ESObject* init(ESContext& ctx) override;
    void call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc, ESValue* argv) override;
};
