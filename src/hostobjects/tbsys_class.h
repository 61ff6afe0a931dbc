// The script object TBSys: files, directories, checksums and other programs. What its members do to files
// stands in file_helpers.h, how programs run in process_runner.h; here are the conversions and the results.
#pragma once

#include "runtime/native_class.h"
#include "runtime/value.h"
#include "system/process_runner.h"

// To be created before any script runs, given `init`, and kept until the context is gone.
class TBSysESClass : public ESClass {
public:
    TBSysESClass();
    ESObject* init(ESContext& ctx) override;
    void call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc, ESValue* argv) override;

private:
    ESValue run(ESContext& ctx, const ESValue* argv);

    // What the programs run so far have written to a stream, those alone whose output was asked for. Never
    // cleared: the lines join the text when a script asks for it.
    struct Output {
        OutputLines lines;
        ESValue text = undefinedValue();
    };
    static ESValue textOf(ESContext& ctx, Output& output);
    Output stdout_;
    Output stderr_;
};
