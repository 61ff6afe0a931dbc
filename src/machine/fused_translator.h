// The translator from a block's bytes to the fused form: one walk with a picture of the stack. An entry of
// the picture either lies in its home register, or is known to be a variable, a constant or `this` and is not
// moved before somebody needs it there. At labels and jumps every entry is at home. fused_translator.cpp has
// the walk and the picture, translate_*.cpp what becomes of each instruction.
#pragma once

#include "machine/code_block.h"
#include "machine/fused_code.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <vector>

// One value of the picture.
struct ESFusedEntry {
    enum Kind : std::uint8_t { Home, Register, Constant, This } kind;
    std::uint32_t reg;
    ESValue constant;
};

// The values of the picture, from the bottom. Those below settled() are at home for sure, so that a literal
// of thousands of elements need not be walked anew for each of them.
class ESFusedPicture {
public:
    std::size_t size() const { return entries_.size(); }
    std::size_t settled() const { return settled_; }
    ESFusedEntry& operator[](std::size_t i) { return entries_[i]; }
    ESFusedEntry& back() { return entries_.back(); }
    void push(const ESFusedEntry& entry) { entries_.push_back(entry); }
    void pop() { cut(entries_.size() - 1); }
    void cut(std::size_t size) {
        entries_.resize(size);
        settled_ = std::min(settled_, size);
    }
    void settle(std::size_t below) { settled_ = std::max(settled_, below); }

private:
    std::vector<ESFusedEntry> entries_;
    std::size_t settled_ = 0;
};

// Where a branch goes on a truth value, and where the code goes on otherwise.
struct ESFusedBranch {
    bool jumpsOn;
    std::int32_t target;
    std::int32_t next;
};

class ESFusedTranslator {
public:
    ESFusedTranslator(ESCodeBlock& block, ESFusedCode& code, const void* const* handlers)
        : block_(block), code_(code), handlers_(handlers) {}
    // Fills the code; to be called once.
    void run();

private:
    static constexpr std::uint32_t bytesPerRegister = sizeof(ESValue);

    // --- The block's bytes ---
    ESOpcode opAt(std::int32_t offset) const;
    std::uint32_t first() const { return block_.operandAt(offset_ + 1); }
    std::uint32_t second() const { return block_.operandAt(offset_ + 3); }
    bool isLabel(std::int32_t offset) const { return labels_[static_cast<std::size_t>(offset)]; }
    bool scopeIsItsOwn() const;
    bool readsByKey(std::int32_t offset) const;
    void findLabels();
    void countInitialisers(std::int32_t deepest);
    void standAtLabel(std::size_t depth);
    std::int32_t threadJump(std::int32_t target) const;
    std::optional<std::int32_t> threadLogical(bool value, std::int32_t target) const;
    std::optional<ESFusedBranch> branchAt(std::int32_t offset) const;

    // --- The picture of the stack ---
    std::uint32_t home(std::size_t depth) const { // depth counts from 1
        return (base_ + static_cast<std::uint32_t>(depth)) * bytesPerRegister;
    }
    void pushHome() { stack_.push({ESFusedEntry::Home, home(stack_.size() + 1), undefinedValue()}); }
    void pushRegister(std::uint32_t reg) { stack_.push({ESFusedEntry::Register, reg, undefinedValue()}); }
    void pushConstant(const ESValue& v) { stack_.push({ESFusedEntry::Constant, 0, v}); }
    void bringHome(std::size_t index);
    void bringAllHome(std::size_t below);
    void leaveRegister(std::uint32_t reg);
    std::uint32_t registerOf(const ESFusedEntry& entry, std::size_t depth);
    ESFusedEntry pop() {
        const ESFusedEntry entry = stack_.back();
        stack_.pop();
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
    void binary(ESOpcode op);
    void unary(ESOpcode op, ESFusedOp fused);
    void comparison(ESOpcode op);
    void compareAndJump(ESOpcode op, const ESFusedBranch& branch);
    void truthJump(const ESFusedBranch& branch);
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
    std::unordered_map<std::int32_t, std::uint32_t> initialisers_; // of the NEWOBJ at an offset
    ESFusedPicture stack_;
    std::uint32_t base_ = 0; // registers before the home of depth 0
    std::int32_t offset_ = 0;
    std::int32_t next_ = 0;
    bool inRegisters_ = false; // the variables that the bytes keep in an activation
    bool flows_ = true;        // the code before this instruction leads here
    bool stored_ = false;      // the result went straight to a variable, and the store is consumed
};
