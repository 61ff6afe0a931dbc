// Runs a target on kept inputs where there is no fuzzer: replay [-random=N] FILE... N inputs made of numbers,
// always the same, come behind those of the files.
#include "fuzz_target.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    int count = 0;
    const auto run = [&count](const std::string& name, const std::vector<char>& bytes) {
        std::fprintf(stderr, "%s\n", name.c_str()); // so that a crash tells its input
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        ++count;
    };
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word.starts_with("-random=")) {
            for (std::mt19937 random; count < std::stoi(word.substr(8));) {
                std::vector<char> bytes(60 + random() % 540);
                std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<char>(random()); });
                run(word + ", input " + std::to_string(count), bytes);
            }
            continue;
        }
        std::ifstream stream(word, std::ios::binary);
        expect(stream.is_open(), "an input can be read");
        run(word, {std::istreambuf_iterator<char>(stream), {}});
    }
    std::printf("%d inputs\n", count);
    return count == 0 ? EXIT_FAILURE : EXIT_SUCCESS;
}
