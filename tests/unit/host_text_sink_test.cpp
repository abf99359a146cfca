#include "host/text/text_sink.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "tests/unit/host_text_signal.h"

namespace tessera_host {
namespace {

constexpr std::size_t blockSize = 65536;

// Remembers each block; fails from the n-th on.
class RecordingSink final : public TextSink {
  public:
    explicit RecordingSink(std::size_t blocksTaken = 1000) : m_blocksTaken(blocksTaken) {}
    std::vector<std::string> blocks;
    int calls = 0;

  protected:
    bool deliver(std::string_view block) override {
        ++calls;
        if (blocks.size() == m_blocksTaken) return false;
        blocks.emplace_back(block);
        return true;
    }

  private:
    std::size_t m_blocksTaken;
};

TEST(TextSink, CollectsUntilABlockIsFull) {
    RecordingSink sink;
    const std::string half(blockSize / 2, 'x');
    sink.write(half);
    sink.write(half);
    EXPECT_EQ(sink.calls, 0);
    sink.put('y');
    ASSERT_EQ(sink.calls, 1);
    EXPECT_EQ(sink.blocks[0], half + half);
    EXPECT_TRUE(sink.flush());
    EXPECT_EQ(sink.blocks[1], "y");
    EXPECT_TRUE(sink.flush()) << "nothing left";
    EXPECT_EQ(sink.calls, 2);
}

TEST(TextSink, LargeTextGoesThroughUncopiedAndInOrder) {
    RecordingSink sink;
    sink.write("begin ");
    const std::string large(3 * blockSize, 'x');
    sink.write(large);
    sink.write("");
    sink.write(" end");
    sink.flush();
    ASSERT_EQ(sink.blocks.size(), 3U);
    EXPECT_EQ(sink.blocks[0], "begin ");
    EXPECT_EQ(sink.blocks[1], large);
    EXPECT_EQ(sink.blocks[2], " end");
}

TEST(TextSink, NothingFollowsAFailure) {
    RecordingSink sink(1);
    const std::string block(blockSize, 'x');
    EXPECT_TRUE(sink.write(block));
    EXPECT_TRUE(sink.flush());
    EXPECT_TRUE(sink.write("lost"));
    EXPECT_FALSE(sink.flush());
    EXPECT_FALSE(sink.good());
    const int calls = sink.calls;
    for (int i = 0; i < 5; ++i) {
        EXPECT_FALSE(sink.write(block));
        EXPECT_FALSE(sink.put('x'));
    }
    EXPECT_FALSE(sink.flush());
    EXPECT_EQ(sink.calls, calls);
}

TEST(StringSink, Appends) {
    std::string text = "so ";
    StringSink sink(text);
    sink.write("far");
    sink.put('!');
    EXPECT_TRUE(sink.flush());
    EXPECT_EQ(text, "so far!");
}

TEST(FileSink, WritesMoreThanAPipeHoldsToASlowReader) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    ASSERT_EQ(fcntl(ends[1], F_SETFL, O_NONBLOCK), 0);  // so that writes are partial and refused
    std::string received;
    std::thread reader([&] {
        std::array<char, 5000> buffer{};
        for (ssize_t n = 0; (n = read(ends[0], buffer.data(), buffer.size())) > 0;)
            received.append(buffer.data(), static_cast<std::size_t>(n));
    });
    std::string sent;
    FileSink sink(ends[1]);
    for (int i = 0; i < 100000; ++i) {
        const std::string line = "line " + std::to_string(i) + '\n';
        sent += line;
        sink.write(line);
    }
    EXPECT_TRUE(sink.flush());
    EXPECT_EQ(sink.error(), 0);
    close(ends[1]);
    reader.join();
    close(ends[0]);
    EXPECT_EQ(received, sent);
}

TEST(FileSink, SignalsDoNotDisturbTheWriting) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const text_support::InterruptingSignal signal;
    const std::string sent(1000000, 'x');  // far more than the pipe holds: the writing has to wait
    bool isWritten = false;
    std::thread writer([&] {
        FileSink sink(ends[1]);
        isWritten = sink.write(sent) && sink.flush();
        close(ends[1]);
    });
    signal.sendTo(writer);
    std::string received;
    std::array<char, 5000> buffer{};
    for (ssize_t n = 0; (n = read(ends[0], buffer.data(), buffer.size())) > 0;)
        received.append(buffer.data(), static_cast<std::size_t>(n));
    writer.join();
    close(ends[0]);
    EXPECT_TRUE(isWritten);
    EXPECT_EQ(received, sent);
}

TEST(FileSink, ReportsThatTheReaderIsGone) {
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    close(ends[0]);
    FileSink sink(ends[1]);
    EXPECT_TRUE(sink.write("no reader is left"));
    EXPECT_FALSE(sink.flush());
    EXPECT_EQ(sink.error(), EPIPE);
    close(ends[1]);
    std::signal(SIGPIPE, before);
}

TEST(FileSink, ReportsThatTheDiskIsFull) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    if (full < 0) GTEST_SKIP() << "no /dev/full here";
    FileSink sink(full);
    sink.write("text");
    EXPECT_FALSE(sink.flush());
    EXPECT_EQ(sink.error(), ENOSPC);
    close(full);
}

}  // namespace
}  // namespace tessera_host
