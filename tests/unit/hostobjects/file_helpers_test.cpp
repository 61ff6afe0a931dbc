#include "hostobjects/file_helpers.h"

#include <QDir>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
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

class FileHelpers : public testing::Test {
protected:
    FileHelpers() {
        std::string pattern = testing::TempDir() + "file_helpers_XXXXXX";
        folder = mkdtemp(pattern.data());
    }
    ~FileHelpers() override { std::filesystem::remove_all(folder); }

    std::string at(const char* name) const { return folder + '/' + name; }
    QString path(const char* name) const { return QString::fromLatin1(at(name)); }

    void write(const char* name, const std::string& content) const {
        std::ofstream(at(name), std::ios::binary) << content;
    }
    std::string read(const char* name) const {
        std::ostringstream content;
        content << std::ifstream(at(name), std::ios::binary).rdbuf();
        return content.str();
    }
    struct stat status(const char* name) const {
        struct stat result {};
        EXPECT_EQ(stat(at(name).c_str(), &result), 0) << name;
        return result;
    }

    std::string folder;
};

} // namespace

TEST(CleanPath, RemovesStepsByText) {
    const struct {
        const char* path;
        const char* cleaned;
    } rows[] = {
        {"", ""},
        {"/", "/"},
        {"./a", "./a"},
        {"a/./b", "a/b"},
        {"a/.", "a"},
        {"/.", ""},
        {"a/b/../c", "a/c"},
        {"ab/../c", "ab/../c"},
        {"/a/../b", "/b"},
        {"/../b", "/../b"},
        {"/a/..", ""},
        {"a/b/c/../../d", "a/d"},
        {"a/..name/b", "a/..name/b"},
        {"a/b/..name", "a/b/..name"},
        {"a/b/.hidden", "a/b/.hidden"},
        {"a/b/...", "a/b/..."},
        {"a//b", "a/b"},
        {"a///b//", "a/b/"},
        {"//a", "/a"},
        {"/../../b", "/b"},
        {"a/b.c/d..e/..", "a/b.c"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(cleanPath(latin1(row.path)).toStdString(), row.cleaned) << row.path;
        EXPECT_EQ(FilePath(row.path).ascii().toStdString(), row.cleaned);
    }
    EXPECT_TRUE(FilePath().isEmpty());
    EXPECT_TRUE(FilePath("/a/..").isEmpty());
}

TEST(CleanPath, EqualsTheLiteralRules) {
    std::mt19937 random(1);
    const char* const pieces[] = {"/", "/", "/", ".", "..", "a", "ab"};
    for (int round = 0; round < 200000; ++round) {
        QString path;
        for (auto count = random() % 14; count > 0; --count) {
            path += latin1(pieces[random() % std::size(pieces)]);
        }
        const QString cleaned = cleanPath(path);
        ASSERT_EQ(cleaned, cleanLiterally(path)) << path.toStdString();
        ASSERT_LE(cleaned.size(), path.size());
        ASSERT_EQ(cleanPath(cleaned), cleaned) << path.toStdString();
    }
    // Half a million steps that each cancel out or search in vain: in no time.
    EXPECT_EQ(cleanPath(latin1("a") + latin1("/b/..").repeated(500000)), latin1("a"));
    EXPECT_LT(cleanPath(latin1("a").repeated(500000) + latin1("//..").repeated(500000)).size(), 2500000);
}

TEST_F(FileHelpers, CopyKeepsBytesTimesAndMode) {
    std::string content;
    std::mt19937 random(5);
    for (int i = 0; i < 300000; ++i) {
        content += static_cast<char>(random());
    }
    const mode_t oldMask = umask(022);
    for (const mode_t mode : {0666U, 0755U, 0600U, 0444U}) {
        write("source", content);
        ASSERT_EQ(chmod(at("source").c_str(), mode), 0);
        const timespec times[] = {{1000000000, 0}, {1100000000, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, at("source").c_str(), times, 0), 0);

        EXPECT_TRUE(copyFile(path("source"), path("target"), false));
        EXPECT_EQ(read("target"), content);
        EXPECT_EQ(status("target").st_mtim.tv_sec, 1100000000);
        EXPECT_EQ(status("target").st_mode & 07777U, mode & ~022U);
        EXPECT_TRUE(removeFile(path("source")));
        EXPECT_TRUE(removeFile(path("target")));
    }
    umask(oldMask);
}

TEST_F(FileHelpers, CopyFindsItsTarget) {
    write("source", "text");
    write("old", "something longer");
    EXPECT_TRUE(copyFile(path("source"), path("old"), false));
    EXPECT_EQ(read("old"), "text");

    ASSERT_TRUE(makeDirectory(path("folder")));
    EXPECT_TRUE(copyFile(path("source"), path("folder"), false));
    EXPECT_EQ(read("folder/source"), "text");

    EXPECT_FALSE(copyFile(path("source"), path("new/folder/file"), false));
    EXPECT_TRUE(copyFile(path("source"), path("new/folder/file"), true));
    EXPECT_EQ(read("new/folder/file"), "text");

    EXPECT_FALSE(copyFile(path("missing"), path("created"), true));
    EXPECT_FALSE(fileExists(path("created")));
    EXPECT_FALSE(copyFile(path("folder"), path("old"), false));
    EXPECT_EQ(read("old"), "text");
    EXPECT_FALSE(copyFile(path("source"), QString(), false));
    // A file of /proc says that it is empty, and isn't.
    EXPECT_TRUE(copyFile(latin1("/proc/self/status"), path("status"), false));
    EXPECT_NE(read("status").find("Pid:"), std::string::npos);
}

TEST_F(FileHelpers, CopyOntoItselfTouchesNothing) {
    write("source", "text");
    ASSERT_EQ(link(at("source").c_str(), at("hard").c_str()), 0);
    ASSERT_EQ(symlink("source", at("soft").c_str()), 0);
    ASSERT_TRUE(makeDirectory(path("folder")));
    ASSERT_EQ(symlink("../source", at("folder/source").c_str()), 0);
    for (const char* name : {"source", "hard", "soft", "./source", "folder/../source", "folder", "."}) {
        EXPECT_FALSE(copyFile(path("source"), path(name), false)) << name;
        EXPECT_EQ(read("source"), "text") << name;
    }
    EXPECT_FALSE(copyFile(path("soft"), path("source"), false));
    EXPECT_EQ(read("source"), "text");
}

TEST_F(FileHelpers, CopyReportsAFullDisk) {
    write("source", std::string(1 << 20, 'x'));
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    const rlimit small{100000, old.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_FALSE(copyFile(path("source"), path("target"), false));
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(status("source").st_size, 1 << 20);
}

TEST_F(FileHelpers, MakesDirectoriesWithTheirParents) {
    EXPECT_TRUE(makeDirectory(path("a/b/c")));
    EXPECT_TRUE(S_ISDIR(status("a/b/c").st_mode));
    EXPECT_TRUE(makeDirectory(path("a/b/c")));
    EXPECT_TRUE(makeDirectory(path("a//x/../d/")));
    EXPECT_TRUE(fileExists(path("a/d")));
    EXPECT_FALSE(fileExists(path("a/x")));
    EXPECT_TRUE(makeDirectory(latin1("/")));
    EXPECT_TRUE(makeDirectory(QString()));

    write("file", "text");
    EXPECT_FALSE(makeDirectory(path("file")));
    EXPECT_FALSE(makeDirectory(path("file/below")));
    EXPECT_FALSE(makeDirectory(path("long/") + QString(300, u'x')));
    EXPECT_TRUE(fileExists(path("long")));
    EXPECT_FALSE(makeDirectory(QString(200000, u'/') + latin1("a/").repeated(200000)));

    EXPECT_FALSE(removeDirectory(path("a")));
    EXPECT_TRUE(removeDirectory(path("a/b/c")));
    EXPECT_FALSE(removeDirectory(path("file")));
    EXPECT_FALSE(removeFile(path("a")));
    EXPECT_TRUE(removeFile(path("file")));
    EXPECT_FALSE(removeFile(path("file")));
}

TEST_F(FileHelpers, NamesAreTheBytesOfTheText) {
    const QString bytes = path("caf\xE9");
    EXPECT_TRUE(writeAll(openForWriting(bytes).get(), "text", 4));
    EXPECT_EQ(read("caf\xE9"), "text");
    EXPECT_TRUE(copyFile(bytes, bytes + u'2', false));
    EXPECT_TRUE(fileExists(bytes + u'2'));
    EXPECT_TRUE(makeDirectory(bytes + u'3'));
    EXPECT_TRUE(S_ISDIR(status("caf\xE9"
                               "3")
                            .st_mode));
}

TEST_F(FileHelpers, OpenReplacesAndRefuses) {
    write("file", "old and long");
    for (const char* name : {"", ".", "missing/file"}) {
        EXPECT_FALSE(openForReading(path(name)).isOpen()) << name;
        EXPECT_FALSE(openForWriting(path(name)).isOpen()) << name;
    }
    EXPECT_FALSE(openForReading(path("missing")).isOpen());
    EXPECT_EQ(readUpTo(openForReading(path("file")).get(), 100), QByteArray("old and long"));
    EXPECT_EQ(readUpTo(openForReading(path("file")).get(), 3), QByteArray("old"));
    EXPECT_EQ(readUpTo(openForReading(latin1("/dev/zero")).get(), 1000000), QByteArray(1000000, '\0'));
    EXPECT_TRUE(openForWriting(path("file")).isOpen());
    EXPECT_EQ(status("file").st_size, 0);
}

TEST_F(FileHelpers, ProgramDirectories) {
    ASSERT_TRUE(makeDirectory(path("root/bin")));
    write("root/bin/program", "");
    recordProgramDirs(at("root/./bin/program").c_str(), 1);
    EXPECT_EQ(programDir, QDir(path("root/bin")).canonicalPath());
    EXPECT_EQ(rootDir, QDir(path("root")).canonicalPath());
    recordProgramDirs(nullptr, 1);
    recordProgramDirs("", 1);
    EXPECT_EQ(rootDir, QDir(path("root")).canonicalPath());
}
