// The Date constructor and Date.prototype. A Date object holds its time value in `value`: the milliseconds
// since midnight at the start of Julian day 0, as the wall clock reads. There are no time zones; each UTC
// member is the same operation as its local twin. date.cpp has the table of members and the arithmetic.
#pragma once

#include "runtime/native_class.h"

class ESNativeDate : public ESClass {
public:
    ESNativeDate();
    // Registers the members; ctx.datePrototype is there already.
    void setUp(ESContext& ctx);
    void call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc, ESValue* argv) override;
    // Without arguments the present moment; a Date's time value; a time value; two to seven numbers from the
    // year down to milliseconds. Anything else gives NaN, and no argument is converted.
    ESObject* construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) override;
};
