// Reading XML from files, pipes and what else a path can name.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "tests/unit/host_text_signal.h"
#include "tests/unit/host_text_support.h"

namespace tessera_host {
namespace {

using namespace text_support;

class XmlFile : public testing::Test {
  protected:
    void SetUp() override {
        const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
        m_folder = std::filesystem::path(testing::TempDir()) /
                   ("host_text_" + std::to_string(getpid()) + '_' + test->name());
        std::filesystem::create_directory(m_folder);
    }
    void TearDown() override { std::filesystem::remove_all(m_folder); }

    [[nodiscard]] std::string path(const char* name) const { return m_folder / name; }
    [[nodiscard]] std::string fileWith(std::string_view content) const {
        std::ofstream(path("file.xml"), std::ios::binary) << content;
        return path("file.xml");
    }

  private:
    std::filesystem::path m_folder;
};

TEST_F(XmlFile, ReadsAFile) {
    const auto read = readXmlFile(fileWith("<r a='1'>text</r>"));
    ASSERT_TRUE(read);
    EXPECT_EQ(toJson(*read), R"({"a":"1","":"text"})");
}

TEST_F(XmlFile, ReadsAFileLargerThanOnePieceOfReading) {
    std::string xml = "<r>";
    for (int i = 0; i < 50000; ++i)
        xml += "<x i='" + std::to_string(i) + "'/>";
    const auto read = readXmlFile(fileWith(xml + "</r>"));
    ASSERT_TRUE(read);
    EXPECT_EQ(*read, fromXml(xml + "</r>"));
}

TEST_F(XmlFile, SaysWhyAFileCannotBeRead) {
    const auto missing = readXmlFile(path("none.xml"));
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().kind, ErrorKind::cannotOpen);
    EXPECT_EQ(describe(missing.error(), "none.xml"), "none.xml: there is no such file");

    const auto folder = readXmlFile(path("."));
    ASSERT_FALSE(folder);
    EXPECT_EQ(folder.error().kind, ErrorKind::cannotOpen);
    EXPECT_EQ(folder.error().text, "this is a directory, not a file");

    const auto below = readXmlFile(fileWith("<r/>") + "/x");
    ASSERT_FALSE(below);
    EXPECT_EQ(below.error().kind, ErrorKind::cannotOpen);
    EXPECT_EQ(below.error().text, "the file cannot be read: Not a directory");
}

TEST_F(XmlFile, SaysThatPermissionIsMissing) {
    const std::string file = fileWith("<r/>");
    ASSERT_EQ(chmod(file.c_str(), 0), 0);
    const bool isRoot = geteuid() == 0;  // who may read everything
    if (isRoot) {
        ASSERT_EQ(seteuid(65534), 0);
    }
    const auto read = readXmlFile(file);
    if (isRoot) {
        ASSERT_EQ(seteuid(0), 0);
    }
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().kind, ErrorKind::cannotOpen);
    EXPECT_EQ(read.error().text, "there is no permission to read the file");
}

TEST_F(XmlFile, WhatIsNotAFileIsRefusedAtOnce) {
    EXPECT_EQ(readXmlFile("/dev/zero").error().text, "this is a device, not a file");
    const std::string pipe = path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const auto read = readXmlFile(pipe);
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().kind, ErrorKind::cannotOpen);
    EXPECT_EQ(read.error().text, "this is a named pipe, not a file");
}

TEST_F(XmlFile, TooLongOneIsRefused) {
    const std::string large = fileWith("<r/>");
    std::filesystem::resize_file(large, (std::uintmax_t{256} << 20U) + 1);
    const auto read = readXmlFile(large);
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().kind, ErrorKind::cannotOpen);
    EXPECT_EQ(read.error().text, "the file has more than 256 MiB, the most that is read");
}

// An open descriptor may lead to a device by another name.
TEST_F(XmlFile, AnOpenDescriptorIsReadFromWhereItStands) {
    const int file = open(fileWith("12345<r/>").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(file, 0);
    ASSERT_EQ(lseek(file, 5, SEEK_SET), 5);
    EXPECT_TRUE(readXmlFile("/dev/fd/" + std::to_string(file)));
    close(file);
    const int zero = open("/dev/zero", O_RDONLY | O_CLOEXEC);
    const auto read = readXmlFile("/proc/self/fd/" + std::to_string(zero));
    close(zero);
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().text, "this is a device, not a file");
    EXPECT_EQ(readXmlFile("/dev/fd/" + std::to_string(zero)).error().text, "there is no such file");
}

TEST_F(XmlFile, ErrorsOfTheContentHaveAPosition) {
    const auto empty = readXmlFile(fileWith(""));
    ASSERT_FALSE(empty);
    EXPECT_EQ(empty.error().kind, ErrorKind::failed);
    EXPECT_EQ(describe(empty.error(), "file.xml"), "file.xml:1:1: the file is empty");

    const auto wrong = readXmlFile(fileWith("<r>\n</s>"));
    ASSERT_FALSE(wrong);
    EXPECT_EQ(describe(wrong.error(), "file.xml"),
              "file.xml:2:1: the end tag 's' does not match element 'r', opened at line 1, column 1");
}

TEST_F(XmlFile, ReadsAPipeThatFillsSlowly) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    std::string xml = "<r>";
    for (int i = 0; i < 30000; ++i)
        xml += "<item number='" + std::to_string(i) + "'/>";
    xml += "</r>";
    std::thread writer([&] {
        for (std::size_t done = 0; done < xml.size(); done += 10000) {
            const std::string_view piece = std::string_view(xml).substr(done, 10000);
            EXPECT_EQ(write(ends[1], piece.data(), piece.size()), static_cast<ssize_t>(piece.size()));
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        close(ends[1]);
    });
    const auto read = readXmlFile("/dev/fd/" + std::to_string(ends[0]));
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    close(ends[0]);  // if reading ended too early, writing would, too
    writer.join();
    std::signal(SIGPIPE, before);
    ASSERT_TRUE(read) << problem(read);
    EXPECT_EQ(*read, fromXml(xml));
}

TEST_F(XmlFile, SignalsDoNotDisturbTheReading) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const InterruptingSignal signal;
    std::string outcome;
    std::thread reader([&] { outcome = problem(readXmlFile("/dev/fd/" + std::to_string(ends[0]))); });
    signal.sendTo(reader);
    EXPECT_EQ(write(ends[1], "<r/>", 4), 4);
    close(ends[1]);
    reader.join();
    close(ends[0]);
    EXPECT_EQ(outcome, "no error");
}

TEST_F(XmlFile, CancellationEndsTheWaitForAPipe) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    tessera_support::CancelSource source;
    std::thread user([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        source.cancel();
    });
    const auto read = readXmlFile("/dev/fd/" + std::to_string(ends[0]), source.token());
    user.join();
    ASSERT_FALSE(read);
    EXPECT_TRUE(read.error().isCancelled());
    close(ends[0]);
    close(ends[1]);
}

}  // namespace
}  // namespace tessera_host
