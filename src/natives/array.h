// ESNativeArray: Array and Array.prototype. An array is an ordinary object whose `length` is kept up to date
// by put; all members but toString and toLocaleString work on any object. How elements are reached stands in
// array_elements.h, the sort in array_sort.h.
#pragma once

#include "runtime/native_class.h"

class ESNativeArray : public ESClass {
public:
    ESNativeArray();
    void setUp(ESContext& ctx);

    // A smaller `length` deletes the elements behind it; an index from the length on raises it.
    void put(ESContext& ctx, ESObject* obj, ESAtom atom, const ESValue& value) override;
    void putElement(ESContext& ctx, ESObject* obj, std::uint32_t index, const ESValue& value) override;
    void call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc, ESValue* argv) override;
    ESObject* construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) override;
};
