#include "elf/elf_section.h"

#include "elf/elf_file.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

namespace {

struct ValueName {
    std::uint32_t value;
    const char* name;
};

constexpr auto typeNames = std::to_array<ValueName>({
    {SHT_NULL, "NULL"},
    {SHT_PROGBITS, "PROGBITS"},
    {SHT_SYMTAB, "SYMTAB"},
    {SHT_STRTAB, "STRTAB"},
    {SHT_RELA, "RELA"},
    {SHT_HASH, "HASH"},
    {SHT_DYNAMIC, "DYNAMIC"},
    {SHT_NOTE, "NOTE"},
    {SHT_NOBITS, "NOBITS"},
    {SHT_REL, "REL"},
    {SHT_SHLIB, "SHLIB"},
    {SHT_DYNSYM, "DYNSYM"},
    {SHT_INIT_ARRAY, "INIT_ARRAY"},
    {SHT_FINI_ARRAY, "FINI_ARRAY"},
    {SHT_PREINIT_ARRAY, "PREINIT_ARRAY"},
    {SHT_GROUP, "GROUP"},
    {SHT_ARM_EXIDX, "ARM_EXIDX"},
    {SHT_ARM_PREEMPTMAP, "ARM_PREEMPTMAP"},
    {SHT_ARM_ATTRIBUTES, "ARM_ATTRIBUTES"},
});

constexpr auto flagNames = std::to_array<ValueName>({
    {SHF_WRITE, "WRITE"},
    {SHF_ALLOC, "ALLOC"},
    {SHF_EXECINSTR, "EXECINSTR"},
    {SHF_MERGE, "MERGE"},
    {SHF_STRINGS, "STRINGS"},
    {SHF_INFO_LINK, "INFO_LINK"},
    {SHF_LINK_ORDER, "LINK_ORDER"},
    {SHF_GROUP, "GROUP"},
    {SHF_TLS, "TLS"},
});

std::string namesOfFlags(std::uint32_t flags) {
    std::string names;
    for (const ValueName& flag : flagNames) {
        if ((flags & flag.value) != 0) {
            names.append(names.empty() ? "" : " ").append(flag.name);
        }
    }
    return names;
}

void printField(const char* field, std::uint32_t value) { std::printf("%-12s: 0x%X\n", field, value); }

void printField(const char* field, std::uint32_t value, const std::string& meaning) {
    std::printf("%-12s: 0x%X %s\n", field, value, meaning.c_str());
}

} // namespace

void ElfSection::dump() const {
    const auto* type = std::find_if(typeNames.begin(), typeNames.end(),
                                    [this](const ValueName& name) { return name.value == header.sh_type; });
    std::puts("section header");
    printField("sh_name", header.sh_name, std::string(file->sectionName(*this)));
    printField("sh_type", header.sh_type, type == typeNames.end() ? "unknown" : type->name);
    printField("sh_flags", header.sh_flags, namesOfFlags(header.sh_flags));
    printField("sh_addr", header.sh_addr);
    printField("sh_offset", header.sh_offset);
    printField("sh_size", header.sh_size);
    printField("sh_link", header.sh_link);
    printField("sh_info", header.sh_info);
    printField("sh_addralign", header.sh_addralign);
    printField("sh_entsize", header.sh_entsize);
}
