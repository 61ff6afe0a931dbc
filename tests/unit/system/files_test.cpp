#include "system/files.h"

#include <QDir>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

namespace {

QString latin1(const char* text) { return QString::fromLatin1(text); }

// The rules as they are usually told, one removal after the other.
QString cleanLiterally(QString path) {
    qsizetype position = 0;
    for (;;) {
        const qsizetype dot = path.indexOf(u'.', position);
        if (dot < 0) {
            break;
        }
        position = dot + 1;
        if (dot == 0 || path[dot - 1] != u'/') {
            continue;
        }
        const auto endsAt = [&](qsizetype at) { return at == path.size() || path[at] == u'/'; };
        if (endsAt(dot + 1)) {
            path.remove(dot - 1, 2);
            position = dot - 1;
        } else if (path[dot + 1] == u'.' && endsAt(dot + 2) && dot >= 3) {
            const qsizetype step = path.lastIndexOf(u'/', dot - 3);
            if (step >= 0) {
                path.remove(step, dot + 2 - step);
                position = step;
            }
        }
    }
    for (qsizetype i = 0; i + 1 < path.size();) {
        if (path[i] == u'/' && path[i + 1] == u'/') {
            path.remove(i, 1);
        } else {
            ++i;
        }
    }
    return path;
}

} // namespace

TEST(CleanPath, EqualsTheLiteralRules) {
    const struct {
        const char* path;
        const char* cleaned;
    } rows[] = {
        {"./a", "./a"},
        {"a/.", "a"},
        {"a/b/../c", "a/c"},
        {"ab/../c", "ab/../c"},
        {"/a/../b", "/b"},
        {"/../b", "/../b"},
        {"a/b/..name/.x", "a/b/..name/.x"},
        {"a///b//", "a/b/"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(FilePath(row.path).ascii().toStdString(), row.cleaned);
    }
    EXPECT_TRUE(FilePath("/a/..").isEmpty());
    std::mt19937 random(1);
    const char* const pieces[] = {"/", "/", "/", ".", "..", "a", "ab"};
    for (int round = 0; round < 200000; ++round) {
        QString path;
        for (auto count = random() % 14; count > 0; --count) {
            path += latin1(pieces[random() % std::size(pieces)]);
        }
        ASSERT_EQ(cleanPath(path), cleanLiterally(path)) << path.toStdString();
    }
    // Half a million steps that cancel out, which would take for ever one by one.
    EXPECT_EQ(cleanPath(latin1("a") + latin1("/b/..").repeated(500000)), latin1("a"));
}

// What no member of the host objects asks for.
TEST(FileHelpers, ParentsOfACopyAndTheProgramsFolders) {
    std::string pattern = testing::TempDir() + "file_helpers_XXXXXX";
    const std::string folder = mkdtemp(pattern.data());
    const QString program = latin1((folder + "/root/bin/program").c_str());
    EXPECT_TRUE(copyFile(latin1("/proc/self/status"), program, true));
    EXPECT_TRUE(makeDirectory(QString()));
    EXPECT_FALSE(makeDirectory(QString(200000, u'/') + latin1("a/").repeated(200000)));
    recordProgramDirs((folder + "/root/./bin/program").c_str(), 1);
    recordProgramDirs(nullptr, 1);
    recordProgramDirs("", 1);
    EXPECT_EQ(programDir, QDir(latin1((folder + "/root/bin").c_str())).canonicalPath());
    EXPECT_EQ(rootDir, QDir(latin1((folder + "/root").c_str())).canonicalPath());
    std::filesystem::remove_all(folder);
}
