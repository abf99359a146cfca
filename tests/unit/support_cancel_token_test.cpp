#include "support/cancel_token.h"

#include <gtest/gtest.h>
#include <csignal>

#include <optional>
#include <thread>

namespace {

using tessera_support::CancelSource;
using tessera_support::CancelToken;

TEST(CancelToken, WithoutASourceIsNeverCancelled) {
    const CancelToken token;
    EXPECT_FALSE(token.isCancelled());
}

TEST(CancelToken, IsCancelledTogetherWithAllItsCopies) {
    CancelSource source;
    const CancelToken first = source.token();
    const CancelToken copy = first;
    const CancelToken second = source.token();
    EXPECT_FALSE(first.isCancelled());
    source.cancel();
    EXPECT_TRUE(source.isCancelled());
    EXPECT_TRUE(first.isCancelled());
    EXPECT_TRUE(copy.isCancelled());
    EXPECT_TRUE(second.isCancelled());
    EXPECT_TRUE(source.token().isCancelled());
}

TEST(CancelToken, OfAnotherSourceIsNotAffected) {
    CancelSource source;
    const CancelSource other;
    const CancelToken token = other.token();
    source.cancel();
    EXPECT_FALSE(token.isCancelled());
}

TEST(CancelToken, OutlivesItsSource) {
    std::optional<CancelSource> source(std::in_place);
    const CancelToken untouched = source->token();
    source.reset();
    EXPECT_FALSE(untouched.isCancelled());
    source.emplace();
    const CancelToken cancelled = source->token();
    source->cancel();
    source.reset();
    EXPECT_TRUE(cancelled.isCancelled());
}

TEST(CancelToken, StopsWorkOnAnotherThread) {
    CancelSource source;
    std::thread worker([token = source.token()] {
        while (!token.isCancelled())
            std::this_thread::yield();
    });
    source.cancel();
    worker.join();
}

TEST(CancelToken, MayBeCancelledInASignalHandler) {
    static CancelSource source;
    struct sigaction action {};
    action.sa_handler = [](int) { source.cancel(); };
    struct sigaction before {};
    ASSERT_EQ(sigaction(SIGUSR1, &action, &before), 0);
    const CancelToken token = source.token();
    EXPECT_FALSE(token.isCancelled());
    raise(SIGUSR1);
    EXPECT_TRUE(token.isCancelled());
    sigaction(SIGUSR1, &before, nullptr);
}

}  // namespace
