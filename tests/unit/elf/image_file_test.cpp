#include "elf/image_file.h"

#include "elf_builder.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <thread>

namespace {

const Bytes oldImage = bytesOf("the old image");

struct stat statusOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status;
}

Bytes largeImage() {
    Bytes image = countingBytes(300'000);
    std::copy_n(ELFMAG, SELFMAG, image.begin());
    return image;
}

TEST(ImageFile, ReadsFilesPipesAndNothingElse) {
    TemporaryFolder folder;
    const Bytes image = largeImage();
    ImageBytes read;
    ASSERT_EQ(readImageFile(folder.write("a", image).c_str(), read), ReadResult::Done);
    EXPECT_TRUE(std::equal(image.begin(), image.end(), read.span().begin(), read.span().end()));

    const std::string fifo = folder.file("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    std::thread writer([&] { folder.write("fifo", image); });
    read = ImageBytes();
    EXPECT_EQ(readImageFile(fifo.c_str(), read), ReadResult::Done);
    writer.join();
    EXPECT_TRUE(std::equal(image.begin(), image.end(), read.span().begin(), read.span().end()));

    EXPECT_EQ(readImageFile("/dev/zero", read), ReadResult::NotElf); // and not for ever
    EXPECT_EQ(readImageFile("/dev/null", read), ReadResult::NotElf);
    EXPECT_EQ(readImageFile(folder
                                .write("b", bytesOf("\x7F"
                                                    "EL"))
                                .c_str(),
                            read),
              ReadResult::NotElf);
    EXPECT_EQ(readImageFile(folder.path().c_str(), read), ReadResult::CannotOpen);
    EXPECT_EQ(readImageFile(folder.file("missing").c_str(), read), ReadResult::CannotOpen);
    EXPECT_EQ(readImageFile("", read), ReadResult::CannotOpen);
}

TEST(ImageFile, AHugeSparseFileIsRefusedUnread) {
    TemporaryFolder folder;
    const std::string path = folder.write("huge", largeImage());
    ASSERT_EQ(truncate(path.c_str(), off_t{1} << 33), 0);
    ImageBytes read;
    EXPECT_EQ(readImageFile(path.c_str(), read), ReadResult::NotElf);
}

TEST(ImageFile, ReplacesAFileAndKeepsItsModeAndLinks) {
    TemporaryFolder folder;
    const Bytes image = largeImage();
    const std::string path = folder.write("a.elf", oldImage);
    ASSERT_EQ(chmod(path.c_str(), 0751), 0);
    ASSERT_EQ(symlink("a.elf", folder.file("link").c_str()), 0);
    const auto before = statusOf(path);
    ASSERT_EQ(writeImageFile(folder.file("link").c_str(), image), WriteResult::Done);
    EXPECT_EQ(TemporaryFolder::read(path), image);
    EXPECT_NE(statusOf(path).st_ino, before.st_ino); // replaced, not overwritten
    EXPECT_EQ(statusOf(path).st_mode, before.st_mode);
    EXPECT_EQ(statusOf(path).st_gid, before.st_gid);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("link")));
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.elf", "link"}));
}

TEST(ImageFile, MakesNewFilesWithTheUsualMode) {
    TemporaryFolder folder;
    const mode_t mask = umask(027);
    EXPECT_EQ(writeImageFile(folder.file("a").c_str(), oldImage), WriteResult::Done);
    ASSERT_EQ(symlink("b", folder.file("dangling").c_str()), 0);
    EXPECT_EQ(writeImageFile(folder.file("dangling").c_str(), oldImage), WriteResult::Done);
    umask(mask);
    EXPECT_EQ(statusOf(folder.file("a")).st_mode & 07777U, 0640U);
    EXPECT_EQ(TemporaryFolder::read(folder.file("b")), oldImage);
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a", "b", "dangling"}));
}

TEST(ImageFile, WritesIntoPipes) {
    TemporaryFolder folder;
    const Bytes image = largeImage();
    const std::string fifo = folder.file("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    Bytes arrived;
    std::thread reader([&] { arrived = TemporaryFolder::read(fifo); });
    EXPECT_EQ(writeImageFile(fifo.c_str(), image), WriteResult::Done);
    reader.join();
    EXPECT_EQ(arrived, image);
    EXPECT_TRUE(S_ISFIFO(statusOf(fifo).st_mode));
}

TEST(ImageFile, WhatCannotBeOpenedIsNotTouched) {
    TemporaryFolder folder;
    const std::string path = folder.write("a", oldImage);
    for (const std::string& target :
         {std::string(), folder.path(), folder.file("missing/a"), folder.file("a/b"), folder.file("c/"),
          folder.file(std::string(300, 'x'))}) {
        EXPECT_EQ(writeImageFile(target.c_str(), bytesOf("new")), WriteResult::CannotOpen) << target;
    }
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a"}));
    EXPECT_EQ(TemporaryFolder::read(path), oldImage);
}

// Runs something in a child, which may give up rights and limits of its own; its result is the exit status.
template <typename Action>
int inChild(Action action) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(action());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(ImageFile, RightsDecideHowAFileIsWritten) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs root to become somebody else";
    }
    TemporaryFolder folder;
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    constexpr uid_t somebody = 12345;
    const auto asSomebody = [&](const std::string& path) {
        return inChild([&] {
            if (setgid(somebody) != 0 || setuid(somebody) != 0) {
                return -1;
            }
            return static_cast<int>(writeImageFile(path.c_str(), bytesOf("new")));
        });
    };
    // In a folder that can't be written, a file that can is overwritten in place.
    const std::string own = folder.write("own", oldImage);
    ASSERT_EQ(chown(own.c_str(), somebody, somebody), 0);
    const auto before = statusOf(own);
    EXPECT_EQ(asSomebody(own), static_cast<int>(WriteResult::Done));
    EXPECT_EQ(TemporaryFolder::read(own), bytesOf("new"));
    EXPECT_EQ(statusOf(own).st_ino, before.st_ino);
    EXPECT_EQ(asSomebody(folder.file("other")), static_cast<int>(WriteResult::CannotOpen));
    // A read-only file is no one's to replace, even in one's own folder.
    ASSERT_EQ(chown(folder.path().c_str(), somebody, somebody), 0);
    ASSERT_EQ(chmod(own.c_str(), 0444), 0);
    EXPECT_EQ(asSomebody(own), static_cast<int>(WriteResult::CannotOpen));
    // Somebody else's file keeps its owner.
    const std::string foreign = folder.write("foreign", oldImage);
    ASSERT_EQ(chmod(foreign.c_str(), 0666), 0);
    EXPECT_EQ(asSomebody(foreign), static_cast<int>(WriteResult::Done));
    EXPECT_EQ(statusOf(foreign).st_uid, 0U);
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"foreign", "own"}));
}

} // namespace
