#include "hostobjects/elf_file_class.h"

#include "runtime/context.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace {

enum Member : std::int32_t { Load, Save, PeekUint32, PokeUint32, PeekBytes, PokeBytes, Crc32, SymbolValue };

constexpr ESMember members[] = {
    {"load", 1, Load, "<b>ElfFile.load(path)</b> loads Elf file from <i>path</i>."},
    {"save", 1, Save, "<b>ElfFile.save(path)</b> saves Elf file to <i>path</i>."},
    {"peekUint32", 2, PeekUint32,
     "<b>ElfFile.peekUint32(address, virtualNotPhysical)</b> returns a 32-bit word peeked from "
     "<i>address</i>. If <i>virtualNotPhysical</i> is true or undefined, <i>address</i> is a virtual address "
     "otherwise it is a physical address."},
    {"pokeUint32", 3, PokeUint32,
     "<b>ElfFile.pokeUint32(address, value, virtualNotPhysical)</b> poke a <i>value</i> to 32-bit word "
     "located "
     "at <i>address</i>. If <i>virtualNotPhysical</i> is true or undefined, <i>address</i> is a virtual "
     "address otherwise it is a physical address."},
    {"peekBytes", 4, PeekBytes,
     "<b>ElfFile.peekBytes(address, length, virtualNotPhysical, padding)</b> returns byte array containing "
     "<i>length</i> bytes peeked from <i>address</i>. If <i>virtualNotPhysical</i> is true or undefined, "
     "<i>address</i> is a virtual address otherwise it is a physical address. If <i>padding</i> is defined, "
     "it specifies the byte value used to fill gaps in the program."},
    {"pokeBytes", 3, PokeBytes,
     "<b>ElfFile.pokeBytes(address, byteArray, virtualNotPhysical)</b> poke byte array <i>byteArray</i> to "
     "<i>address</i>. If <i>virtualNotPhysical</i> is true or undefined, <i>address</i> is a virtual address "
     "otherwise it is a physical address."},
    {"crc32", 4, Crc32,
     "<b>ElfFile.crc(address, length, virtualNotPhysical, padding)</b> returns the CRC32 value of "
     "<i>length</i> bytes located at <i>address</i>. If <i>virtualNotPhysical</i> is true or undefined, "
     "<i>address</i> is a virtual address otherwise it is a physical address. If <i>padding</i> is defined, "
     "it specifies the byte value used to fill gaps in the program."},
    {"symbolValue", 1, SymbolValue,
     "<b>ElfFile.symbolValue(symbol)</b> returns the value of <i>symbol</i> in Elf file."},
};

AddressSpace spaceOf(ESContext& ctx, const ESValue& virtualNotPhysical) {
    const bool isVirtual = virtualNotPhysical.isUndefined() || ctx.toBoolean(virtualNotPhysical);
    return isVirtual ? AddressSpace::Virtual : AddressSpace::Physical;
}

// What peekBytes and crc32 are asked for.
struct Range {
    std::uint32_t address;
    std::uint32_t length;
    AddressSpace space;
    std::uint8_t padding;
};

// Converts (address, length, virtualNotPhysical, padding): 1. the length, 2. the flag and then, unless the
// length is 0 or negative, 3. the padding, 4. the address. Nothing for such a length.
std::optional<Range> rangeOf(ESContext& ctx, const ESValue* argv) {
    Range range{};
    range.length = ctx.toUint32(argv[1]);
    range.space = spaceOf(ctx, argv[2]);
    if (static_cast<std::int32_t>(range.length) <= 0) {
        return std::nullopt;
    }
    range.padding =
        argv[3].isUndefined() ? std::uint8_t{0} : static_cast<std::uint8_t>(ctx.toUint32(argv[3]));
    range.address = ctx.toUint32(argv[0]);
    return range;
}

} // namespace

ElfFileESClass::ElfFileESClass() : ESClass("ElfFile") {}

