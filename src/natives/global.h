// ESNativeGlobal, the class of the global object: the global functions, and the loader of script files that
// the host uses too.
#pragma once

#include "runtime/native_class.h"

#include <QString>
#include <QStringList>

struct ESCompletion;

class ESNativeGlobal : public ESClass {
public:
    ESNativeGlobal();
    void setUp(ESContext& ctx);
    void call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc, ESValue* argv) override;
    ESObject* construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) override;

    // Adds a directory that loadFile tries behind the path itself, in the order of these calls.
    void addSearchPath(const QString& directory) { searchPaths_.append(directory); }

    // Runs the file at the path, or else at the path below each search path. False when none of them could be
    // read, and then `out` isn't touched. A script's error is in `out`; what evaluate() lets pass, passes.
    bool loadFile(ESContext& ctx, const QString& path, ESCompletion& out);
    // The same for exactly this path. Every character of the path and of the file is one byte.
    bool readAndEvaluate(ESContext& ctx, const QString& path, ESCompletion& out);

private:
    QStringList searchPaths_;
};
