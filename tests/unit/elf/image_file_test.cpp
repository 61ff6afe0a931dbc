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

TEST(ImageFile, WhatCannotBeOpenedIsNotTouched) {
    TemporaryFolder folder;
    const std::string path = folder.write("a", oldImage);
    for (const std::string& target :
         {std::string(), folder.path(), folder.file("missing/a"), folder.file("a/b"), folder.file("c/"),
          folder.file(std::string(300, 'x'))}) {
        EXPECT_EQ(writeImageFile(target.c_str(), bytesOf("new")), WriteResult::CannotOpen) << target;
    }
    EXPECT_EQ(TemporaryFolder::read(path), oldImage);
}

} // namespace
