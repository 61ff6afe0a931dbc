// Runs a target on kept inputs where there is no fuzzer: replay FILE_OR_FOLDER... Prints how many there were.
#include "fuzz_target.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

int main(int argc, char** argv) {
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i) {
        if (!std::filesystem::is_directory(argv[i])) {
            files.emplace_back(argv[i]);
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    for (const std::filesystem::path& file : files) {
        std::ifstream stream(file, std::ios::binary);
        if (!stream) {
            std::fprintf(stderr, "cannot read %s\n", file.c_str());
            return EXIT_FAILURE;
        }
        const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
        std::fprintf(stderr, "%s\n", file.c_str()); // so that a crash tells its input
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs\n", files.size());
    return files.empty() ? EXIT_FAILURE : EXIT_SUCCESS;
}
