#include "desktop/TemporaryFolder.h"
#include "fakes/FakeFiles.h"
#include "hosts/posix/PosixFiles.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace velloway::test {
namespace {

class FilesContract : public testing::TestWithParam<bool> {
protected:
    FilesContract() {
        if (GetParam()) {
            files = std::make_unique<PosixFiles>();
        } else {
            files = std::make_unique<FakeFiles>();
        }
    }

    void write(const std::filesystem::path& place, std::string_view bytes) {
        std::error_code failure;
        auto file = files->create(place, failure);
        ASSERT_TRUE(file) << failure.message();
        EXPECT_EQ(file->append(bytes, failure), static_cast<std::int64_t>(bytes.size()));
        EXPECT_FALSE(file->close());
    }
    std::string read(FileReader& file, std::int64_t offset, std::size_t room) {
        std::string bytes(room, '\0');
        bytes.resize(file.readAt(offset, bytes.data(), room, error).value_or(0));
        return bytes;
    }
    std::string content(const std::filesystem::path& place) {
        auto file = files->open(place, error);
        return file ? read(*file, 0, 100) : "absent";
    }

    TemporaryFolder folder;
    std::filesystem::path path = folder.path() / "a";
    std::unique_ptr<Files> files;
    std::error_code error = std::make_error_code(std::errc::io_error);
};

TEST_P(FilesContract, ANewFileIsThereAtOnceAndEmpty) {
    const auto file = files->create(path, error);
    ASSERT_TRUE(file);
    EXPECT_FALSE(error);
    EXPECT_EQ(content(path), "");
}

TEST_P(FilesContract, AFileThatIsThereIsEmptied) {
    write(path, "old");
    const auto file = files->create(path, error);
    EXPECT_EQ(content(path), "");
}

TEST_P(FilesContract, AppendingReturnsTheLengthAndCanBeReadAtOnce) {
    const auto file = files->create(path, error);
    EXPECT_EQ(file->append("one", error), 3);
    EXPECT_EQ(content(path), "one");
    EXPECT_EQ(file->append("", error), 3);
    EXPECT_EQ(file->append(std::string_view("\0two", 4), error), 7);
    EXPECT_EQ(content(path), std::string("one\0two", 7));
    EXPECT_FALSE(error);
}

TEST_P(FilesContract, AppendingGoesToTheEndThatOthersHaveMade) {
    const auto one = files->create(path, error);
    const auto other = files->create(path, error);
    EXPECT_EQ(one->append("one", error), 3);
    EXPECT_EQ(other->append("two", error), 6);
    EXPECT_EQ(one->append("three", error), 11);
    EXPECT_EQ(content(path), "onetwothree");
}

TEST_P(FilesContract, ReadingGivesWhatIsThereFromAnOffset) {
    write(path, "0123456789");
    const auto file = files->open(path, error);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->size(error), 10);
    EXPECT_EQ(read(*file, 0, 4), "0123");
    EXPECT_EQ(read(*file, 8, 4), "89");
    EXPECT_EQ(read(*file, 10, 4), "");
    EXPECT_EQ(read(*file, 1000, 4), "");
    EXPECT_EQ(read(*file, 2, 3), "234");
    EXPECT_FALSE(error);
    EXPECT_FALSE(file->close());
}

TEST_P(FilesContract, AnOpenFileShowsWhatBecomesOfIt) {
    write(path, "0123456789");
    const auto file = files->open(path, error);
    const auto writer = files->create(path, error);
    EXPECT_EQ(file->size(error), 0);
    EXPECT_EQ(read(*file, 5, 4), "");
    writer->append("abcdefgh", error);
    EXPECT_EQ(file->size(error), 8);
    EXPECT_EQ(read(*file, 5, 4), "fgh");
}

TEST_P(FilesContract, AFileThatIsNotThereDoesNotOpen) {
    EXPECT_FALSE(files->open(path, error));
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);
}

