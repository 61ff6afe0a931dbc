#include "listings.h"

#include "compiler/compilation.h"
#include "machine/listing.h"
#include "runtime/context.h"

#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace {

std::string shortened(const std::string& listing, int firstFunction) {
    static const std::regex line("([0-9a-f]{4,}):  (\\w+)(?:\t(.*))?");
    static const std::regex jump("J|J[A-Z_]+|LOGAND|LOGOR|NEXT");
    static const std::regex unsaid(" \\[idx=\\d+\\]|,|(CG)\\d+");
    std::map<int, std::string> instructions;
    std::set<int> targets;
    std::istringstream stream(listing);
    for (std::string text; std::getline(stream, text);) {
        std::smatch match;
        if (!std::regex_match(text, match, line)) {
            return "not a listing: " + text;
        }
        std::string operand = std::regex_replace(match[3].str(), unsaid, "$1");
        if (std::regex_match(match[2].str(), jump)) {
            const int target = std::stoi(operand, nullptr, 16);
            targets.insert(target);
            operand = std::to_string(target);
        } else if (match[2] == "CLOSURE") {
            operand = "#" + std::to_string(std::stoi(operand.substr(1)) - firstFunction);
        }
        instructions[std::stoi(match[1], nullptr, 16)] =
            match[2].str() + (operand.empty() ? "" : " ") + operand;
    }
    std::string result;
    for (const auto& [offset, text] : instructions) {
        result += result.empty() ? "" : ", ";
        result += targets.count(offset) != 0 ? std::to_string(offset) + ":" : "";
        result += text;
    }
    return result;
}

} // namespace

std::vector<std::string> listingsOf(ESContext& ctx, const QString& text) {
    const int firstFunction = codeBlockCount();
    std::ostringstream stream;
    debugStream = &stream;
    debugFlags = debugListBlocks;
    compileProgram(ctx, text);
    debugStream = nullptr;
    debugFlags = 0;
    // Two line ends stand in front of each block.
    const std::string all = stream.str();
    std::vector<std::string> listings;
    for (std::size_t start = 2; start < all.size();) {
        const std::size_t end = std::min(all.find("\n\n\n", start), all.size() - 1);
        listings.push_back(shortened(all.substr(start, end - start), firstFunction));
        start = end + 3;
    }
    return listings;
}
