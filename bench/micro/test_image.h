// Images for benchmarks, made once for each shape and loaded from a temporary folder.
#pragma once

#include "elf/elf_file.h"
#include "elf_builder.h"
#include "temporary_folder.h"

#include <algorithm>
#include <string>

constexpr std::uint32_t imageBase = 0x08000000;

// Mangled names of functions as they come from classes in namespaces: 16 to a class, and every member name
// that of many classes.
inline std::string mangledName(std::uint32_t i) {
    const auto part = [](const std::string& text) { return std::to_string(text.size()) + text; };
    return "_ZN" + part("board" + std::to_string(i % 7)) + part("Device" + std::to_string(i / 16)) +
           part("transfer" + std::to_string(i % 4099)) + "EPKhj";
}
inline std::string demangledName(std::uint32_t i) {
    return "board" + std::to_string(i % 7) + "::Device" + std::to_string(i / 16) + "::transfer" +
           std::to_string(i % 4099) + "(unsigned char const*, unsigned int)";
}

// A file of an image, gone with the object.
class TestImage {
public:
    // Segments of a size, each followed by a gap, and function symbols.
    TestImage(std::uint32_t segments, std::uint32_t size, std::uint32_t gap, std::uint32_t symbols) {
        ElfBuilder builder(false);
        for (std::uint32_t i = 0; i < segments; ++i) {
            const std::uint32_t address = imageBase + i * (size + gap);
            builder.programs.push_back({address, address, countingBytes(size)});
        }
        builder.sections.push_back({".text", SHT_PROGBITS, {}});
        for (std::uint32_t i = 0; i < symbols; ++i) {
            builder.symbols.push_back({mangledName(i), imageBase + 4 * i + 1, STT_FUNC});
        }
        folder_.write("image", builder.build());
    }

    FilePath path() const { return FilePath(folder_.file("image").c_str()); }

private:
    TemporaryFolder folder_;
};
