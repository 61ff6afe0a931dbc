// The String constructor and String.prototype. A String object holds its text in `value`; its length is
// worked out when asked for, and it has no index properties. The characters are those of runtime/text.h, and
// a result that is a part of a text shares them.
#pragma once

#include "runtime/native_class.h"

class ESNativeString : public ESClass {
public:
    ESNativeString();
    // Registers the members; ctx.stringPrototype is there already.
    void setUp(ESContext& ctx);

    ESValue get(ESContext& ctx, ESObject* obj, ESAtom atom) override;
    void put(ESContext& ctx, ESObject* obj, ESAtom atom, const ESValue& value) override;
    void call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc, ESValue* argv) override;
    ESObject* construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) override;

    // Calls a member of String.prototype on a string value without making an object of it. Answers false,
    // with nothing done, where a script could tell the difference: an argument is an object, String.prototype
    // converts in a way of its own, or the member isn't one of String.prototype. The arguments need not be
    // padded to the declared length. The result goes to argv[0], which exists also when argc is 0.
    bool callOnText(ESContext& ctx, std::int32_t memberIndex, const ESValue& text, std::int32_t argc,
                    ESValue* argv) override;

    // Whether a String object that has nothing but String.prototype converts to a string by its toString
    // as it was born, so that the result is the object's text.
    bool convertsPlainly(const ESContext& ctx) const;

private:
    ESValue textOfThis(ESContext& ctx, ESObject* thisObject) const;

    std::uint32_t toStringPosition_ = 0; // of toString among the properties of String.prototype, for ever
    ESObject* toString_ = nullptr;       // the function that stands there at the start
};
