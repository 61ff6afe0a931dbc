// ESContext, one instance of the engine: the machine's registers, the value stack, the standard prototypes,
// one instance of each native class and all objects. Every station sees this header; what a member function
// does is defined where its subject lives: conversions.cpp, objects.cpp and context.cpp here, execute in
// machine/, evaluate in compiler/evaluate.cpp, initContext in natives/standard_library.cpp.
#pragma once

#include "runtime/arena.h"
#include "runtime/failures.h"
#include "runtime/native_class.h"
#include "runtime/object.h"
#include "runtime/text_log.h"

#include <QString>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

struct ESFusedFrame;
struct ESRegisterCall;
class ESNativeArray;
class ESNativeBoolean;
class ESNativeDate;
class ESNativeError;
class ESNativeEvalError;
class ESNativeFunction;
class ESNativeGlobal;
class ESNativeMath;
class ESNativeNumber;
class ESNativeObject;
class ESNativeRangeError;
class ESNativeReferenceError;
class ESNativeString;
class ESNativeSyntaxError;
class ESNativeTypeError;

// What evaluate() returns.
struct ESCompletion {
    static constexpr std::int32_t normal = 0;
    static constexpr std::int32_t exception = 4;

    std::int32_t status = normal;
    ESValue value = undefinedValue(); // the result of the run, or the exception value
    QString target;                   // always null
};

// Which of the machine's two loops runs: the one over the defined bytes, or the one over the form made from
// them on a block's first run. Results are the same.
enum class ESExecutionForm { Bytes, Fused };

class ESContext {
public:
    // A subclass that answers keepRunning() passes true, and is then asked before every instruction.
    explicit ESContext(bool asksKeepRunning = false);
    virtual ~ESContext();
    ESContext(const ESContext&) = delete;
    ESContext& operator=(const ESContext&) = delete;

    // The machine ends the run when this returns false.
    virtual bool keepRunning() { return true; }

    // --- Life -------------------------------------------------------------------------------------------
    // Builds the standard objects. Called once, before anything else.
    void initContext();
    // Compiles and runs a text as a program. May be called from inside a running script. Script errors come
    // back as a completion; ESFatalError and HException pass through. The registers are restored.
    ESCompletion evaluate(const QString& text);

    // --- Failures ---------------------------------------------------------------------------------------
    // Throws ESException with a new error object whose message is "line N: " and the text; N is
    // currentLine(). constructor comes from the class: typeErrorClass->errorConstructor().
    [[noreturn]] void raiseError(ESObject* constructor, const QString& text);
    [[noreturn]] void raiseBaseError(const char* latin1);  // Error
    [[noreturn]] void raiseTypeError(const char* latin1);  // TypeError
    [[noreturn]] void raiseRangeError(const char* latin1); // RangeError
    [[noreturn]] void stackTooSmall();

    // --- Conversions (conversions.cpp) --------------------------------------------------------------------
    bool toBoolean(const ESValue& v);
    void toNumber(ESValue& v); // in place
    double toDouble(const ESValue& v) { return v.tag == ESTagNumber ? v.number : toDoubleSlow(v); }
    double toInteger(const ESValue& v); // NaN gives 0, infinities stay
    std::int32_t toInt32(const ESValue& v) { return doubleToInt32(toDouble(v)); }
    std::uint32_t toUint32(const ESValue& v) { return static_cast<std::uint32_t>(toInt32(v)); }
    std::uint16_t toUint16(const ESValue& v) { return static_cast<std::uint16_t>(toInt32(v)); }
    QString toString(const ESValue& v, std::int32_t radix = 10);
    // The same text as a string value, without a QString where that can be avoided. Radix 10. That of a
    // number isn't noted, as no script has got it yet.
    ESValue toStringValue(const ESValue& v);
    ESValue newStringOf(const ESValue& v); // noted
    ESAtom toAtom(const ESValue& v);
    void toPrimitive(ESValue& v, ESValueTag hint); // v holds an object; becomes a primitive in place
    void defaultValue(ESObject* object, ESValueTag hint, ESValue& out);
    void toObject(ESValue& v);            // in place
    ESObject* objectOf(const ESValue& v); // the object itself, or a new wrapper
    void wrapPrimitive(ESValue& v);
    ESObject* objectFromValue(std::int32_t argc, const ESValue* argv);
    // If the value is an array index in number form, 0 to 0x7FFFFFFE: that index, else notAnIndex.
    static std::uint32_t arrayIndexOf(const ESValue& v) {
        if (v.tag == ESTagNumber && v.number >= 0.0 && v.number < 2147483647.0) {
            const auto index = static_cast<std::uint32_t>(v.number);
            return static_cast<double>(index) == v.number ? index : notAnIndex;
        }
        return notAnIndex;
    }
    static std::int32_t doubleToInt32(double d) {
#ifdef __SSE2__
        // The processor answers the lowest number for everything out of range.
        const std::int64_t whole = _mm_cvttsd_si64(_mm_set_sd(d));
        if (whole != std::numeric_limits<std::int64_t>::min()) [[likely]] {
            return static_cast<std::int32_t>(static_cast<std::uint32_t>(whole));
        }
#else
        if (d > -9.0e18 && d < 9.0e18) [[likely]] {
            return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::int64_t>(d)));
        }
