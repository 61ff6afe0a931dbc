// The six script-visible error classes. They differ in data alone: the script's name and the attributes of
// `name` on the prototype. The engine raises them through ESContext::raiseError.
#pragma once

#include "runtime/native_class.h"

class ESNativeError : public ESClass {
public:
    ESNativeError() : ESNativeError("Error", DontEnum | DontDelete) {}
    // Errors of the base class must have been set up first.
    void setUp(ESContext& ctx);
    void call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc, ESValue* argv) override;
    // Every error object, whichever constructor made it, is of the base class.
    ESObject* construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) override;

    // Both null before the set-up.
    ESObject* errorPrototype() const { return prototypeObject_; }
    ESObject* errorConstructor() const { return constructorObject_; }

protected:
    ESNativeError(const char* scriptName, std::uint32_t nameAttributes)
        : ESClass("Error"), scriptName_(scriptName), nameAttributes_(nameAttributes) {}

private:
    const char* const scriptName_; // of the constructor, and the value of `name`
    const std::uint32_t nameAttributes_;
    ESObject* prototypeObject_ = nullptr;
    ESObject* constructorObject_ = nullptr;
};

class ESNativeRangeError : public ESNativeError {
public:
    ESNativeRangeError() : ESNativeError("RangeError", 0) {}
};

class ESNativeReferenceError : public ESNativeError {
public:
    ESNativeReferenceError() : ESNativeError("ReferenceError", 0) {}
};

class ESNativeSyntaxError : public ESNativeError {
public:
    ESNativeSyntaxError() : ESNativeError("SyntaxError", 0) {}
};

class ESNativeTypeError : public ESNativeError {
public:
    ESNativeTypeError() : ESNativeError("TypeError", 0) {}
};

class ESNativeEvalError : public ESNativeError {
public:
    ESNativeEvalError() : ESNativeError("EvalError", DontEnum | DontDelete) {}
};
