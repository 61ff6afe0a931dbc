#include "natives/standard_library.h"

#include "machine/interpreter.h"
#include "runtime/context.h"

#include <memory>

namespace {

void makeClasses(ESContext& ctx) {
    ctx.objectClass = ctx.own(std::make_unique<ESNativeObject>());
    ctx.booleanClass = ctx.own(std::make_unique<ESNativeBoolean>());
    ctx.arrayClass = ctx.own(std::make_unique<ESNativeArray>());
    ctx.globalClass = ctx.own(std::make_unique<ESNativeGlobal>());
    ctx.errorClass = ctx.own(std::make_unique<ESNativeError>());
    ctx.rangeErrorClass = ctx.own(std::make_unique<ESNativeRangeError>());
    ctx.referenceErrorClass = ctx.own(std::make_unique<ESNativeReferenceError>());
    ctx.syntaxErrorClass = ctx.own(std::make_unique<ESNativeSyntaxError>());
    ctx.typeErrorClass = ctx.own(std::make_unique<ESNativeTypeError>());
    ctx.evalErrorClass = ctx.own(std::make_unique<ESNativeEvalError>());
    ctx.numberClass = ctx.own(std::make_unique<ESNativeNumber>());
    ctx.mathClass = ctx.own(std::make_unique<ESNativeMath>());
    ctx.stringClass = ctx.own(std::make_unique<ESNativeString>());
    ctx.functionClass = ctx.own(std::make_unique<ESNativeFunction>());
    ctx.dateClass = ctx.own(std::make_unique<ESNativeDate>());
    ctx.activationClass = ctx.own(std::make_unique<ESActivation>());

    ctx.plainClass = ctx.objectClass;
    ctx.arrays = ctx.arrayClass;
    ctx.strings = ctx.stringClass;
    ctx.functions = ctx.functionClass;
    ctx.numbers = ctx.numberClass;
    ctx.booleans = ctx.booleanClass;
    ctx.dates = ctx.dateClass;
    ctx.errors = ctx.errorClass;
}

void makePrototypes(ESContext& ctx) {
    ctx.objectPrototype = ctx.newObject(nullptr, ctx.objectClass);
    const auto prototypeOf = [&](ESClass* cls) { return ctx.newObject(ctx.objectPrototype, cls); };
    ctx.functionPrototype = prototypeOf(ctx.functionClass);
    ctx.arrayPrototype = prototypeOf(ctx.arrayClass);
    ctx.stringPrototype = prototypeOf(ctx.stringClass);
    ctx.numberPrototype = prototypeOf(ctx.numberClass);
    ctx.booleanPrototype = prototypeOf(ctx.booleanClass);
    ctx.datePrototype = prototypeOf(ctx.dateClass);
}

// The order of the set-ups decides in which order `for in` shows the members: a name counts from its first
// use on.
void setUpClasses(ESContext& ctx) {
    ctx.objectClass->setUp(ctx);
    ctx.booleanClass->setUp(ctx);
    ctx.arrayClass->setUp(ctx);
    ctx.globalClass->setUp(ctx);
    ctx.errorClass->setUp(ctx); // before the specific errors, whose prototypes inherit from its own
    internSecondaryAtoms();
    ctx.rangeErrorClass->setUp(ctx);
    ctx.referenceErrorClass->setUp(ctx);
    ctx.syntaxErrorClass->setUp(ctx);
    ctx.typeErrorClass->setUp(ctx);
    ctx.evalErrorClass->setUp(ctx);
    ctx.numberClass->setUp(ctx);
    ctx.mathClass->setUp(ctx);
    ctx.stringClass->setUp(ctx);
    ctx.functionClass->setUp(ctx);
    ctx.dateClass->setUp(ctx);

    ctx.errorConstructor = ctx.errorClass->errorConstructor();
    ctx.typeErrorConstructor = ctx.typeErrorClass->errorConstructor();
    ctx.rangeErrorConstructor = ctx.rangeErrorClass->errorConstructor();
    ctx.syntaxErrorConstructor = ctx.syntaxErrorClass->errorConstructor();
}

// A closure without a block: calling it gives undefined.
void makeFunctionPrototypeCallable(ESContext& ctx) {
    ESObject* prototype = ctx.functionPrototype;
    prototype->callClosure = ctx.newClosure();
    prototype->callClosure->scope = ctx.scope;
    prototype->value = atomValue(intern("Function.prototype"));
    // Past put, because the set-up of Function has left the length read-only with the value 1.
    prototype->properties.find(wellKnownAtoms.length)->setValue(numberValue(0));
}

} // namespace

void ESContext::initContext() {
    callHook = callObject;
    internWellKnownAtoms();
    makeClasses(*this);
    sp = 0;
    scope = nullptr;
    frame = nullptr;
    frameArgs = 0;
    globalObject = newObject(nullptr, globalClass);
    globalObject->value = atomValue(intern("[object global]"));
    globalObject->properties.pin(); // compiled code refers to globals by their position
    thisObject = globalObject;
    makePrototypes(*this);
    globalObject->prototype = objectPrototype;
    setUpClasses(*this);
    makeFunctionPrototypeCallable(*this);
}
