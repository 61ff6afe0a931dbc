// The script object TBSys: files, directories, checksums and other programs. What its members do to files
// stands in file_helpers.h, how programs run in process_runner.h; here are the conversions and the results.
#pragma once

#include "runtime/native_class.h"

#include <QStringList>

// To be created before any script runs, given `init`, and kept until the context is gone.
class TBSysESClass : public ESClass {
public:
    TBSysESClass();
    ESObject* init(ESContext& ctx) override;
    void call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc, ESValue* argv) override;

private:
    ESValue run(ESContext& ctx, const ESValue* argv);

    // What the programs run so far have written, those alone whose output was asked for. Never cleared.
    QStringList runStdout_;
    QStringList runStderr_;
};