TEST_P(FilesContract, APathWithANulCharacterNeverOpens) {
    const std::filesystem::path strange = path.native() + std::string("\0b", 2);
    write(path, "short");
    EXPECT_FALSE(files->create(strange, error));
    EXPECT_EQ(error, std::errc::invalid_argument);
    EXPECT_FALSE(files->open(strange, error));
    EXPECT_EQ(error, std::errc::invalid_argument);
    EXPECT_EQ(content(path), "short");
}

INSTANTIATE_TEST_SUITE_P(, FilesContract, testing::Bool(),
                         [](const auto& it) { return std::string(it.param ? "Posix" : "Fake"); });

/// No file of this process may grow beyond `bytes` while this lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : oldHandler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &oldLimit_);
        const rlimit limit{bytes, oldLimit_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &oldLimit_);
        std::signal(SIGXFSZ, oldHandler_);
    }

private:
    void (*oldHandler_)(int);
    rlimit oldLimit_{};
};

int openDescriptors() {
    int count = 0;
    for (int number = 0; number < 256; ++number) {
        count += ::fcntl(number, F_GETFD) != -1 ? 1 : 0;
    }
    return count;
}

class PosixFilesTest : public testing::Test {
protected:
    TemporaryFolder folder;
    std::filesystem::path path = folder.path() / "a";
    PosixFiles files;
    std::error_code error;
};

TEST_F(PosixFilesTest, AFileThatCannotBeMadeGivesTheReasonOfTheSystem) {
    std::filesystem::create_directory(folder.path() / "a folder");
    writeText(folder.path() / "a file", "");
    const std::pair<std::filesystem::path, std::errc> cases[] = {
        {folder.path() / "missing/a", std::errc::no_such_file_or_directory},
        {folder.path() / "a file/a", std::errc::not_a_directory},
        {folder.path() / "a folder", std::errc::is_a_directory},
        {folder.path() / std::string(300, 'x'), std::errc::filename_too_long},
    };
    for (const auto& [place, reason] : cases) {
        EXPECT_FALSE(files.create(place, error)) << place;
        EXPECT_EQ(error, reason) << place;
    }
}

TEST_F(PosixFilesTest, AFolderDoesNotOpen) {
    for (const auto& place : {folder.path(), folder.path() / ""}) {
        EXPECT_FALSE(files.open(place, error));
        EXPECT_EQ(error, std::errc::is_a_directory);
    }
}

TEST_F(PosixFilesTest, WhatWasWrittenBeforeAFailureStays) {
    const auto file = files.create(path, error);
    {
        const FileSizeLimit limit(2);
        EXPECT_FALSE(file->append("one", error));
        EXPECT_EQ(error, std::errc::file_too_large);
    }
    EXPECT_EQ(readText(path), "on");
    EXPECT_EQ(file->append("one", error), 5);
    EXPECT_EQ(readText(path), "onone");
}

TEST_F(PosixFilesTest, ANamedPipeIsNotWaitedFor) {
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(files.create(path, error));
    EXPECT_EQ(error, std::errc::no_such_device_or_address);
    const auto reader = files.open(path, error);
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->size(error), 0);
    const auto writer = files.create(path, error);
    ASSERT_TRUE(writer) << "somebody reads it by now";
    EXPECT_FALSE(writer->append("one", error));
    EXPECT_EQ(error, std::errc::invalid_seek);
}

TEST_F(PosixFilesTest, ADescriptorTakenAwayFailsEveryCall) {
    const int before = ::open("/dev/null", O_RDONLY);
    ::close(before);
    const auto writer = files.create(path, error);
    ::close(before);
    EXPECT_FALSE(writer->append("one", error));
    EXPECT_EQ(error, std::errc::bad_file_descriptor);
    EXPECT_EQ(writer->close(), std::errc::bad_file_descriptor);
    EXPECT_FALSE(writer->close()) << "it counts as closed in any case";

    const auto reader = files.open(path, error);
    ::close(before);
    std::array<char, 4> room{};
    EXPECT_FALSE(reader->size(error));
    EXPECT_EQ(error, std::errc::bad_file_descriptor);
    EXPECT_FALSE(reader->readAt(0, room.data(), room.size(), error));
    EXPECT_EQ(error, std::errc::bad_file_descriptor);
    EXPECT_EQ(reader->close(), std::errc::bad_file_descriptor);
}

