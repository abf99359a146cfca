// Reading XML from files, pipes and what else a path can name.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
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
using basekit2::variant_bag_t;

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
    variant_bag_t bag;
    EXPECT_FALSE(readXmlFile(fileWith("<r a='1'>text</r>"), bag));
    EXPECT_EQ(toJson(bag), R"({"a":"1","":"text"})");
}

TEST_F(XmlFile, ReadsAFileLargerThanOnePieceOfReading) {
    std::string xml = "<r>";
    for (int i = 0; i < 50000; ++i)
        xml += "<x i='" + std::to_string(i) + "'/>";
    variant_bag_t bag;
    EXPECT_FALSE(readXmlFile(fileWith(xml + "</r>"), bag));
    EXPECT_EQ(bag, fromXml(xml + "</r>"));
}

TEST_F(XmlFile, TellsWhyAFileCannotBeRead) {
    variant_bag_t bag;
    const auto missing = readXmlFile(path("none.xml"), bag);
    ASSERT_TRUE(missing);
    EXPECT_TRUE(missing->unopened);
    EXPECT_EQ(describe(*missing, "none.xml"), "none.xml: there is no such file");

    const auto folder = readXmlFile(path("."), bag);
    ASSERT_TRUE(folder);
    EXPECT_TRUE(folder->unopened);
    EXPECT_EQ(folder->text, "this is a directory, not a file");

    const auto below = readXmlFile(fileWith("<r/>") + "/x", bag);
    ASSERT_TRUE(below);
    EXPECT_TRUE(below->unopened);
    EXPECT_EQ(below->text, "the file cannot be read: Not a directory");
}

TEST_F(XmlFile, TellsThatPermissionIsMissing) {
    const std::string file = fileWith("<r/>");
    ASSERT_EQ(chmod(file.c_str(), 0), 0);
    variant_bag_t bag;
    const bool isRoot = geteuid() == 0;  // who may read everything
    if (isRoot) {
        ASSERT_EQ(seteuid(65534), 0);
    }
    const auto error = readXmlFile(file, bag);
    if (isRoot) {
        ASSERT_EQ(seteuid(0), 0);
    }
    ASSERT_TRUE(error);
    EXPECT_TRUE(error->unopened);
    EXPECT_EQ(error->text, "there is no permission to read the file");
}

TEST_F(XmlFile, OneWithoutEndIsRefused) {
    variant_bag_t bag;
    const auto error = readXmlFile("/dev/zero", bag);
    ASSERT_TRUE(error);
    EXPECT_TRUE(error->unopened);
    EXPECT_EQ(error->text, "the file has more than 1 GiB, the most that is read");

    const std::string large = fileWith("<r/>");
    std::filesystem::resize_file(large, (std::uintmax_t{1} << 30U) + 1);
    EXPECT_EQ(readXmlFile(large, bag)->text, error->text);
}

TEST_F(XmlFile, ErrorsOfTheContentHaveAPosition) {
    variant_bag_t bag;
    const auto empty = readXmlFile(fileWith(""), bag);
    ASSERT_TRUE(empty);
    EXPECT_FALSE(empty->unopened);
    EXPECT_EQ(describe(*empty, "file.xml"), "file.xml:1:1: the file is empty");

    const auto wrong = readXmlFile(fileWith("<r>\n</s>"), bag);
    ASSERT_TRUE(wrong);
    EXPECT_EQ(describe(*wrong, "file.xml"),
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
    variant_bag_t bag;
    const auto error = readXmlFile("/dev/fd/" + std::to_string(ends[0]), bag);
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    close(ends[0]);  // should the reading have ended too early, so does the writing
    writer.join();
    std::signal(SIGPIPE, before);
    EXPECT_EQ(problem(error), "no error");
    EXPECT_EQ(bag, fromXml(xml));
}

TEST_F(XmlFile, SignalsDoNotDisturbTheReading) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const InterruptingSignal signal;
    variant_bag_t bag;
    std::optional<ReadError> error;
    std::thread reader([&] { error = readXmlFile("/dev/fd/" + std::to_string(ends[0]), bag); });
    signal.sendTo(reader);
    EXPECT_EQ(write(ends[1], "<r/>", 4), 4);
    close(ends[1]);
    reader.join();
    close(ends[0]);
    EXPECT_EQ(problem(error), "no error");
}

class SwitchedProgress final : public relay2::IProgress {
  public:
    [[nodiscard]] bool isCancelled() const override { return cancelled; }
    std::atomic<bool> cancelled = false;
};

TEST_F(XmlFile, CancellationEndsTheWaitForAPipe) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    SwitchedProgress progress;
    std::thread user([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        progress.cancelled = true;
    });
    variant_bag_t bag;
    const auto error = readXmlFile("/dev/fd/" + std::to_string(ends[0]), bag, &progress);
    user.join();
    ASSERT_TRUE(error);
    EXPECT_TRUE(error->cancelled);
    EXPECT_FALSE(error->unopened);
    close(ends[0]);
    close(ends[1]);
}

}  // namespace
}  // namespace tessera_host