ESObject* ElfFileESClass::init(ESContext& ctx) {
    ESObject* object = ESClass::init(ctx);
    defineMembers(ctx, object, members, this, name, ESMemberNaming::Prototype);
    return object;
}

void ElfFileESClass::call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc,
                          ESValue* argv) {
    switch (fn->memberIndex) {
    case Load:
        file_.load(FilePath(ctx.toString(argv[0])));
        argv[0] = undefinedValue();
        return;
    case Save:
        file_.save(FilePath(ctx.toString(argv[0])));
        argv[0] = undefinedValue();
        return;
    case PeekUint32:
        argv[0] = peekUint32(ctx, argv);
        return;
    case PokeUint32:
        pokeUint32(ctx, argv);
        argv[0] = undefinedValue();
        return;
    case PeekBytes:
        argv[0] = peekBytes(ctx, argv);
        return;
    case PokeBytes:
        argv[0] = booleanValue(pokeBytes(ctx, argv));
        return;
    case Crc32:
        argv[0] = crc32(ctx, argv);
        return;
    case SymbolValue:
        argv[0] = symbolValue(ctx, argv[0]);
        return;
    default:
        ESClass::call(ctx, fn, thisObject, argc, argv);
    }
}

ESValue ElfFileESClass::peekUint32(ESContext& ctx, const ESValue* argv) {
    const AddressSpace space = spaceOf(ctx, argv[1]);
    const auto bytes = file_.bytesAt(ctx.toUint32(argv[0]), 4, space);
    return bytes ? numberValue(readWord(*bytes, file_.byteOrder())) : undefinedValue();
}

void ElfFileESClass::pokeUint32(ESContext& ctx, const ESValue* argv) {
    // 1. the flag, 2. the address, 3. the value, but only for an address that can be written.
    const AddressSpace space = spaceOf(ctx, argv[2]);
    const std::uint32_t address = ctx.toUint32(argv[0]);
    if (!file_.bytesAt(address, 4, space)) {
        return;
    }
    const std::uint32_t value = ctx.toUint32(argv[1]);
    // Converting can run script, which can have loaded another file.
    if (const auto bytes = file_.bytesAt(address, 4, space)) {
        writeWord(*bytes, value, file_.byteOrder());
    }
}

ESValue ElfFileESClass::peekBytes(ESContext& ctx, const ESValue* argv) {
    constexpr std::uint32_t mostElements = 0x40000000; // of an array
    const auto range = rangeOf(ctx, argv);
    if (!range) {
        return undefinedValue();
    }
    if (range->length > mostElements) {
        ctx.raiseRangeError("length too large");
    }
    if (const auto bytes = file_.wholeRange(range->address, range->length, range->space)) {
        return ctx.bytesToArray(bytes->data(), bytes->size());
    }
    std::vector<std::uint8_t> bytes(range->length);
    file_.copyRange(range->address, bytes, range->space, range->padding);
    return ctx.bytesToArray(bytes.data(), bytes.size());
}

bool ElfFileESClass::pokeBytes(ESContext& ctx, const ESValue* argv) {
    // 1. the array, 2. the flag, 3. the address.
    const std::vector<std::uint8_t> source = ctx.arrayToBytes(argv[1]);
    const AddressSpace space = spaceOf(ctx, argv[2]);
    const std::uint32_t address = ctx.toUint32(argv[0]);
    const auto target = file_.bytesAt(address, source.size(), space);
    if (source.empty() || !target) {
        return false;
    }
    std::copy(source.begin(), source.end(), target->begin());
    return true;
}

ESValue ElfFileESClass::crc32(ESContext& ctx, const ESValue* argv) {
    const auto range = rangeOf(ctx, argv);
    return range ? numberValue(file_.crc32(range->address, range->length, range->space, range->padding))
                 : undefinedValue();
}

ESValue ElfFileESClass::symbolValue(ESContext& ctx, const ESValue& symbol) {
    const ElfSymbol* found = file_.findSymbol(ctx.toString(symbol).toLatin1().constData());
    return found != nullptr ? numberValue(found->value) : undefinedValue();
}
