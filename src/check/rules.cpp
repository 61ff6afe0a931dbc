#include "check/rules.h"

#include "check/facts.h"
#include "check/missing_names.h"

#include <algorithm>
#include <set>

namespace {

struct Finding {
    std::int32_t line = 0; // 0: nothing found
    QString message;
};

const Finding nothing;

Finding found(std::int32_t line, const char* message) { return {line, QString::fromLatin1(message)}; }

// The message about a name, which stands for %1, with what else there is to say for %2.
Finding found(std::int32_t line, const char* message, ESAtom name, const QString& more = {}) {
    const QString text = QString::fromLatin1(message).arg(name->toString());
    return {line, more.isEmpty() ? text : text.arg(more)};
}

// Names and literals have the line at which they stand; the line of a larger tree can be that of the word
// behind it.
std::int32_t lineOf(const Facts& facts, const ESNode* node) {
    for (;;) {
        if (node->kind == TokenFunction) {
            return facts.script.functionLines[static_cast<std::size_t>(node->function->blockIndex)];
        }
        const ESNode* const first = node->child[0] != nullptr ? node->child[0] : node->child[1];
        if (first == nullptr || node->kind == ':' || isStatementKind(node->kind)) {
            return node->line;
        }
        node = first;
    }
}

// By its name the object of a library file: Text.split is nothing to worry about.
bool isForeignObject(const Facts& facts, const Visit& visit, const ESNode* node) {
    return node->kind == TokenIdentifier && node->atom->view().front().isUpper() &&
           !facts.isBuiltin(visit, node->atom);
}

// --- Members and globals that aren't there, or do nothing ---

Finding advise(const ESNode* node, const char* message, const MissingName* name) {
    return name == nullptr ? nothing
                           : found(node->line, message, node->atom, QString::fromLatin1(name->advice));
}

// The member that a call asks for, unless the script or another file may have made it; else null.
const ESNode* calledMember(const Facts& facts, const Visit& visit) {
    const ESNode* const callee = visit.node->kind == NodeCall ? visit.node->child[0] : nullptr;
    const bool foreign = callee == nullptr || callee->kind != '.' || facts.givesMember(callee->atom) ||
                         isForeignObject(facts, visit, callee->child[0]);
    return foreign ? nullptr : callee;
}

Finding emptyMember(const Facts& facts, const Visit& visit) {
    constexpr char message[] = "'%1' does nothing and gives undefined: %2";
    if (const ESNode* member = calledMember(facts, visit)) {
        return advise(member, message, findName(emptyMembers, member->atom));
    }
    const ESNode* const callee = visit.node->kind == NodeCall ? visit.node->child[0] : nullptr;
    const bool builtin =
        callee != nullptr && callee->kind == TokenIdentifier && facts.isBuiltin(visit, callee->atom);
    return builtin ? advise(callee, message, findName(emptyGlobals, callee->atom)) : nothing;
}

Finding missingMember(const Facts& facts, const Visit& visit) {
    const ESNode* const member = calledMember(facts, visit);
    return member == nullptr
               ? nothing
               : advise(member, "there is no member '%1': %2", findName(missingMembers, member->atom));
}

bool isProbe(const ESNode* parent) {
    return isEquality(parent) || (parent != nullptr && parent->kind == TokenTypeof);
}

// The spelling that a name should have had, if only its capitals are wrong.
QString otherSpelling(const ESObject* object, ESAtom name) {
    for (std::uint32_t i = 0; i < object->properties.count(); ++i) {
        const ESAtom other = object->properties.at(i).atom;
        if (other != nullptr && other->view().compare(name->view(), Qt::CaseInsensitive) == 0) {
            return QStringLiteral(", but '%1'").arg(other->toString());
        }
    }
    return {};
}

Finding unknownMember(const Facts& facts, const Visit& visit) {
    const ESNode* const node = visit.node;
    if (node->kind != '.' || node->child[0]->kind != TokenIdentifier || isProbe(visit.parent) ||
        !facts.isBuiltin(visit, node->child[0]->atom) || facts.givesMember(node->atom)) {
        return nothing;
    }
    const ESValue object = facts.builtin(node->child[0]->atom);
    if (!object.isObject() || facts.script.engine.context.hasProperty(object.object, node->atom)) {
        return nothing;
    }
    return found(node->line, "there is no '%1' in %2", node->atom,
                 node->child[0]->atom->toString() + otherSpelling(object.object, node->atom));
}

// As an object or a function alone: with -define a script may be given a text of any name.
Finding missingGlobal(const Facts& facts, const Visit& visit) {
    const ESNode* const node = visit.node;
    const ESNode* const parent = visit.parent;
    const bool used = parent != nullptr && parent->child[0] == node &&
                      (parent->kind == NodeCall || parent->kind == TokenNew || isMember(parent));
    if (!used || node->kind != TokenIdentifier || facts.isKnown(visit, node->atom)) {
        return nothing;
    }
    return advise(node, "there is no '%1': %2", findName(missingGlobals, node->atom));
}

Finding mathRandom(const Facts& facts, const Visit& visit) {
    const ESNode* const node = visit.node;
    const bool random = node->kind == '.' && node->atom->view() == u"random" &&
                        isName(node->child[0], u"Math") && facts.isBuiltin(visit, node->child[0]->atom);
    return random ? found(node->line, "Math.random gives any number at all, not one between 0 and 1, and the "
                                      "same sequence in each run")
                  : nothing;
}

// A text that is written out where a path or a command is due, and of which the system would get another.
Finding oddPath(const Facts& facts, const Visit& visit) {
    const ESNode* const node = visit.node;
    const ESNode* const callee = node->kind == NodeCall ? node->child[0] : nullptr;
    if (callee == nullptr) {
        return nothing;
    }
    const bool member = callee->kind == '.';
    const ESNode* const object = member ? callee->child[0] : callee;
    const bool host =
        member ? isName(object, u"TBSys") || isName(object, u"ElfFile") : isName(object, u"load");
    if (!host || !facts.isBuiltin(visit, object->atom)) {
        return nothing;
    }
    const bool writes = callee->atom->view() == u"writeStringToFile"; // whose second text is no path
    for (const ESNode* path = node->child[1]; path != nullptr; path = writes ? nullptr : path->next) {
        const QStringView text = path->kind == TokenString ? path->atom->view() : QStringView();
        if (std::any_of(text.begin(), text.end(), [](QChar c) { return c.isNull() || c.unicode() > 0xFF; })) {
            return found(path->line,
                         "a path ends at a NUL, and gets a ? for a character above U+00FF: this names "
                         "another file");
        }
    }
    return nothing;
}

// --- Names ---

Finding undeclaredAssignment(const Facts& facts, const Visit& visit) {
    const ESNode* const target = targetOf(visit.node);
    if (target == nullptr || target->kind != TokenIdentifier || visit.function->isProgram ||
        facts.isKnown(visit, target->atom)) {
        return nothing;
    }
    return found(target->line, "'%1' is declared nowhere: this assigns a global variable", target->atom);
}

Finding unusedFunction(const Facts& facts, const Visit& visit) {
    if (visit.role != Visit::Role::Declaration || (visit.function->isProgram && !facts.doesWork())) {
        return nothing;
    }
    const ESAtom name = visit.node->child[0]->atom;
    if (facts.mentions(name) > 1 || facts.isInString(name)) {
        return nothing;
    }
    return found(lineOf(facts, visit.node->child[1]), "the function '%1' is never used", name);
}

// --- Expressions ---

// `value != undefined && value != null` and `typeof value == "object" && value != null` know what they do.
bool isSecondTest(const Visit& visit) {
    const ESNode* const parent = visit.parent;
    if (parent == nullptr || (parent->kind != TokenLogicalAnd && parent->kind != TokenLogicalOr)) {
        return false;
    }
    const ESNode* const other = parent->child[parent->child[0] == visit.node ? 1 : 0];
    const auto tests = [](const ESNode* side) {
        return isName(side, u"undefined") || side->kind == TokenTypeof;
    };
    return isEquality(other) && (tests(other->child[0]) || tests(other->child[1]));
}

Finding nullComparison(const Facts& facts, const Visit& visit) {
    if (!isEquality(visit.node) || !facts.neverNull() || isSecondTest(visit)) {
        return nothing;
    }
    for (int side = 0; side < 2; ++side) {
        if (visit.node->child[side]->kind == TokenNull) {
            return found(
                visit.node->child[side]->line,
                "null equals nothing but null, and nothing here is null: what is missing is undefined");
        }
    }
    return nothing;
}

// `new` reaches over the whole chain behind it; its own arguments are those at the end.
Finding newChain(const Facts&, const Visit& visit) {
    const ESNode* const node = visit.node;
    if (node->kind != TokenNew) {
        return nothing;
    }
    const ESNode* chain = node->child[0]->kind == NodeCall ? node->child[0]->child[0] : node->child[0];
    for (; isMember(chain) && !chain->inParentheses; chain = chain->child[0]) {
        if (chain->child[0]->kind == NodeCall && !chain->child[0]->inParentheses) {
            return found(chain->child[0]->line,
                         "new takes the whole chain behind it: write (new F(...)).member");
        }
    }
    return nothing;
}

Finding trailingComma(const Facts&, const Visit& visit) {
    const ESNode* const node = visit.node;
    const ESNode* const array = visit.parent;
    const bool last =
        node->kind == NodeElided && node->next == nullptr && array->child[0]->kind != NodeElided;
    return last ? found(node->line, "the comma in front of the ] adds an element, which is undefined")
                : nothing;
}

// --- Statements ---

bool isDeclarationOnly(const ESNode* node) { // `var a, b;` is a row of names
    if (node->kind != ',') {
        return node->kind == TokenIdentifier;
    }
    const ESNode* name = node->child[0];
    while (name != nullptr && name->kind == TokenIdentifier) {
        name = name->next;
    }
    return name == nullptr;
}

Finding noEffect(const Facts& facts, const Visit& visit) {
    const ESNode* const node = visit.node;
    if (visit.role != Visit::Role::Statement || isStatementKind(node->kind) || node->hasEffect ||
        node->kind == TokenString || node->kind == TokenCase || node->kind == TokenDefault ||
        isDeclarationOnly(node)) {
        return nothing;
    }
    return found(lineOf(facts, node), node->kind == TokenNew
                                          ? "without parentheses behind it this new is left out"
                                          : "this statement changes nothing and is left out");
}

Finding strayContinue(const Facts&, const Visit& visit) {
    const bool stray = visit.node->kind == TokenContinue && visit.node->atom == nullptr && !visit.inLoop;
    return stray ? found(visit.node->line, "outside a loop continue does nothing") : nothing;
}

// A body that begins by choosing among the names needs no more.
Finding forIn(const Facts& facts, const Visit& visit) {
    const ESNode* const node = visit.node;
    if (node->kind != NodeForIn || facts.isFiltered(node)) {
        return nothing;
    }
    const ESNode* first = node->child[3];
    while (first != nullptr && first->kind == ';') {
        first = first->child[1];
    }
    if (first == nullptr || first->kind == TokenIf || first->kind == TokenSwitch) {
        return nothing;
    }
    return found(lineOf(facts, node->child[0]), "for in also gives the members of Object.prototype, and the "
                                                "length of an Array: test with hasOwnProperty");
}

// --- The table ---

// Each looks at every node. The same message of one that speaks `once` comes a single time for a script.
struct Rule {
    const char* name;
    Finding (*look)(const Facts&, const Visit&);
    bool once = false;
};

constexpr Rule rules[] = {
    {"empty-member", emptyMember},
    {"missing-member", missingMember},
    {"unknown-member", unknownMember},
    {"missing-global", missingGlobal},
    {"math-random", mathRandom},
    {"odd-path", oddPath},
    {"undeclared-assignment", undeclaredAssignment, true},
    {"unused-function", unusedFunction},
    {"null-comparison", nullComparison},
    {"new-chain", newChain},
    {"trailing-comma", trailingComma},
    {"no-effect", noEffect},
    {"stray-continue", strayContinue},
    {"for-in", forIn},
};

struct WordRule {
    const char* name;
    std::int32_t word;
    const char* message;
};

// Statements that leave no node. No name can be one of these words.
constexpr WordRule wordRules[] = {
    {"dropped-try", TokenTry, "nothing of a try statement runs, not even its first block"},
    {"dropped-throw", TokenThrow,
     "throw does nothing, and the script goes on: Assert.fail of lib/assert.js ends a run"},
};

} // namespace

Reports warningsOf(Script& script) {
    const Facts facts(script);
    Reports reports;
    for (const ScriptToken& token : script.tokens) {
        for (const WordRule& rule : wordRules) {
            if (token.kind == rule.word) {
                reports.push_back(
                    {token.line, Severity::Warning, rule.name, QString::fromLatin1(rule.message)});
            }
        }
    }
    std::set<QString> said;
    walkTree(script.root, script.program, [&](const Visit& visit) {
        for (const Rule& rule : rules) {
            const Finding finding = rule.look(facts, visit);
            if (finding.line != 0 && (!rule.once || said.insert(finding.message).second)) {
                reports.push_back({finding.line, Severity::Warning, rule.name, finding.message});
            }
        }
    });
    return reports;
}
