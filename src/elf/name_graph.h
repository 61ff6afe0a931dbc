// What a GNU v3 name would cost the library, before it is let at it. Names refer back to their own parts, so
// forty references can stand for 2^40 steps, and not all of those steps write anything that a bound on the
// text would notice. demangle.h is who asks.
#pragma once

// Whether the library demangles this name within the bounds of work and of the native stack that is left
// here. No real name is near the bound of work: it is ten times what the dearest of 240,000 names of large
// C++ libraries takes. `name` has at most maxMangledLength characters. Throws std::bad_alloc.
bool isAffordable(const char* name);
