#include "check/facts.h"

#include "compiler/character_class.h"

bool isName(const ESNode* node, QStringView name) {
    return node->kind == TokenIdentifier && node->atom->view() == name;
}

bool isEquality(const ESNode* node) {
    return node != nullptr && (node->kind == TokenEqual || node->kind == TokenNotEqual);
}

bool isMember(const ESNode* node) { return node->kind == '.' || node->kind == '['; }

const ESNode* targetOf(const ESNode* node) {
    switch (node->kind) {
    case '=':
    case TokenIncrement:
    case TokenDecrement:
    case NodePostIncrement:
    case NodePostDecrement:
    case NodeForIn:
        return node->child[0];
    default:
        return node->kind >= TokenAndAssign && node->kind <= TokenModAssign ? node->child[0] : nullptr;
    }
}

Facts::Facts(Script& source) : script(source) {
    for (const ScriptToken& token : script.tokens) {
        if (token.kind == TokenIdentifier) {
            ++mentions_[token.atom];
        } else if (token.kind == TokenString) {
            gatherWords(token.atom->view());
        }
    }
    walkTree(script.root, script.program, [this](const Visit& visit) { gather(visit); });
}

void Facts::gatherWords(QStringView string) {
    for (qsizetype i = 0; i < string.size();) {
        const qsizetype start = i;
        while (i < string.size() && isNamePart(string[i].unicode())) {
            ++i;
        }
        if (const ESAtom word = findAtom(string.sliced(start, i - start))) {
            words_.insert(word);
        }
        ++i;
    }
}

void Facts::gather(const Visit& visit) {
    const ESNode* const node = visit.node;
    if (const ESNode* target = targetOf(node)) {
        if (target->kind == '.') {
            members_.insert(target->atom);
        } else if (target->kind == TokenIdentifier && visit.function->isProgram) {
            expected_.insert(target->atom);
        }
    }
    switch (node->kind) {
    case ':':
        members_.insert(node->atom);
        break;
    case TokenNull:
        makesNull_ = makesNull_ || !isEquality(visit.parent);
        break;
    case TokenEqual:
    case TokenNotEqual:
        for (int side = 0; side < 2; ++side) {
            if (isName(node->child[side], u"undefined") && node->child[1 - side]->kind == TokenIdentifier) {
                expected_.insert(node->child[1 - side]->atom);
            }
        }
        break;
    case '.':
        if (node->atom->view() == u"hasOwnProperty" || node->atom->view() == u"propertyIsEnumerable") {
            filtered_.insert(visit.forIn);
        }
        break;
    case NodeCall:
        doesWork_ = doesWork_ || (visit.role == Visit::Role::Statement && visit.function->isProgram &&
                                  !isName(node->child[0], u"load"));
        break;
    default:
        break;
    }
}

bool Facts::isDeclared(const Visit& visit, ESAtom name) const {
    for (const ESFunctionScope* scope = visit.function; scope != nullptr; scope = scope->enclosing) {
        if (scope->find(name) >= 0) {
            return true;
        }
    }
    return script.program.find(name) >= 0;
}

ESValue Facts::builtin(ESAtom name) const {
    const ESPropertyTable& globals = script.engine.context.globalObject->properties;
    for (std::uint32_t i = 0; i < script.engine.builtins; ++i) {
        if (globals.at(i).atom == name) {
            return globals.at(i).value();
        }
    }
    return undefinedValue();
}

bool Facts::isBuiltin(const Visit& visit, ESAtom name) const {
    return !visit.inWith && !isDeclared(visit, name) && expected_.count(name) == 0 &&
           !builtin(name).isUndefined();
}

bool Facts::isKnown(const Visit& visit, ESAtom name) const {
    return visit.inWith || isDeclared(visit, name) || expected_.count(name) != 0 ||
           !builtin(name).isUndefined();
}

int Facts::mentions(ESAtom name) const {
    const auto found = mentions_.find(name);
    return found == mentions_.end() ? 0 : found->second;
}
