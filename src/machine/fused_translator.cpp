// Makes the fused form of a block: one walk over its bytes with a picture of the stack. An entry of the
// picture either lies in its home register, or is known to be a variable, a constant or `this` and is not
// moved before somebody needs it there. At labels and jumps every entry is at home.
#include "machine/code_block.h"
#include "machine/fused_code.h"

#include <algorithm>
#include <optional>

namespace {

constexpr std::uint32_t bytesPerRegister = sizeof(ESValue);
constexpr std::uint32_t thisOperand = 0xFFFFFFFF; // in place of a register: the receiver is `this`
constexpr std::uint32_t nowhere = 0xFFFFFFFF;     // a site that writes and remembers no position yet

struct Entry {
    enum Kind : std::uint8_t { Home, Register, Constant, This } kind;
    std::uint32_t reg;
    ESValue constant;
};

// Where a branch goes on a truth value, and where the code goes on otherwise.
struct Branch {
    bool jumpsOn;
    std::int32_t target;
    std::int32_t next;
};

// An access to a variable in an activation, as one to the stack.
ESOpcode registerForm(ESOpcode op) {
    switch (op) {
    case OP_GETAM:
        return OP_GETA;
    case OP_GETLM:
        return OP_GETL;
    case OP_PUTAM:
        return OP_PUTA;
    case OP_PUTLM:
        return OP_PUTL;
    case OP_INCM:
        return OP_INCA;
    case OP_DECAM:
        return OP_DECA;
    case OP_INCLM:
        return OP_INCL;
    case OP_DECLM:
        return OP_DECL;
    case OP_CALLAM:
        return OP_CALLA;
    case OP_CALLLM:
        return OP_CALLL;
    default:
        return op;
    }
}

class Translator {
public:
    Translator(ESCodeBlock& block, ESFusedCode& code, const void* const* handlers)
        : block_(block), code_(code), handlers_(handlers) {}
    void run();

private:
    // --- The block's bytes ---
    ESOpcode opAt(std::int32_t offset) const {
        const auto op = static_cast<ESOpcode>(block_.code[static_cast<std::size_t>(offset)]);
        return inRegisters_ ? registerForm(op) : op;
    }
    std::uint32_t first() const { return block_.operandAt(offset_ + 1); }
    std::uint32_t second() const { return block_.operandAt(offset_ + 3); }
    bool isLabel(std::int32_t offset) const { return labels_[static_cast<std::size_t>(offset)]; }
    bool scopeIsItsOwn() const;
    bool readsByKey(std::int32_t offset) const;
    void findLabels();
    std::int32_t threadJump(std::int32_t target) const;
    std::optional<std::int32_t> threadLogical(bool value, std::int32_t target) const;
    std::optional<Branch> branchAt(std::int32_t offset) const;

    // --- The picture of the stack ---
    std::uint32_t home(std::size_t depth) const { // depth counts from 1
        return (base_ + static_cast<std::uint32_t>(depth)) * bytesPerRegister;
    }
    void pushHome() { stack_.push_back({Entry::Home, home(stack_.size() + 1), undefinedValue()}); }
    void pushRegister(std::uint32_t reg) { stack_.push_back({Entry::Register, reg, undefinedValue()}); }
    void pushConstant(const ESValue& v) { stack_.push_back({Entry::Constant, 0, v}); }
    void bringHome(std::size_t index);
    void bringAllHome(std::size_t below);
    void leaveRegister(std::uint32_t reg);
    std::uint32_t registerOf(const Entry& entry, std::size_t depth);
    Entry pop() {
        const Entry entry = stack_.back();
        stack_.pop_back();
        return entry;
    }
    std::uint32_t popRegister() {
        const std::size_t depth = stack_.size();
        return registerOf(pop(), depth);
    }
    std::uint32_t argument(std::uint32_t i) const { return i * bytesPerRegister; }
    std::uint32_t local(std::uint32_t i) const {
        return (static_cast<std::uint32_t>(code_.argCount) + i) * bytesPerRegister;
    }
    std::uint32_t destination();
    void pushResult() {
        if (!stored_) {
            pushHome();
        }
        stored_ = false;
    }

    // --- Cells ---
    void emit(ESFusedOp op, std::int32_t sp);
    void operands(std::uint32_t low, std::uint32_t high);
    void number(double n);
    void atom(ESAtom a);
    void target(std::int32_t offset, bool high);
    std::int32_t spAt(std::size_t depth) const { return static_cast<std::int32_t>(base_ + depth); }

    // --- Instructions ---
    void translate(ESOpcode op);
    void constants(ESOpcode op);
    void variables(ESOpcode op);
    void properties(ESOpcode op);
    void getIndexed(std::size_t sp);
    void putIndexed(std::size_t sp);
    void calls(ESOpcode op);
    void jumps(ESOpcode op);
    void others(ESOpcode op);
    std::uint32_t countInitialisers() const;
    void binary(ESOpcode op);
    void unary(ESOpcode op, ESFusedOp fused);
    void comparison(ESOpcode op);
    void compareAndJump(ESOpcode op, const Branch& branch);
    void truthJump(const Branch& branch);
    void switchTest();
    void call(ESFusedOp op, std::uint32_t count, std::uint32_t callee);
    void store(std::uint32_t reg);
    void nameCache();

