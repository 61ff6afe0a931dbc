// The sort of Array.prototype: a Shell sort with gaps of its own. It isn't stable, so its result shows the
// very comparisons it makes, and they stay as they are.
#pragma once

#include "runtime/value.h"

class ESContext;

// Sorts the elements of any object in place. comparator is undefined (order of the texts, by code unit) or a
// function; anything else raises Error. Errors of conversions and of the comparator pass through and leave
// the elements as the sort had them by then.
void sortElements(ESContext& ctx, ESObject* obj, const ESValue& comparator);
