// Demangling in the scheme of the C++ compilers that the older ARM linkers belong to, also known from the
// Annotated Reference Manual: the name, two underscores, the class, and the argument types in one letter
// each. Callers take demangle.h.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// Nothing when the name doesn't follow the scheme to its end, or when the result would pass
// maxDemangledLength. Work is in proportion to the lengths of name and result.
std::optional<std::string> demangleArm(std::string_view name);
