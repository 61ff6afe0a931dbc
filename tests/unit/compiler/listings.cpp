#include "listings.h"

#include "compiler/compilation.h"
#include "machine/listing.h"
#include "runtime/context.h"

#include <cctype>
#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace {

class ListingSwitch {
public:
    explicit ListingSwitch(std::ostream& stream) {
        debugStream = &stream;
        debugFlags = debugListBlocks;
    }
    ~ListingSwitch() {
        debugStream = nullptr;
        debugFlags = 0;
    }
    ListingSwitch(const ListingSwitch&) = delete;
    ListingSwitch& operator=(const ListingSwitch&) = delete;
};

bool isJump(const std::string& mnemonic) {
    for (const ESInstruction& instruction : instructionTable) {
        if (mnemonic == instruction.mnemonic) {
            return instruction.first == ESOperand::Target;
        }
    }
    return false;
}

std::string shortened(const std::string& listing, int firstFunction) {
    static const std::regex line("^([0-9a-f]{4,}):  (\\w+)(?:\t(.*))?$");
    std::vector<std::pair<int, std::string>> instructions;
    std::set<int> targets;
    std::istringstream stream(listing);
    for (std::string text; std::getline(stream, text);) {
        std::smatch match;
        if (!std::regex_match(text, match, line)) {
            return "not a listing: " + text;
        }
        const std::string mnemonic = match[2];
        std::string operand = match[3];
        if (isJump(mnemonic)) {
            targets.insert(std::stoi(operand, nullptr, 16));
            operand = std::to_string(std::stoi(operand, nullptr, 16));
        } else if (mnemonic == "CLOSURE") {
            operand = "#" + std::to_string(std::stoi(operand.substr(1)) - firstFunction);
        } else {
            operand = std::regex_replace(operand, std::regex(" \\[idx=\\d+\\]"), "");
            operand = std::regex_replace(operand, std::regex("^CG\\d+"), "CG");
            operand = std::regex_replace(operand, std::regex(","), "");
        }
        instructions.emplace_back(std::stoi(match[1], nullptr, 16),
                                  mnemonic + (operand.empty() ? "" : " " + operand));
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
    {
        const ListingSwitch on(stream);
        compileProgram(ctx, text);
    }
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
