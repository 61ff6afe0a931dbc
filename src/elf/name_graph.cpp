#include "elf/name_graph.h"

#include "elf/name_cursor.h"
#include "system/native_stack.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <libiberty/demangle.h>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::uint64_t maxSteps = 1 << 17;
// So few references can't make a name dear: each at most doubles it.
constexpr std::size_t fewReferences = 8;
// Measured: a chain of pointers takes most, 430 bytes for each letter.
constexpr std::size_t stackForEachLetter = 640;
constexpr std::size_t stackForAll = 64 * 1024;

using Node = demangle_component;

// What the text of a name says without being parsed. Identifiers may look like any of these, so all are upper
// bounds.
struct Letters {
    std::size_t length = 0;
    std::size_t references = 0;        // to earlier parts or template arguments
    std::size_t parameterLists = 0;    // template parameters with arguments of their own
    std::size_t lists = 0;             // of template arguments
    std::size_t smashedReferences = 0; // to template parameters
    bool hasConversion = false;

    explicit Letters(std::string_view name) : length(name.size()) {
        for (std::size_t i = 0; i + 1 < name.size(); ++i) {
            const char c = name[i];
            const char next = name[i + 1];
            lists += c == 'I' || c == 'J' ? 1 : 0;
            smashedReferences += (c == 'R' || c == 'O') && next == 'T' ? 1 : 0;
            hasConversion = hasConversion || (c == 'c' && next == 'v');
            if ((c != 'S' && c != 'T') || !(next == '_' || isDigit(next) || (next >= 'A' && next <= 'Z'))) {
                continue;
            }
            const std::size_t end = name.find_first_not_of("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ", i + 1);
            if (end != std::string_view::npos && name[end] == '_') {
                ++references;
                parameterLists += c == 'T' && end + 1 < name.size() && name[end + 1] == 'I' ? 1 : 0;
            }
        }
    }

    // The printer makes room for a copy of every template for each reference to a parameter, and counts both
    // twice.
    std::size_t neededStack() const {
        return stackForAll + length * stackForEachLetter + 4 * lists * smashedReferences * 2 * sizeof(void*);
    }
    // Such a list is parsed twice where it may belong to the conversion or to its type, and lists lie in
    // lists.
    bool parsesQuickly() const { return !hasConversion || parameterLists <= fewReferences; }
};

// Steps that the printer takes for a node with everything below it, where shared nodes count as often as they
// are reached.
struct Steps {
    std::uint64_t printing = 0; // where a parameter that is a pack stands for one of its elements
    std::uint64_t whole = 0;    // where it stands for all of them, as in a fold
    std::uint64_t seeking = 0;  // a pack to expand, among the parts
};

Steps operator+(const Steps& a, const Steps& b) {
    const auto sum = [](std::uint64_t x, std::uint64_t y) { return std::min(x + y, 2 * maxSteps); };
    return {sum(a.printing, b.printing), sum(a.whole, b.whole), sum(a.seeking, b.seeking)};
}

struct Parts {
    const Node* left = nullptr;
    const Node* right = nullptr;
};

Parts partsOf(const Node& node) {
    switch (node.type) {
    case DEMANGLE_COMPONENT_NAME:
    case DEMANGLE_COMPONENT_TEMPLATE_PARAM:
    case DEMANGLE_COMPONENT_FUNCTION_PARAM:
    case DEMANGLE_COMPONENT_SUB_STD:
    case DEMANGLE_COMPONENT_BUILTIN_TYPE:
    case DEMANGLE_COMPONENT_EXTENDED_BUILTIN_TYPE:
    case DEMANGLE_COMPONENT_OPERATOR:
    case DEMANGLE_COMPONENT_CHARACTER:
    case DEMANGLE_COMPONENT_NUMBER:
    case DEMANGLE_COMPONENT_UNNAMED_TYPE:
        return {};
    case DEMANGLE_COMPONENT_CTOR:
        return {node.u.s_ctor.name};
    case DEMANGLE_COMPONENT_DTOR:
        return {node.u.s_dtor.name};
    case DEMANGLE_COMPONENT_EXTENDED_OPERATOR:
        return {node.u.s_extended_operator.name};
    case DEMANGLE_COMPONENT_FIXED_TYPE:
        return {node.u.s_fixed.length};
    case DEMANGLE_COMPONENT_LAMBDA:
    case DEMANGLE_COMPONENT_DEFAULT_ARG:
        return {node.u.s_unary_num.sub};
    default:
        return {node.u.s_binary.left, node.u.s_binary.right};
    }
}

bool isList(const Node* node) {
    return node != nullptr &&
           (node->type == DEMANGLE_COMPONENT_TEMPLATE_ARGLIST || node->type == DEMANGLE_COMPONENT_ARGLIST);
}

// Whether a template parameter stands here with nothing about it that must be written.
bool isBareParameter(const Node* node) {
    if (node == nullptr || node->type == DEMANGLE_COMPONENT_TEMPLATE_PARAM) {
        return node != nullptr;
    }
    const auto [left, right] = partsOf(*node);
    return isList(node) ? isBareParameter(left) || isBareParameter(right)
                        : right == nullptr && isBareParameter(left);
}

class NameGraph {
public:
    NameGraph(const Node* nodes, std::size_t count) : nodes_(nodes), steps_(count) {}

    bool isAffordable(const Node* root) {
        // What parameters stand for takes steps too, which are known after a count. Parameters in there
        // belong to names within, which are written each time: the bound on the text holds those.
        std::uint64_t steps = 0;
        for (int round = 0; round < (conversionsBefore_ > 0 ? 3 : 2); ++round) {
            known_.assign(steps_.size(), false);
            argument_ = dearestArgument_;
            conversions_ = 0;
            steps = count(root).printing;
            conversionsBefore_ = conversions_;
        }
        return steps <= maxSteps && !hasBareArguments_;
    }

private:
    Steps count(const Node* node);
    Steps countParts(const Node& node);
    void openScope(const Node* name, bool refusesBareArguments);