    ESCodeBlock& block_;
    ESFusedCode& code_;
    const void* const* handlers_;
    std::vector<std::int32_t> depthAt_;
    std::vector<bool> labels_;
    std::vector<std::uint32_t> cellAt_;
    struct Patch {
        std::size_t cell;
        bool high;
        std::int32_t offset;
    };
    std::vector<Patch> patches_;
    std::vector<Entry> stack_;
    std::uint32_t base_ = 0; // registers before the home of depth 0
    std::int32_t offset_ = 0;
    std::int32_t next_ = 0;
    bool inRegisters_ = false; // the variables that the bytes keep in an activation
    bool flows_ = true;        // the code before this instruction leads here
    bool stored_ = false;      // the result went straight to a variable, and the store is consumed
};

void Translator::emit(ESFusedOp op, std::int32_t sp) {
    ESCell cell;
    const auto number = static_cast<std::size_t>(op);
    if (handlers_ != nullptr) {
        cell.handler = handlers_[number];
    } else {
        cell.opcode = number;
    }
    code_.cells.push_back(cell);
    code_.sites.resize(code_.cells.size());
    code_.sites.back() = {sp, offset_};
}

void Translator::operands(std::uint32_t low, std::uint32_t high) {
    ESCell cell;
    cell.operand = {low, high};
    code_.cells.push_back(cell);
}

void Translator::number(double n) {
    ESCell cell;
    cell.number = n;
    code_.cells.push_back(cell);
}

void Translator::atom(ESAtom a) {
    ESCell cell;
    cell.bits = 0;
    cell.atom = a;
    code_.cells.push_back(cell);
}

// The half of the last cell that holds a jump's target.
void Translator::target(std::int32_t offset, bool high) {
    patches_.push_back({code_.cells.size() - 1, high, threadJump(offset)});
}

void Translator::bringHome(std::size_t index) {
    Entry& entry = stack_[index];
    const std::uint32_t reg = home(index + 1);
    registerOf(entry, index + 1);
    if (entry.kind == Entry::Register) {
        emit(ESFusedOp::Move, 0);
        operands(reg, entry.reg);
    }
    entry = {Entry::Home, reg, undefinedValue()};
}

void Translator::bringAllHome(std::size_t below) {
    for (std::size_t i = 0; i < below; ++i) {
        if (stack_[i].kind != Entry::Home) {
            bringHome(i);
        }
    }
}

// Before a variable is written: entries that only name it take their copy.
void Translator::leaveRegister(std::uint32_t reg) {
    for (std::size_t i = 0; i < stack_.size(); ++i) {
        if (stack_[i].kind == Entry::Register && stack_[i].reg == reg) {
            bringHome(i);
        }
    }
}

// The register that holds an entry of this depth; constants and `this` are loaded to the entry's home.
std::uint32_t Translator::registerOf(const Entry& entry, std::size_t depth) {
    if (entry.kind == Entry::Constant) {
        emit(ESFusedOp::LoadConstant, 0);
        operands(home(depth), entry.constant.tag);
        ESCell cell;
        cell.bits = entry.constant.bits;
        code_.cells.push_back(cell);
        return home(depth);
    }
    if (entry.kind == Entry::This) {
        emit(ESFusedOp::LoadThis, 0);
        operands(home(depth), 0);
        return home(depth);
    }
    return entry.reg;
}

// Where the result of the present instruction goes: into the variable that the next one stores it in, or
// home.
std::uint32_t Translator::destination() {
    const ESOpcode following = next_ < block_.length() && !isLabel(next_) ? opAt(next_) : OP_DROP;
    if (following == OP_PUTA || following == OP_PUTL) {
        const std::uint32_t i = block_.operandAt(next_ + 1);
        const std::uint32_t reg = following == OP_PUTA ? argument(i) : local(i);
        leaveRegister(reg);
        next_ += instructionTable[following].width();
        stored_ = true;
        return reg;
    }
    return home(stack_.size() + 1);
}

// Whether the instruction takes the value on top as the key of an element that should be there.
bool Translator::readsByKey(std::int32_t offset) const {
    if (offset >= block_.length() || isLabel(offset)) {
        return false;
    }
    const ESOpcode op = opAt(offset);
    const bool compound = op >= OP_ADD && op <= OP_USHRX && (op - OP_ADD) % 2 == 1;
    return op == OP_GETX || op >= OP_PREINCE || compound;
}

std::int32_t Translator::threadJump(std::int32_t target) const {
    for (int hops = 0; hops < 8 && opAt(target) == OP_J; ++hops) {
        target = block_.operandAt(target + 1);
    }
    return target;
}

// Where a value of known truth that jumps to `target` ends up, if it is dropped on the way; else nothing.
std::optional<std::int32_t> Translator::threadLogical(bool value, std::int32_t target) const {
    for (int hops = 0; hops < 64; ++hops) {
        const std::int32_t after = target + instructionTable[opAt(target)].width();
        switch (opAt(target)) {
        case OP_JT:
        case OP_JF:
            return value == (opAt(target) == OP_JT) ? block_.operandAt(target + 1) : after;
        case OP_LOGAND:
        case OP_LOGOR:
            if (value != (opAt(target) == OP_LOGOR)) {
                return after;
            }
            target = block_.operandAt(target + 1);
            break;
        case OP_LOGNOT:
            value = !value;
            target = after;
            break;
        case OP_DROP:
            return after;
        default:
            return {};
        }
    }
    return {};
}

// The branch that the instruction at `offset` is, if the value on top is gone behind it either way. Negations
// on the way turn its sense.
std::optional<Branch> Translator::branchAt(std::int32_t offset) const {
    bool sense = true;
    bool firstOp = true;
    for (; offset < block_.length(); firstOp = false) {
        if (!firstOp && isLabel(offset)) {
            return {};
        }
        const ESOpcode op = opAt(offset);
        const std::int32_t after = offset + instructionTable[op].width();
        switch (op) {
        case OP_LOGNOT:
            sense = !sense;
            offset = after;
            continue;
        case OP_JT:
        case OP_JF:
            return Branch{(op == OP_JT) == sense, block_.operandAt(offset + 1), after};
        case OP_LOGAND:
        case OP_LOGOR:
            if (const auto end = threadLogical(op == OP_LOGOR, block_.operandAt(offset + 1))) {
                return Branch{(op == OP_LOGOR) == sense, *end, after};
            }
            return {};
        default:
            return {};
        }
    }
    return {};
}

void Translator::findLabels() {
    labels_.assign(block_.code.size() + 1, false);
    for (std::int32_t offset = 0; offset < block_.length();) {
        const ESOpcode op = opAt(offset);
        if (depthAt_[static_cast<std::size_t>(offset)] != ESCodeBlock::unreached &&
            instructionTable[op].first == ESOperand::Target) {
            std::int32_t to = block_.operandAt(offset + 1);
            if (op == OP_LOGAND || op == OP_LOGOR) {
                to = threadLogical(op == OP_LOGOR, to).value_or(to);
            }
            labels_[static_cast<std::size_t>(threadJump(to))] = true;
        }
        offset += instructionTable[op].width();
    }
}

// Whether nobody else can come by the activation of a call: nothing takes hold of the scope, and no name that
// is looked for along it is one of the function's own. Then its variables may as well lie in the stack.
bool Translator::scopeIsItsOwn() const {
    if (block_.namesEvaluator || block_.localCount > ESContext::maxUncounted) {
        return false;
    }
    const auto isVariable = [&](ESAtom atom) {
        return std::any_of(block_.variables.begin(), block_.variables.end(),
                           [&](const ESProperty& variable) { return variable.atom == atom; });
    };
    for (std::int32_t offset = 0; offset < block_.length();
         offset += instructionTable[opAt(offset)].width()) {
        switch (opAt(offset)) {
        case OP_CLOSURE:
        case OP_WITH:
        case OP_DELETEW:
            return false;
        case OP_GETW:
        case OP_PUTW:
        case OP_CALLW:
        case OP_STR: // the name of a step, or a text that happens to be a variable's name
            if (isVariable(atomAt(block_.operandAt(offset + 1)))) {
                return false;
            }
            break;
        default:
            break;
        }
    }
    return true;
}

void Translator::run() {
    std::int32_t deepest = 0;
    depthAt_ = block_.depths(deepest);
    findLabels();
    cellAt_.assign(block_.code.size() + 1, 0);
    code_.argCount = block_.argCount;
    inRegisters_ = block_.needsActivation && scopeIsItsOwn();
    code_.needsActivation = block_.needsActivation && !inRegisters_;
    code_.localCount = code_.needsActivation ? 0 : block_.localCount;
    code_.uncounted = inRegisters_ ? block_.localCount : 0;
    base_ = static_cast<std::uint32_t>(code_.argCount + code_.localCount);
    for (offset_ = 0; offset_ < block_.length(); offset_ = next_) {
        const ESOpcode op = opAt(offset_);
        next_ = offset_ + instructionTable[op].width();
        const std::int32_t depth = depthAt_[static_cast<std::size_t>(offset_)];
        if (isLabel(offset_) && depth != ESCodeBlock::unreached) {
            if (flows_) {
                bringAllHome(stack_.size());
            }
            stack_.clear();
            while (stack_.size() < static_cast<std::size_t>(depth)) {
                pushHome();
            }
            flows_ = true;
            cellAt_[static_cast<std::size_t>(offset_)] = static_cast<std::uint32_t>(code_.cells.size());
        }
        if (flows_ && depth != ESCodeBlock::unreached) {
            translate(op);
        }
    }
    for (const Patch& patch : patches_) {
        ESCell& cell = code_.cells[patch.cell];
        (patch.high ? cell.operand.high : cell.operand.low) = cellAt_[static_cast<std::size_t>(patch.offset)];
    }
    code_.sites.resize(code_.cells.size());
}

void Translator::translate(ESOpcode op) {
    if (op <= OP_STR) {
        constants(op);
    } else if (op >= OP_ADD && op <= OP_USHRX) {
        binary(op);
    } else if (op >= OP_LT && op <= OP_NOTIDENTITY) {
        comparison(op);
    } else if (op >= OP_LOGAND && op <= OP_JLT) {
        jumps(op);
    } else if ((op >= OP_CALLW && op <= OP_CALLX) || op == OP_CALLV || op == OP_NEW || op == OP_NEWA) {
        calls(op);
    } else if (op == OP_GETF || op == OP_GETX || op == OP_PUTF || op == OP_PUTX || op == OP_INITF ||
               op == OP_DELETEX || op == OP_DELETEW || op >= OP_PREINCE) {
        properties(op);
    } else if ((op >= OP_GETW && op <= OP_PUTLM) || (op >= OP_INC && op <= OP_POSTDECX)) {
        variables(op);
    } else {
        others(op);
    }
}

void Translator::constants(ESOpcode op) {
    switch (op) {
    case OP_NUM:
        return pushConstant(numberValue(block_.numbers[first()]));
    case OP_NUM_M1:
        return pushConstant(numberValue(-1));
    case OP_NULL:
        return pushConstant(nullValue());
    case OP_TRUE:
    case OP_FALSE:
        return pushConstant(booleanValue(op == OP_TRUE));
    case OP_UNDEFINED:
        return pushConstant(undefinedValue());
    case OP_THIS:
        stack_.push_back({Entry::This, 0, undefinedValue()});
        return;
    case OP_STR:
        return pushConstant(atomValue(atomAt(static_cast<std::int32_t>(first()))));
    default:
        return pushConstant(numberValue(op - OP_NUM_0));
    }
}

void Translator::store(std::uint32_t reg) {
    const std::uint32_t value = popRegister();
    leaveRegister(reg);
    if (value != reg) {
        emit(ESFusedOp::Move, 0);
        operands(reg, value);
    }
}

// Room for what a search along the scope chain remembers.
void Translator::nameCache() { operands(0, nowhere); }

void Translator::variables(ESOpcode op) {
    const auto emitGet = [&](ESFusedOp fused) {
        const std::uint32_t i = first();
        const std::uint32_t to = destination();
        emit(fused, 0);
        operands(to, i);
        pushResult();
    };
    const auto emitPut = [&](ESFusedOp fused, std::uint32_t i) {
        const std::uint32_t value = popRegister();
        emit(fused, 0);
        operands(i, value);
    };
    const auto emitStep = [&](ESFusedOp fused, std::uint32_t i, bool up) {
        emit(fused, spAt(stack_.size()));
        operands(i, static_cast<std::uint32_t>(up ? 1 : -1));
    };
    const auto argCount = static_cast<std::uint32_t>(code_.argCount);
    switch (op) {
    case OP_GETA:
        return pushRegister(argument(first()));
    case OP_GETL:
        return pushRegister(local(first()));
    case OP_PUTA:
        return store(argument(first()));
    case OP_PUTL:
        return store(local(first()));
    case OP_GETG:
        return emitGet(ESFusedOp::GetGlobal);
    case OP_PUTG:
        return emitPut(ESFusedOp::PutGlobal, first());
    case OP_GETAM:
        return emitGet(ESFusedOp::GetSlot);
    case OP_GETLM: {
        const std::uint32_t i = argCount + first();
        const std::uint32_t to = destination();
        emit(ESFusedOp::GetSlot, 0);
        operands(to, i);
        return pushResult();
    }
    case OP_PUTAM:
        return emitPut(ESFusedOp::PutSlot, first());
    case OP_PUTLM:
        return emitPut(ESFusedOp::PutSlot, argCount + first());
    case OP_GETW: {
        const ESAtom name = atomAt(static_cast<std::int32_t>(first()));
        const std::int32_t sp = spAt(stack_.size());
        const std::uint32_t to = destination();
        emit(ESFusedOp::GetName, sp);
        operands(to, 0);
        atom(name);
        nameCache();
        return pushResult();
    }
    case OP_PUTW: {
        const std::size_t depth = stack_.size();
        const std::uint32_t value = popRegister();
        emit(ESFusedOp::PutName, spAt(depth));
        operands(value, 0);
        atom(atomAt(static_cast<std::int32_t>(first())));
        return nameCache();
    }
    case OP_INCA:
    case OP_DECA:
        leaveRegister(argument(first()));
        return emitStep(ESFusedOp::StepRegister, argument(first()), op == OP_INCA);
    case OP_INCL:
    case OP_DECL:
        leaveRegister(local(first()));
        return emitStep(ESFusedOp::StepRegister, local(first()), op == OP_INCL);
    case OP_INCG:
    case OP_DECG:
        return emitStep(ESFusedOp::StepGlobal, first(), op == OP_INCG);
    case OP_INCM:
    case OP_DECAM:
        return emitStep(ESFusedOp::StepSlot, first(), op == OP_INCM);
    case OP_INCLM:
    case OP_DECLM:
        return emitStep(ESFusedOp::StepSlot, argCount + first(), op == OP_INCLM);
    default: { // the steps by name
        const std::size_t depth = stack_.size();
        const Entry name = pop();
        const bool known = name.kind == Entry::Constant && name.constant.tag == ESTagAtom;
        const std::uint32_t nameRegister = known ? 0 : registerOf(name, depth);
        const std::uint32_t to = destination();
        emit(ESFusedOp::StepName, spAt(depth));
        operands(to, op);
        operands(0, nameRegister);
        atom(known ? name.constant.atom : nullptr);
        nameCache();
        return pushResult();
    }
    }
}

namespace {

bool isNumber(const Entry& entry) { return entry.kind == Entry::Constant && entry.constant.isNumber(); }

ESFusedOp offsetOp(ESFusedOp base, int distance) {
    return static_cast<ESFusedOp>(static_cast<int>(base) + distance);
}

bool isInt32Operator(ESOpcode op) { return op >= OP_BITAND && op <= OP_USHR; }

} // namespace

void Translator::binary(ESOpcode op) {
    const bool compound = (op - OP_ADD) % 2 == 1;
    if (compound) {
        const std::size_t depth = stack_.size();
        const Entry key = pop();
        if (key.kind == Entry::Constant && key.constant.tag == ESTagAtom &&
            key.constant.atom->arrayIndex == notAnIndex) {
            const std::uint32_t object = popRegister();
            const std::uint32_t value = popRegister();
            const std::uint32_t to = destination();
            emit(ESFusedOp::CompoundField, spAt(depth - 2));
            operands(to, object);
            atom(key.constant.atom);
            operands(nowhere, op);
            operands(value, 0);
            return pushResult();
        }
        const std::uint32_t keyRegister = registerOf(key, depth);
        const std::uint32_t object = popRegister();
        const std::uint32_t value = popRegister();
        const std::uint32_t to = destination();
        emit(ESFusedOp::CompoundIndexed, spAt(depth - 2));
        operands(to, object);
        operands(keyRegister, value);
        operands(op, 0);
        return pushResult();
    }
    const std::size_t depth = stack_.size();
    const Entry right = pop();
    const Entry left = pop();
    const int family = (op - OP_ADD) / 2; // ADD, SUB, MUL, DIV, MOD, BITAND, BITOR, BITXOR, SHL, SHR, USHR
    const std::int32_t sp = spAt(depth - 1);
    if (op == OP_ADD && readsByKey(next_)) {
        const std::uint32_t leftRegister = registerOf(left, depth - 1);
        const std::uint32_t rightRegister = registerOf(right, depth);
        emit(ESFusedOp::AddKey, sp);
        operands(home(stack_.size() + 1), leftRegister);
        operands(rightRegister, 0);
        return pushHome();
    }
    if (isNumber(right) && !isNumber(left)) {
        const std::uint32_t leftRegister = registerOf(left, depth - 1);
        const std::uint32_t to = destination();
        emit(offsetOp(ESFusedOp::AddRN, family), sp);
        operands(to, leftRegister);
        if (isInt32Operator(op)) {
            operands(static_cast<std::uint32_t>(ESContext::doubleToInt32(right.constant.number)), 0);
        } else {
            number(right.constant.number);
        }
        return pushResult();
    }
    if (isNumber(left) && !isNumber(right)) {
        const bool commutes = op == OP_MUL || op == OP_BITAND || op == OP_BITOR || op == OP_BITXOR;
        if (commutes || op == OP_ADD || op == OP_SUB || op == OP_DIV) {
            const std::uint32_t rightRegister = registerOf(right, depth);
            const std::uint32_t to = destination();
            const ESFusedOp fused = commutes       ? offsetOp(ESFusedOp::AddRN, family)
                                    : op == OP_ADD ? ESFusedOp::AddNR
                                    : op == OP_SUB ? ESFusedOp::SubNR
                                                   : ESFusedOp::DivNR;
            emit(fused, sp);
            operands(to, rightRegister);
            if (isInt32Operator(op)) {
                operands(static_cast<std::uint32_t>(ESContext::doubleToInt32(left.constant.number)), 0);
            } else {
                number(left.constant.number);
            }
            return pushResult();
        }
    }
    const std::uint32_t leftRegister = registerOf(left, depth - 1);
    const std::uint32_t rightRegister = registerOf(right, depth);
    const std::uint32_t to = destination();
    emit(offsetOp(ESFusedOp::AddRR, family), sp);
    operands(to, leftRegister);
    operands(rightRegister, 0);
    pushResult();
}

void Translator::unary(ESOpcode op, ESFusedOp fused) {
    if (op == OP_NEG && isNumber(stack_.back())) {
        stack_.back().constant.number = -stack_.back().constant.number;
        return;
    }
    const std::size_t depth = stack_.size();
    const std::uint32_t value = popRegister();
    const std::uint32_t to = destination();
    emit(fused, spAt(depth));
    operands(to, value);
    pushResult();
}

void Translator::comparison(ESOpcode op) {
    if (op == OP_IDENTITY && !isLabel(next_) && opAt(next_) == OP_JT_DROP) {
        return switchTest();
    }
    if (op <= OP_NE && next_ < block_.length() && !isLabel(next_)) {
        if (const auto branch = branchAt(next_)) {
            compareAndJump(op, *branch);
            next_ = branch->next;
            return;
        }
    }
    const std::size_t depth = stack_.size();
    const std::uint32_t right = popRegister();
    const std::uint32_t left = popRegister();
    const std::uint32_t to = destination();
    constexpr ESFusedOp plain[] = {ESFusedOp::Less, ESFusedOp::LessOrEqual, ESFusedOp::Equal,
                                   ESFusedOp::NotEqual, ESFusedOp::Identical};
    emit(plain[op - OP_LT], spAt(depth - 1));
    operands(to, left);
    operands(right, 0);
    pushResult();
}

// Takes the two operands off the picture and jumps on their comparison.
void Translator::compareAndJump(ESOpcode op, const Branch& branch) {
    const std::size_t depth = stack_.size();
    const Entry right = pop();
    const Entry left = pop();
    bringAllHome(stack_.size());
    const std::int32_t sp = spAt(depth - 1);
    const bool equality = op == OP_EQ || op == OP_NE;
    const int variant = equality ? (branch.jumpsOn == (op == OP_EQ) ? 0 : 1)
                                 : (op == OP_LE ? 2 : 0) + (branch.jumpsOn ? 0 : 1);
    if (isNumber(right) != isNumber(left)) {
        const bool rightIsNumber = isNumber(right);
        const Entry& other = rightIsNumber ? left : right;
        const std::uint32_t reg = registerOf(other, rightIsNumber ? depth - 1 : depth);
        const ESFusedOp base = equality        ? ESFusedOp::JumpEqualRN
                               : rightIsNumber ? ESFusedOp::JumpLessRN
                                               : ESFusedOp::JumpLessNR;
        emit(offsetOp(base, variant), sp);
        operands(reg, 0);
        target(branch.target, true);
        number((rightIsNumber ? right : left).constant.number);
        return;
    }
    const std::uint32_t leftRegister = registerOf(left, depth - 1);
    const std::uint32_t rightRegister = registerOf(right, depth);
    emit(offsetOp(equality ? ESFusedOp::JumpEqualRR : ESFusedOp::JumpLessRR, variant), sp);
    operands(leftRegister, rightRegister);
    operands(0, 0);
    target(branch.target, false);
}

void Translator::truthJump(const Branch& branch) {
    const std::uint32_t value = popRegister();
    bringAllHome(stack_.size());
    emit(branch.jumpsOn ? ESFusedOp::JumpTrue : ESFusedOp::JumpFalse, 0);
    operands(value, 0);
    target(branch.target, true);
}

// IDENTITY with the JT_DROP behind it: the discriminant stays unless the case matches.
void Translator::switchTest() {
    const std::size_t depth = stack_.size();
    const Entry test = pop();
    const std::uint32_t discriminant = popRegister();
    const std::int32_t to = block_.operandAt(next_ + 1);
    next_ += instructionTable[OP_JT_DROP].width();
    bringAllHome(stack_.size() - 1);
    if (isNumber(test)) {
        emit(ESFusedOp::JumpIdenticalRN, spAt(depth - 1));
        operands(discriminant, 0);
        target(to, true);
        number(test.constant.number);
        return;
    }
    const std::uint32_t reg = registerOf(test, depth);
    emit(ESFusedOp::JumpIdenticalRR, spAt(depth - 1));
    operands(discriminant, reg);
    operands(0, 0);
    target(to, false);
}

void Translator::jumps(ESOpcode op) {
    const std::int32_t to = block_.operandAt(offset_ + 1);
    switch (op) {
    case OP_J:
        bringAllHome(stack_.size());
        emit(ESFusedOp::Jump, 0);
        operands(0, 0);
        target(to, false);
        flows_ = false;
        return;
    case OP_JLT:
        return compareAndJump(OP_LT, {true, to, next_});
    case OP_JT:
    case OP_JF:
        return truthJump({op == OP_JT, to, next_});
    case OP_JT_DROP: {
        const std::uint32_t value = popRegister();
        bringAllHome(stack_.size() - 1);
        emit(ESFusedOp::JumpTrue, 0);
        operands(value, 0);
        return target(to, true);
    }
    default: // LOGAND, LOGOR
        if (const auto branch = branchAt(offset_)) {
            return truthJump(*branch);
        }
        bringAllHome(stack_.size());
        emit(op == OP_LOGOR ? ESFusedOp::JumpTrue : ESFusedOp::JumpFalse, 0);
        operands(stack_.back().reg, 0);
        target(to, true);
        stack_.pop_back();
        return;
    }
}

// object key -> value; `sp` counts the entries that the loop over the bytes has in use then.
void Translator::getIndexed(std::size_t sp) {
    const std::uint32_t key = popRegister();
    const std::uint32_t object = popRegister();
    const std::uint32_t to = destination();
    emit(ESFusedOp::GetIndexed, spAt(sp));
    operands(to, object);
    operands(key, 0);
    pushResult();
}

// value object key ->
void Translator::putIndexed(std::size_t sp) {
    const std::uint32_t key = popRegister();
    const std::uint32_t object = popRegister();
    const std::uint32_t value = popRegister();
    emit(ESFusedOp::PutIndexed, spAt(sp));
    operands(object, key);
    operands(value, 0);
}

void Translator::properties(ESOpcode op) {
    const std::size_t depth = stack_.size();
    switch (op) {
    case OP_GETF: {
        const ESAtom name = atomAt(static_cast<std::int32_t>(first()));
        if (name->arrayIndex != notAnIndex) { // a[3] is a.3 to the compiler, and an element all the same
            pushConstant(numberValue(name->arrayIndex));
            return getIndexed(depth);
        }
        if (stack_.back().kind == Entry::This) {
            stack_.pop_back();
            const std::uint32_t to = destination();
            emit(ESFusedOp::GetFieldThis, spAt(depth));
            operands(to, 0);
            atom(name);
            operands(0, 0);
            return pushResult();
        }
        const std::uint32_t object = popRegister();
        const std::uint32_t to = destination();
        emit(ESFusedOp::GetField, spAt(depth));
        operands(to, object);
        atom(name);
        operands(0, 0);
        return pushResult();
    }
    case OP_PUTF: {
        const ESAtom name = atomAt(static_cast<std::int32_t>(first()));
        if (name->arrayIndex != notAnIndex) {
            pushConstant(numberValue(name->arrayIndex));
            return putIndexed(depth - 1);
        }
        const bool onThis = stack_.back().kind == Entry::This;
        const std::uint32_t object = onThis ? 0 : popRegister();
        if (onThis) {
            stack_.pop_back();
        }
        const std::uint32_t value = popRegister();
        emit(onThis ? ESFusedOp::PutFieldThis : ESFusedOp::PutField, spAt(depth - 1));
        operands(object, value);
        atom(name);
        return operands(nowhere, 0);
    }
    case OP_INITF: {
        const std::uint32_t value = popRegister();
        bringHome(stack_.size() - 1);
        emit(ESFusedOp::InitField, spAt(depth - 1));
        operands(stack_.back().reg, value);
        atom(atomAt(static_cast<std::int32_t>(first())));
        return operands(0, 0);
    }
    case OP_GETX:
        return getIndexed(depth - 1);
    case OP_DELETEX: {
        const std::uint32_t key = popRegister();
        const std::uint32_t object = popRegister();
        const std::uint32_t to = destination();
        emit(ESFusedOp::DeleteIndexed, spAt(depth - 1));
        operands(to, object);
        operands(key, 0);
        return pushResult();
    }
    case OP_PUTX:
        return putIndexed(depth - 2);
    case OP_DELETEW: {
        const ESAtom name = atomAt(static_cast<std::int32_t>(first()));
        const std::uint32_t to = destination();
        emit(ESFusedOp::DeleteName, spAt(depth + 1));
        operands(to, 0);
        atom(name);
        return pushResult();
    }
    default: { // the steps of an element
        const Entry key = pop();
        const bool named = key.kind == Entry::Constant && key.constant.tag == ESTagAtom &&
                           key.constant.atom->arrayIndex == notAnIndex;
        const std::uint32_t keyRegister = named ? 0 : registerOf(key, depth);
        const std::uint32_t object = popRegister();
        const std::uint32_t to = destination();
        emit(named ? ESFusedOp::StepField : ESFusedOp::StepIndexed, spAt(depth - 1));
        operands(to, object);
        if (named) {
            atom(key.constant.atom);
            operands(nowhere, op);
        } else {
            operands(keyRegister, op);
        }
        return pushResult();
    }
    }
}

// The arguments are the top `count` entries of the picture; the cells behind count and callee are the
// caller's to add, before pushResult().
void Translator::call(ESFusedOp op, std::uint32_t count, std::uint32_t callee) {
    for (std::size_t i = stack_.size() - count; i < stack_.size(); ++i) {
        if (stack_[i].kind != Entry::Home) {
            bringHome(i);
        }
    }
    const std::int32_t sp = spAt(stack_.size() + 1);
    stack_.resize(stack_.size() - count);
    const std::uint32_t arguments = home(stack_.size() + 1);
    const std::uint32_t to = destination();
    emit(op, sp);
    operands(to, arguments);
    operands(count, callee);
}

void Translator::calls(ESOpcode op) {
    const bool oneOperand = op == OP_CALLX || op == OP_CALLV || op == OP_NEWA;
    const std::uint32_t count = op == OP_NEW ? 0 : oneOperand ? first() : second();
    const auto bringArgumentsHome = [&] {
        for (std::size_t i = stack_.size() - count; i < stack_.size(); ++i) {
            if (stack_[i].kind != Entry::Home) {
                bringHome(i);
            }
        }
    };
    switch (op) {
    case OP_CALLG:
        call(ESFusedOp::CallGlobal, count, first());
        break;
    case OP_CALLA:
        call(ESFusedOp::CallRegister, count, argument(first()));
        break;
    case OP_CALLL:
        call(ESFusedOp::CallRegister, count, local(first()));
        break;
    case OP_CALLAM:
    case OP_CALLLM: {
        bringArgumentsHome();
        const std::uint32_t fn = home(stack_.size() + 1);
        emit(ESFusedOp::GetSlot, 0);
        operands(fn, first() + (op == OP_CALLLM ? static_cast<std::uint32_t>(code_.argCount) : 0));
        call(ESFusedOp::CallRegister, count, fn);
        break;
    }
    case OP_CALLV:
    case OP_NEW:
    case OP_NEWA: {
        const std::uint32_t fn = popRegister();
        call(op == OP_CALLV ? ESFusedOp::CallRegister : ESFusedOp::New, count, fn);
        break;
    }
    case OP_CALLF: {
        const bool onThis = stack_.back().kind == Entry::This;
        const std::uint32_t object = onThis ? thisOperand : popRegister();
        if (onThis) {
            stack_.pop_back();
        }
        call(ESFusedOp::CallField, count, object);
        atom(atomAt(static_cast<std::int32_t>(first())));
        operands(0, 0);
        break;
    }
    case OP_CALLX: {
        const std::uint32_t key = popRegister();
        const std::uint32_t object = popRegister();
        call(ESFusedOp::CallIndexed, count, object);
        operands(key, 0);
        break;
    }
    default: // CALLW
        call(ESFusedOp::CallName, count, 0);
        atom(atomAt(static_cast<std::int32_t>(first())));
        nameCache();
        break;
    }
    pushResult();
}

// How many properties the initialiser that begins here defines: its definitions stand one above its object.
std::uint32_t Translator::countInitialisers() const {
    const std::int32_t depth = depthAt_[static_cast<std::size_t>(offset_)] + 1;
    std::uint32_t count = 0;
    for (std::int32_t offset = next_; offset < block_.length();
         offset += instructionTable[opAt(offset)].width()) {
        const std::int32_t here = depthAt_[static_cast<std::size_t>(offset)];
        if (here < depth) {
            break;
        }
        count += opAt(offset) == OP_INITF && here == depth + 1 ? 1 : 0;
    }
    return count;
}

void Translator::others(ESOpcode op) {
    const std::size_t depth = stack_.size();
    switch (op) {
    case OP_DROP:
        stack_.pop_back();
        return;
    case OP_DUP: {
        const Entry top = stack_.back();
        stack_.push_back(top);
        if (top.kind == Entry::Home) {
            stack_.back() = {Entry::Register, top.reg, undefinedValue()};
        }
        return;
    }
    case OP_VOID:
        stack_.pop_back();
        return pushConstant(undefinedValue());
    case OP_TYPEOF:
        return unary(op, ESFusedOp::TypeOf);
    case OP_LOGNOT:
        if (const auto branch = branchAt(offset_)) {
            truthJump(*branch);
            next_ = branch->next;
            return;
        }
        return unary(op, ESFusedOp::Not);
    case OP_BITNOT:
        return unary(op, ESFusedOp::BitNot);
    case OP_POS:
        return unary(op, ESFusedOp::ToNumber);
    case OP_NEG:
        return unary(op, ESFusedOp::Negate);
    case OP_ENUM:
        return unary(op, ESFusedOp::Enumerate);
    case OP_NEXT: {
        const std::uint32_t enumerator = popRegister();
        bringAllHome(stack_.size());
        emit(ESFusedOp::NextName, spAt(depth));
        operands(home(depth), enumerator);
        operands(0, 0);
        return target(block_.operandAt(offset_ + 1), false);
    }
    case OP_CLOSURE: {
        const std::uint32_t index = first();
        const std::uint32_t to = destination();
        emit(ESFusedOp::Closure, spAt(depth + 1));
        operands(to, index);
        return pushResult();
    }
    case OP_MKARRAY: {
        const std::uint32_t count = first();
        for (std::size_t i = depth - count; i < depth; ++i) {
            if (stack_[i].kind != Entry::Home) {
                bringHome(i);
            }
        }
        stack_.resize(depth - count);
        const std::uint32_t values = home(stack_.size() + 1);
        const std::uint32_t to = destination();
        emit(ESFusedOp::MakeArray, spAt(depth));
        operands(to, values);
        operands(count, 0);
        return pushResult();
    }
    case OP_NEWOBJ: {
        const std::uint32_t properties = countInitialisers();
        const std::uint32_t to = destination();
        emit(ESFusedOp::NewObject, 0);
        operands(to, properties);
        return pushResult();
    }
    case OP_WITH: {
        const std::uint32_t object = popRegister();
        emit(ESFusedOp::With, spAt(depth));
        return operands(object, 0);
    }
    case OP_ENDWITH:
        return emit(ESFusedOp::EndWith, 0);
    case OP_RET: {
        const std::uint32_t value = popRegister();
        emit(ESFusedOp::Return, 0);
        operands(value, 0);
        flows_ = false;
        return;
    }
    case OP_RETU:
        emit(ESFusedOp::ReturnUndefined, 0);
        flows_ = false;
        return;
    default:
        throw ESFatalError{QStringLiteral("compiler error: instruction without a meaning")};
    }
}

} // namespace

ESFusedCode& fusedCodeOf(ESCodeBlock& block, const void* const* handlers) {
    if (block.fused == nullptr) {
        auto code = std::make_unique<ESFusedCode>(block);
        Translator(block, *code, handlers).run();
        if (code->needsActivation) {
            const auto count = static_cast<std::size_t>(block.argCount + block.localCount);
            for (std::size_t i = 0; i < count; ++i) {
                ESProperty slot{};
                const bool named = i < block.variables.size();
                slot.atom = named ? block.variables[i].atom : nullptr;
                slot.attributes = named ? block.variables[i].attributes : std::uint32_t{DontEnum};
                code->activationTemplate.push_back(slot);
            }
        }
        block.fused = std::move(code);
    }
    return *block.fused;
}