#endif
        return doubleToInt32Slow(d);
    }

    // --- Strings ------------------------------------------------------------------------------------------
    // A text that a script gets: its name counts as used from now on, for the order of `for in`.
    static ESValue noted(const ESText* text) {
        textLog.note(text);
        return textValue(text);
    }
    // String values from characters: copied.
    ESValue newString(QStringView characters);
    ESValue newString(QByteArrayView latin1);
    ESValue characterString(char16_t character);
    // A part of a string value, sharing its characters. from + length must lie within it.
    ESValue substring(const ESValue& string, std::uint32_t from, std::uint32_t length);
    // Both hold strings. RangeError "length too large" past ESText::maxLength.
    ESValue concatenate(const ESValue& left, const ESValue& right);
    // The same for a number and a primitive, either way round.
    ESValue concatenateNumber(const ESValue& left, const ESValue& right);
    // The text of a string value (either tag).
    static const ESText& textOf(const ESValue& v) { return v.tag == ESTagAtom ? v.atom->text : *v.text; }
    static QStringView viewOf(const ESValue& v) { return textOf(v).view(); }
    static bool sameText(const ESValue& a, const ESValue& b);
    // Negative, 0 or positive, by UTF-16 code unit.
    static int compareText(const ESValue& a, const ESValue& b);

    // --- Arrays -------------------------------------------------------------------------------------------
    ESObject* newArray(std::uint32_t count, const ESValue* values);
    ESValue bytesToArray(const std::uint8_t* bytes, std::size_t count);
    // The elements' low 8 bits. Raises Error "array argument expected" for anything but an Array. May run
    // script (valueOf of an element).
    std::vector<std::uint8_t> arrayToBytes(const ESValue& v);

    // --- Objects (objects.cpp)
    // ------------------------------------------------------------------------------
    ESObject* newObject(ESObject* prototype, ESClass* cls);
    ESObject* newPlainObject();
    ESObject* newScopeNode(ESObject* next, ESObject* searched);
    ESClosure* newClosure();
    static ESValue get(ESContext& ctx, ESObject* obj, ESAtom atom) {
        return obj->nativeClass->get(ctx, obj, atom);
    }
    ESValue get(ESObject* obj, ESAtom atom) { return obj->nativeClass->get(*this, obj, atom); }
    void put(ESObject* obj, ESAtom atom, const ESValue& v) { obj->nativeClass->put(*this, obj, atom, v); }
    ESValue getElement(ESObject* obj, std::uint32_t index) {
        return obj->nativeClass->getElement(*this, obj, index);
    }
    void putElement(ESObject* obj, std::uint32_t index, const ESValue& v) {
        obj->nativeClass->putElement(*this, obj, index, v);
    }
    // Any key value: an index in number form goes to the element operations, the rest through toAtom.
    ESValue getKey(ESObject* obj, const ESValue& key);
    void putKey(ESObject* obj, const ESValue& key, const ESValue& v);

    bool hasOwnProperty(ESObject* obj, ESAtom atom);
    bool hasProperty(ESObject* obj, ESAtom atom); // along the chain; a null obj gives false
    bool hasElement(ESObject* obj, std::uint32_t index);
    bool propertyIsEnumerable(ESObject* obj, ESAtom atom);
    bool deleteProperty(ESObject* obj, ESAtom atom);
    bool deleteIndexProperty(ESObject* obj, std::uint32_t index);
    // put through the class, then the own slot takes these attributes.
    void putProperty(ESObject* obj, std::uint32_t attributes, ESAtom atom, const ESValue& v);
    // The enumerable names of an object and its prototypes, each once, in order of first interning.
    std::vector<ESAtom> enumerableNames(ESObject* obj);

    bool isStringObject(const ESObject* obj) const;
    bool isNumberObject(const ESObject* obj) const;
    bool isBooleanObject(const ESObject* obj) const;
    bool isDateObject(const ESObject* obj) const;
    bool isArrayObject(const ESObject* obj) const;
    bool isErrorObject(const ESObject* obj) const;
    // protoObject is found by following `prototype` from the value, the object itself excluded.
    static bool inPrototypeChain(const ESObject* protoObject, const ESValue& v);
    // A String, Number or Boolean object's primitive; any other value as it is.
    ESValue primitiveOf(const ESValue& v);
    static ESValue getArgument(std::int32_t argc, const ESValue* argv, std::int32_t i) {
        return i < argc ? argv[i] : undefinedValue();
    }

    // --- Running (machine/) -----------------------------------------------------------------------------
    // Runs a block to its end; acc holds the result, counted as one pushed value.
    void execute(ESCodeBlock* block);
    // The one way up from here to the machine: its callObject(), which initContext() sets.
    void (*callHook)(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc) = nullptr;
    // For natives: arguments in an array, acc preserved.
    void callFunction(ESObject* fn, ESObject* thisObject, std::int32_t argc, const ESValue* argv,
                      ESValue& result);
    ESObject* construct(ESObject* fn, std::int32_t argc, const ESValue* argv);

    // --- Machine registers ------------------------------------------------------------------------------
    static constexpr std::int32_t stackSize = 1024; // entries that calls are tested against
    // Entries that one block may push beyond what its callers left; the memory behind stackSize holds them.
    static constexpr std::int32_t maxBlockDepth = 1 << 18;
    // Entries of one call, at most, that lie in the stack and do not count: spSurplus goes below zero for
    // them.
    static constexpr std::int32_t maxUncounted = 16;

    ESValue acc = undefinedValue(); // the logical top of the stack; after a run, its result
    ESValue aux = undefinedValue(); // second working register
    ESValue* stack = nullptr;
    std::int32_t sp = 0;        // entries in use
    std::int32_t spSurplus = 0; // entries that count against stackSize beyond those kept in the stack
    ESObject* scope = nullptr;  // head scope node, null at program level
    ESValue* frame = nullptr;   // first argument of the running function, inside stack
    std::int32_t frameArgs = 0; // arguments of the running function, those added by the call included
    ESObject* thisObject = nullptr;
    ESFusedFrame* frames = nullptr;         // script calls of the fused loop that haven't ended
    std::int32_t frameDepth = 0;            // entries of frames in use
    ESRegisterCall* registerCall = nullptr; // the one that the fused loop stands in, if any
    const bool asksKeepRunning;
    // What contexts start with; only tests change it.
    inline static ESExecutionForm defaultForm = ESExecutionForm::Fused;
    ESExecutionForm executionForm = defaultForm;
    bool runsFused() const { return executionForm == ESExecutionForm::Fused && !asksKeepRunning; }
    // Every function keeps its variables in an activation object (a switch for tests).
    bool alwaysActivation = false;

    // Source line for messages: set by the compiler, or derived from where the machine stands.
    std::int32_t currentLine() const;
    void setCurrentLine(std::int32_t line) {
        linePlace = nullptr;
        line_ = line;
    }
    // Where the machine stands: an entry of the running block's line table, or null when line_ counts.
    const std::int32_t* linePlace = nullptr;

    // --- Standard objects -------------------------------------------------------------------------------
    ESObject* objectPrototype = nullptr;
    ESObject* functionPrototype = nullptr;
    ESObject* stringPrototype = nullptr;
    ESObject* numberPrototype = nullptr;
    ESObject* booleanPrototype = nullptr;
    ESObject* arrayPrototype = nullptr;
    ESObject* datePrototype = nullptr;
    ESObject* globalObject = nullptr;

    ESNativeGlobal* globalClass = nullptr;
    ESNativeArray* arrayClass = nullptr;
    ESNativeFunction* functionClass = nullptr;
    ESNativeError* errorClass = nullptr;
    ESNativeEvalError* evalErrorClass = nullptr;
    ESNativeNumber* numberClass = nullptr;
    ESNativeString* stringClass = nullptr;
    ESNativeBoolean* booleanClass = nullptr;
    ESNativeReferenceError* referenceErrorClass = nullptr;
    ESNativeRangeError* rangeErrorClass = nullptr;
    ESNativeSyntaxError* syntaxErrorClass = nullptr;
    ESNativeTypeError* typeErrorClass = nullptr;
    ESNativeDate* dateClass = nullptr;
    ESNativeObject* objectClass = nullptr;
    ESNativeMath* mathClass = nullptr;
    ESActivation* activationClass = nullptr;

    // The class pointers above, for comparing and passing on where the types are incomplete; set with them.
    ESClass* plainClass = nullptr; // objectClass
    ESClass* arrays = nullptr;     // arrayClass
    ESClass* strings = nullptr;    // stringClass
    ESClass* functions = nullptr;  // functionClass
    ESClass* numbers = nullptr;    // numberClass
    ESClass* booleans = nullptr;   // booleanClass
    ESClass* dates = nullptr;      // dateClass
    ESClass* errors = nullptr;     // errorClass
    ESObject* errorConstructor = nullptr;
    ESObject* typeErrorConstructor = nullptr;
    ESObject* rangeErrorConstructor = nullptr;
    ESObject* syntaxErrorConstructor = nullptr;

    ESArena& arena() { return arena_; }
    // Takes a class instance over for the life of the context.
    template <typename T>
    T* own(std::unique_ptr<T> cls) {
        classes_.push_back(std::move(cls));
        return static_cast<T*>(classes_.back().get());
    }

private:
    double toDoubleSlow(const ESValue& v);
    static std::int32_t doubleToInt32Slow(double d);
    void addObjectSlab();

    ESArena arena_;
    std::vector<std::unique_ptr<ESClass>> classes_;
    std::vector<std::unique_ptr<ESObject[]>> slabs_; // of slabObjects each
    ESObject* nextFree_ = nullptr;
    ESObject* slabEnd_ = nullptr;
    std::int32_t line_ = 0;
};