    const Node* nodes_;
    std::vector<bool> known_;
    std::vector<Steps> steps_;
    std::size_t conversions_ = 0;
    std::size_t conversionsBefore_ = 0;
    Steps argument_{1, 1, 1}; // what a parameter may stand for
    Steps dearestArgument_{1, 1, 1};
    std::uint64_t longestPack_ = 1;
    bool hasBareArguments_ = false;
};

Steps NameGraph::count(const Node* node) {
    if (node == nullptr) {
        return {};
    }
    const auto index = static_cast<std::size_t>(node - nodes_);
    if (!known_.at(index)) {
        known_[index] = true;
        steps_[index] = countParts(*node);
    }
    return steps_[index];
}

Steps NameGraph::countParts(const Node& node) {
    if (node.type == DEMANGLE_COMPONENT_TEMPLATE_PARAM) {
        return argument_;
    }
    const auto [left, right] = partsOf(node);
    const Steps leftSteps = count(left);
    const Steps rightSteps = count(right);
    Steps steps = leftSteps + rightSteps;
    switch (node.type) {
    case DEMANGLE_COMPONENT_TYPED_NAME:
        openScope(left, true);
        break;
    case DEMANGLE_COMPONENT_CONVERSION:
        ++conversions_;
        break;
    case DEMANGLE_COMPONENT_TEMPLATE:
        if (conversionsBefore_ > 0) { // to a type that may refer to the arguments of any template around
            openScope(&node, conversionsBefore_ > 2);
        }
        break;
    case DEMANGLE_COMPONENT_PACK_EXPANSION:
        steps.whole = steps.printing = leftSteps.seeking + longestPack_ * leftSteps.printing;
        steps.seeking = 0;
        break;
    case DEMANGLE_COMPONENT_UNARY: // may ask for the size of a pack
        steps.printing += rightSteps.seeking;
        steps.whole += rightSteps.seeking;
        break;
    case DEMANGLE_COMPONENT_BINARY:
    case DEMANGLE_COMPONENT_TRINARY: // may be a fold
        steps.printing = steps.whole;
        break;
    default:
        break;
    }
    return steps + Steps{1, 1, 1};
}

// Parameters stand for the arguments of the template in this name. Where such an argument is itself a
// parameter of the next scope, and that of the next, steps could double from scope to scope without a letter
// written; no compiler makes that.
void NameGraph::openScope(const Node* name, bool refusesBareArguments) {
    while (name != nullptr && name->type != DEMANGLE_COMPONENT_TEMPLATE) {
        const auto [left, right] = partsOf(*name);
        name = name->type == DEMANGLE_COMPONENT_LOCAL_NAME ? right : left;
    }
    if (name == nullptr) {
        return;
    }
    for (const Node* list = partsOf(*name).right; isList(list); list = partsOf(*list).right) {
        const Node* argument = partsOf(*list).left;
        Steps steps = count(argument);
        if (isList(argument)) {
            steps.printing = 0;
            std::uint64_t length = 0;
            for (const Node* pack = argument; isList(pack); pack = partsOf(*pack).right) {
                steps.printing = std::max(steps.printing, count(partsOf(*pack).left).printing + ++length);
            }
            longestPack_ = std::max(longestPack_, length);
        }
        dearestArgument_.printing = std::max(dearestArgument_.printing, steps.printing);
        dearestArgument_.whole = std::max(dearestArgument_.whole, steps.whole);
        hasBareArguments_ = hasBareArguments_ || (refusesBareArguments && isBareParameter(argument));
    }
}

constexpr int wholeNames = DMGL_GNU_V3 | DMGL_PARAMS | DMGL_TYPES;

struct FreeBlock {
    void operator()(void* block) const { std::free(block); }
};

// The library parses names of members in expressions in two ways. Its field for which one is meant is set
// when it demangles, but left as it lies on the stack when it only parses.
enum class Scheme : unsigned char { Older = 0, Newer = 1 };

[[gnu::noinline]] void leaveOnStack(Scheme scheme) {
    volatile Scheme frame[512];
    for (volatile Scheme& each : frame) {
        each = scheme;
    }
}

// Nothing when the name doesn't parse this way.
std::optional<bool> isAffordable(const char* name, Scheme scheme) {
    // What is keyed to a constructor is parsed as a clone is, whatever stands behind it.
    const bool isGlobal = *name == '_' && name[1] == 'G';
    const std::string clone = isGlobal ? "_ZGTt" + std::string(name + 13) : std::string();
    void* block = nullptr;
    errno = 0;
    leaveOnStack(scheme);
    const Node* root = cplus_demangle_v3_components(
        isGlobal ? clone.c_str() : name, isGlobal ? wholeNames & ~DMGL_PARAMS : wholeNames, &block);
    const std::unique_ptr<void, FreeBlock> owner(block);
    if (root == nullptr) {
        return errno == ENOMEM ? throw std::bad_alloc() : std::nullopt;
    }
    return NameGraph(static_cast<const Node*>(block), 2 * (std::string_view(name).size() + 5))
        .isAffordable(root);
}

} // namespace

bool isAffordable(const char* name) {
    const std::string_view text(name);
    const Letters letters(text);
    if (nativeStackLeft() < letters.neededStack() || !letters.parsesQuickly()) {
        return false;
    }
    if (letters.references <= fewReferences) {
        return true;
    }
    return isAffordable(name, Scheme::Newer).value_or(true) &&
           (text.find("sr") == std::string_view::npos || isAffordable(name, Scheme::Older).value_or(true));
}
