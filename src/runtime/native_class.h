// ESClass, the protocol between the machine and everything native: one instance per class and context. A
// native function is an object whose class implements it and whose memberIndex says which member it is; a
// class is a constexpr table of ESMember rows, a set-up that registers them, and one `call` that switches on
// the index. natives/boolean.cpp is the smallest complete example.
#pragma once

#include "runtime/object.h"
#include "runtime/value.h"

#include <cstdint>
#include <span>

class ESContext;

// One row of a class's member table. Index 0 is kept for the constructor of a class that has one.
struct ESMember {
    const char* name;
    std::int32_t length; // declared number of arguments: a call is padded with undefined up to it
    std::int32_t index;
    const char* help = nullptr;
};

// Where the members of a table go, which decides their full names.
enum class ESMemberNaming {
    Prototype, // "Class.prototype.member"
    Namespace, // "Class.member"
    Bare,      // "member"
};

class ESClass {
public:
    explicit ESClass(const char* className) : name(className) {}
    ESClass(const ESClass&) = delete;
    ESClass& operator=(const ESClass&) = delete;
    virtual ~ESClass() = default;

    const char* const name; // "Array"; Object.prototype.toString shows it

    // Reads a property along the prototype chain; undefined when there is none. obj may be null.
    virtual ESValue get(ESContext& ctx, ESObject* obj, ESAtom atom);
    // Writes an own property; a ReadOnly one is left alone in silence.
    virtual void put(ESContext& ctx, ESObject* obj, ESAtom atom, const ESValue& value);
    virtual bool deleteProperty(ESContext& ctx, ESObject* obj, ESAtom atom);
    // Called with argc at least the declared length; the result goes to argv[0], which exists also when
    // argc is 0. thisObject may be null.
    virtual void call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc, ESValue* argv);
    // Calls a member on a string value without making an object of it. False, with nothing done, where a
    // script could tell the difference; argv need not be padded.
    virtual bool callOnText(ESContext&, std::int32_t, const ESValue&, std::int32_t, ESValue*) {
        return false;
    }
    // Gives the new object, or null when there is none.
    virtual ESObject* construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv);
    // Registers a host class: makes a plain object, puts it on the global object under `name` with DontEnum
    // and returns it. Native library classes have set-ups of their own instead.
    virtual ESObject* init(ESContext& ctx);

    // The same as get and put with the atom of an index, without making the atom where that can be avoided.
    virtual ESValue getElement(ESContext& ctx, ESObject* obj, std::uint32_t index);
    virtual void putElement(ESContext& ctx, ESObject* obj, std::uint32_t index, const ESValue& value);

    // False where get (put) is overridden: then no position of a property may be remembered.
    bool ordinaryGet = true;
    bool ordinaryPut = true;

protected:
    // Raise "bad signature in builtin call" ("... construct"), for an index without a member.
    [[noreturn]] static void badCall(ESContext& ctx);
    [[noreturn]] static void badConstruct(ESContext& ctx);
};

// Objects of this class hold the arguments and locals of functions whose variables outlive the value stack.
class ESActivation : public ESClass {
public:
    ESActivation() : ESClass("activation") {}
};

// Makes the function objects of a member table and puts each on target under its name, attributes 0. The
// functions' prototype is functionPrototype, their class `cls`. className begins the full names.
void defineMembers(ESContext& ctx, ESObject* target, std::span<const ESMember> members, ESClass* cls,
                   const char* className, ESMemberNaming naming);
// One function object, not yet on any object's constructor duty. fullName becomes its `value`.
ESObject* defineMember(ESContext& ctx, ESObject* target, const ESMember& member, ESClass* cls,
                       ESAtom fullName);
// Puts a constructor (index 0) named `member.name` on the global object and ties it to its prototype object.
ESObject* defineConstructor(ESContext& ctx, const ESMember& member, ESAtom fullName,
                            ESObject* prototypeObject, ESClass* cls);
