#include "machine/listing.h"

#include "runtime/atom.h"

#include <cstdarg>
#include <cstdio>
#include <string>

std::ostream* debugStream = nullptr;
std::uint8_t debugFlags = 0;

namespace {

std::string formatted(const char* format, auto... arguments) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, format, arguments...);
    return buffer;
}

std::string latin1(ESAtom atom) {
    return atom == nullptr ? std::string("(null)") : atom->toString().toLatin1().toStdString();
}

std::string variableName(const ESCodeBlock& block, std::int32_t position) {
    const auto index = static_cast<std::size_t>(position);
    return index < block.variables.size() ? latin1(block.variables[index].atom) : std::string("(null)");
}

std::string operandText(const ESObject* globalObject, const ESCodeBlock& block, ESOperand kind,
                        std::uint16_t value) {
    switch (kind) {
    case ESOperand::Num:
        return formatted("%g", block.numbers[value]);
    case ESOperand::Atom:
        return latin1(atomAt(value));
    case ESOperand::Slot: {
        const bool known = value < globalObject->properties.count();
        return latin1(known ? globalObject->properties.at(value).atom : nullptr) +
               formatted(" [idx=%d]", static_cast<int>(value));
    }
    case ESOperand::Arg:
        return variableName(block, value);
    case ESOperand::Loc:
        return variableName(block, block.argCount + value);
    case ESOperand::Func:
    case ESOperand::Count:
        return formatted("#%d", static_cast<int>(value));
    case ESOperand::Target:
        return formatted("%04x", static_cast<unsigned>(value));
    case ESOperand::None:
        break;
    }
    return {};
}

} // namespace

std::int32_t listInstruction(const ESObject* globalObject, const ESCodeBlock& block, std::int32_t offset) {
    const std::uint8_t opcode = block.code[static_cast<std::size_t>(offset)];
    std::string text = formatted("%04x:  ", static_cast<unsigned>(offset));
    std::int32_t next = offset + 1;
    if (opcode < instructionCount && opcode != OP_NOTIDENTITY) {
        const ESInstruction& instruction = instructionTable[opcode];
        text += instruction.mnemonic;
        if (instruction.first != ESOperand::None) {
            text += '\t' + operandText(globalObject, block, instruction.first, block.operandAt(offset + 1));
        }
        if (instruction.second != ESOperand::None) {
            text += ", " + operandText(globalObject, block, instruction.second, block.operandAt(offset + 3));
        }
        next = offset + instruction.width();
    }
    if (debugStream != nullptr) {
        *debugStream << text;
    }
    return next;
}

void listBlock(const ESObject* globalObject, const ESCodeBlock& block) {
    if (debugStream == nullptr) {
        return;
    }
    *debugStream << "\n\n";
    for (std::int32_t offset = 0; offset < block.length();) {
        offset = listInstruction(globalObject, block, offset);
        *debugStream << "\n";
    }
}
