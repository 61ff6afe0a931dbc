// Tables of tests that lie in files of their own: lines "left  =>  right" below a line "## section". The
// escapes of C for line ends, backslashes and bytes in hexadecimal hold; lines that begin with # are
// comments.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <string_view>
#include <vector>

struct Row {
    std::string text;
    std::string expected;
};

inline std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            result += text[i];
        } else if (text[++i] == 'x') {
            result += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
            i += 2;
        } else {
            result += text[i] == 'n' ? '\n' : text[i];
        }
    }
    return result;
}

// `file` lies below tests/unit. An empty table is a failure of the test.
inline std::vector<Row> rowsOf(const std::string& file, const std::string& section) {
    std::ifstream stream(QUORVANE_SOURCE_DIR "/tests/unit/" + file);
    std::vector<Row> rows;
    bool isWanted = false;
    for (std::string line; std::getline(stream, line);) {
        const std::size_t arrow = line.find("  =>  ");
        if (line.starts_with("#")) {
            isWanted = line == "## " + section || (isWanted && !line.starts_with("##"));
        } else if (isWanted && arrow != std::string::npos) {
            rows.push_back({unescaped(std::string_view(line).substr(0, arrow)),
                            unescaped(std::string_view(line).substr(arrow + 6))});
        }
    }
    EXPECT_FALSE(rows.empty()) << file << ", " << section;
    return rows;
}
