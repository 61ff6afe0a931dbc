#include "compiler/function_scope.h"

#include "runtime/context.h"

#include <algorithm>
#include <cmath>

namespace {

#ifdef QUORVANE_TINY_LIMITS
constexpr std::size_t indexedFrom = 2;
#else
constexpr std::size_t indexedFrom = 12; // up to this many entries a scan is as fast as an index
#endif

std::uint64_t uniqueNameCount = 0;

} // namespace

ESFunctionScope::ESFunctionScope(ESFunctionScope* enclosingFunction, bool program)
    : enclosing(enclosingFunction), isProgram(program), block(std::make_unique<ESCodeBlock>()) {}

std::int32_t ESFunctionScope::addNumber(double value) {
    std::vector<double>& numbers = block->numbers;
    const auto next = static_cast<std::int32_t>(numbers.size());
    if (numbers.size() <= indexedFrom) {
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            if (numbers[i] == value) {
                return static_cast<std::int32_t>(i);
            }
        }
    } else {
        if (numberIndex_.empty()) {
            for (std::size_t i = 0; i < numbers.size(); ++i) {
                numberIndex_.emplace(numbers[i], static_cast<std::int32_t>(i));
            }
        }
        // NaN equals nothing, so it is never found: entering it would only lengthen the search.
        if (!std::isnan(value)) {
            const auto [entry, added] = numberIndex_.emplace(value, next);
            if (!added) {
                return entry->second;
            }
        }
    }
    numbers.push_back(value);
    return next;
}

std::int32_t ESFunctionScope::find(ESAtom atom) const {
    if (!positions_.empty()) {
        const auto found = positions_.find(atom);
        return found == positions_.end() ? -1 : found->second;
    }
    const std::vector<ESProperty>& variables = block->variables;
    for (std::size_t i = 0; i < variables.size(); ++i) {
        if (variables[i].atom == atom) {
            return static_cast<std::int32_t>(i);
        }
    }
    return -1;
}

void ESFunctionScope::declareVariable(ESAtom atom, std::uint32_t attributes, bool rename) {
    if (rename) {
        renameAll(atom);
    } else if (find(atom) >= 0) {
        return;
    }
    append(atom, attributes);
}

void ESFunctionScope::append(ESAtom atom, std::uint32_t attributes) {
    std::vector<ESProperty>& variables = block->variables;
    ESProperty slot;
    slot.atom = atom;
    slot.attributes = attributes;
    slot.setValue(undefinedValue());
    variables.push_back(slot);
    if (!positions_.empty()) {
        index(atom, static_cast<std::int32_t>(variables.size()) - 1);
    } else if (variables.size() > indexedFrom) {
        for (std::size_t i = 0; i < variables.size(); ++i) {
            index(variables[i].atom, static_cast<std::int32_t>(i));
        }
    }
}

void ESFunctionScope::renameAll(ESAtom atom) {
    std::vector<ESProperty>& variables = block->variables;
    std::int32_t position = find(atom);
    if (position < 0) {
        return;
    }
    const auto end =
        namedTwice_ || positions_.empty() ? static_cast<std::int32_t>(variables.size()) : position + 1;
    if (!positions_.empty()) {
        positions_.erase(atom);
    }
    for (; position < end; ++position) {
        ESProperty& slot = variables[static_cast<std::size_t>(position)];
        if (slot.atom == atom) {
            slot.atom = uniqueName();
            if (!positions_.empty()) {
                index(slot.atom, position);
            }
        }
    }
}

// The first slot of a name is the one that counts.
void ESFunctionScope::index(ESAtom atom, std::int32_t position) {
    const auto [entry, added] = positions_.emplace(atom, position);
    if (!added) {
        namedTwice_ = true;
        entry->second = std::min(entry->second, position);
    }
}

ESAtom uniqueName() { return intern(QStringLiteral("CG%1").arg(uniqueNameCount++)); }

void declareName(ESContext& ctx, ESFunctionScope& scope, ESAtom atom, std::uint32_t attributes, bool rename) {
    if (scope.isProgram) {
        ESPropertyTable& globals = ctx.globalObject->properties;
        if (globals.find(atom) == nullptr) {
            globals.append(ctx.arena(), atom, attributes, undefinedValue());
        }
    } else if ((attributes & ParameterSlot) != 0) {
        ++scope.block->argCount;
    } else {
        ++scope.block->localCount;
    }
    scope.declareVariable(atom, attributes, rename);
}