TEST_F(PosixFilesTest, ClosingAndDestroyingGiveTheDescriptorBackOnce) {
    const int before = openDescriptors();
    {
        auto closed = files.create(path, error);
        const auto destroyed = files.open(path, error);
        EXPECT_EQ(openDescriptors(), before + 2);
        EXPECT_FALSE(closed->close());
        EXPECT_EQ(openDescriptors(), before + 1);
        const int taken = ::open("/dev/null", O_RDONLY);
        closed.reset();
        EXPECT_NE(::fcntl(taken, F_GETFD), -1) << "a descriptor with the same number is not closed";
        ::close(taken);
    }
    EXPECT_EQ(openDescriptors(), before);
}

class ManyFilesTest : public PosixFilesTest {
protected:
    /// More than the process may have descriptors for the files that are being written.
    void beginOthers() {
        for (std::size_t number = 0; number < PosixFiles::mostOpenWriters; ++number) {
            others.push_back(files.create(folder.path() / ("other" + std::to_string(number)), error));
            ASSERT_TRUE(others.back());
        }
    }

    std::vector<std::unique_ptr<FileWriter>> others;
};

TEST_F(ManyFilesTest, AThousandUnfinishedFilesLeaveDescriptorsForTheRest) {
    const int before = openDescriptors();
    std::vector<std::unique_ptr<FileWriter>> writers;
    const auto place = [this](std::size_t number) { return folder.path() / std::to_string(number); };
    for (std::size_t number = 0; number < 1'000; ++number) {
        writers.push_back(files.create(place(number), error));
        ASSERT_TRUE(writers.back()) << number << ": " << error.message();
    }
    const int most = before + static_cast<int>(PosixFiles::mostOpenWriters);
    EXPECT_EQ(openDescriptors(), most);
    for (const char* piece : {"one", "two"}) {
        for (const auto& writer : writers) {
            ASSERT_TRUE(writer->append(piece, error)) << error.message();
            ASSERT_LE(openDescriptors(), most);
        }
    }
    for (std::size_t number = 0; number < writers.size(); ++number) {
        EXPECT_FALSE(writers[number]->close());
        EXPECT_EQ(readText(place(number)), "onetwo") << number;
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(ManyFilesTest, TheFilesThatWereWrittenLastKeepTheirDescriptors) {
    const auto written = files.create(path, error);
    const auto idle = files.create(folder.path() / "b", error);
    beginOthers();
    EXPECT_EQ(written->append("one", error), 3);
    EXPECT_EQ(others.front()->append("one", error), 3);
    // A file that has its descriptor is written wherever it has been moved to.
    std::filesystem::rename(path, folder.path() / "moved");
    std::filesystem::rename(folder.path() / "b", folder.path() / "moved too");
    EXPECT_EQ(written->append("two", error), 6);
    EXPECT_EQ(readText(folder.path() / "moved"), "onetwo");
    EXPECT_FALSE(idle->append("two", error));
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);
}

TEST_F(ManyFilesTest, AFileThatCameToThePlaceOfAnUnfinishedOneIsNotWritten) {
    const auto file = files.create(path, error);
    EXPECT_EQ(file->append("one", error), 3);
    beginOthers();
    writeText(folder.path() / "new", "new");
    std::filesystem::rename(folder.path() / "new", path);
    EXPECT_FALSE(file->append("two", error));
    EXPECT_EQ(error, std::error_code(ESTALE, std::system_category()));
    EXPECT_EQ(readText(path), "new");
    EXPECT_FALSE(file->close());
}

TEST_F(ManyFilesTest, AnUnfinishedFileThatHasGoneFailsToBeWritten) {
    const auto file = files.create(path, error);
    beginOthers();
    std::filesystem::remove(path);
    EXPECT_FALSE(file->append("one", error));
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(ManyFilesTest, WritersMayOutliveTheirFiles) {
    auto maker = std::make_unique<PosixFiles>();
    const auto file = maker->create(path, error);
    maker.reset();
    EXPECT_EQ(file->append("one", error), 3);
    EXPECT_FALSE(file->close());
}

} // namespace
} // namespace velloway::test
