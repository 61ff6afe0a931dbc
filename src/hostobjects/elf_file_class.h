// The script object ElfFile: one image for the whole run, to load, inspect, patch and save. What its members
// do stands in elf_file.h; here are the conversions, in the order in which scripts can observe them.
#pragma once

#include "elf/elf_file.h"
#include "runtime/native_class.h"

// To be created before any script runs, given `init`, and kept until the context is gone.
class ElfFileESClass : public ESClass {
public:
    ElfFileESClass();
    ESObject* init(ESContext& ctx) override;
    void call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc, ESValue* argv) override;

private:
    ESValue peekUint32(ESContext& ctx, const ESValue* argv);
    void pokeUint32(ESContext& ctx, const ESValue* argv);
    ESValue peekBytes(ESContext& ctx, const ESValue* argv);
    bool pokeBytes(ESContext& ctx, const ESValue* argv);
    ESValue crc32(ESContext& ctx, const ESValue* argv);
    ESValue symbolValue(ESContext& ctx, const ESValue& symbol);

    ElfFile file_;
};
