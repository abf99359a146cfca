// Which engine opens an address.
#include "host/engine/engine_registry.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>

#include "tests/support/memory_engine.h"

namespace tessera_test {
namespace {

using namespace tessera_host;

// An engine that opens nothing and says its name.
Engine namedEngine(std::string name) {
    Engine engine;
    engine.name = name;
    engine.description = name + " files";
    engine.open = [name](const std::string&, const OpenOptions&,
                         const CancelToken&) -> Expected<std::shared_ptr<IResult>> {
        return Error{ErrorKind::failed, name};
    };
    return engine;
}

class EngineRegistryTest : public testing::Test {
  protected:
    EngineRegistryTest() {
        Engine first = namedEngine("first");
        first.recognizes = [](const std::string& path) { return path.starts_with("1"); };
        first.endings = {".one"};
        Engine second = namedEngine("second");
        second.schemes = {"two"};
        second.recognizes = [](const std::string& path) { return path.starts_with("2"); };
        second.endings = {".two", ".zwei"};
        registry.add(first);
        registry.add(second);
    }

    std::string engineFor(const std::string& address, const std::string& name = {}) const {
        return registry.open(address, {name, {}}).error().text;
    }

    EngineRegistry registry;
};

TEST_F(EngineRegistryTest, TheSchemeDecidesFirst) {
    EXPECT_EQ(engineFor("two://1.one"), "second");
    EXPECT_EQ(engineFor("TWO://host/x"), "second");
}

TEST_F(EngineRegistryTest, ThenTheContentThenTheEnding) {
    EXPECT_EQ(engineFor("2.one"), "second");
    EXPECT_EQ(engineFor("1.two"), "first");
    EXPECT_EQ(engineFor("x.two"), "second");
    EXPECT_EQ(engineFor("x.ZWEI"), "second");
    EXPECT_EQ(engineFor("x.one"), "first");
}

TEST_F(EngineRegistryTest, WhatNoEngineKnowsGoesToTheFirst) {
    EXPECT_EQ(engineFor("x"), "first");
    EXPECT_EQ(engineFor(""), "first");
    EXPECT_EQ(engineFor("://x"), "first");
    EXPECT_EQ(engineFor("9two://x"), "first");
    EXPECT_EQ(engineFor("./two://x"), "first");
}

TEST_F(EngineRegistryTest, ANameDecidesBeforeAllElse) {
    EXPECT_EQ(engineFor("two://x", "first"), "first");
    const auto unknown = registry.open("x", {"third", {}});
    ASSERT_FALSE(unknown);
    EXPECT_EQ(unknown.error(), (Error{ErrorKind::usage, "there is no engine \"third\""}));
}

TEST_F(EngineRegistryTest, AnUnknownSchemeIsAnErrorThatNamesTheKnownEngines) {
    const auto opened = registry.open("three://x");
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error(), (Error{ErrorKind::cannotOpen,
                                     "there is no engine for addresses that begin with \"three://\"; this "
                                     "program reads first files, second files"}));
}

TEST_F(EngineRegistryTest, OpeningFailsAsCannotOpenOrAsCancelled) {
    EXPECT_EQ(registry.open("x").error().kind, ErrorKind::cannotOpen);
    Engine cancelled = namedEngine("cancelled");
    cancelled.open = [](const std::string&, const OpenOptions&,
                        const CancelToken&) -> Expected<std::shared_ptr<IResult>> {
        return cancelledError();
    };
    EngineRegistry others;
    others.add(cancelled);
    EXPECT_TRUE(others.open("x").error().isCancelled());
    EXPECT_EQ(EngineRegistry().open("x").error().kind, ErrorKind::usage);
}

TEST_F(EngineRegistryTest, OpensAResult) {
    const auto store = std::make_shared<MemoryResultStore>(MemoryTables{});
    registry.add(memoryEngine(store));
    const auto opened = registry.open("memory://tables");
    ASSERT_TRUE(opened);
    EXPECT_EQ(*opened, store);
    EXPECT_EQ((*opened)->engineName(), "memory");
}

TEST(BuiltInEngines, RefuseAddressesOfOtherDatabases) {
    const auto opened = EngineRegistry::builtIn().open("postgresql://host/flows");
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error(),
              (Error{ErrorKind::cannotOpen,
                     "there is no engine for addresses that begin with \"postgresql://\"; this "
                     "program reads SQLite files"}));
}

TEST(BuiltInEngines, RecognizeSqliteByItsFirstBytes) {
    std::string folder = (std::filesystem::temp_directory_path() / "tessera-engines-XXXXXX").string();
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    const std::string path = folder + "/a#b?c.bin";
    sqlite3* writer = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &writer), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(writer, "CREATE TABLE t(a)", nullptr, nullptr, nullptr), SQLITE_OK);
    const Engine& sqlite = EngineRegistry::builtIn().engines().front();
    EXPECT_EQ(sqlite.name, "sqlite");
    EXPECT_TRUE(sqlite.recognizes(path));

    // Looking at the file leaves the locks of this process alone: another process still sees them.
    ASSERT_EQ(sqlite3_exec(writer, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    EXPECT_TRUE(sqlite.recognizes(path));
    const std::string probe =
        "python3 -c 'import sqlite3,sys\ntry:\n sqlite3.connect(sys.argv[1], timeout=0)"
        ".execute(\"SELECT * FROM t\")\nexcept sqlite3.OperationalError: sys.exit(9)' '" +
        path + "'";
    EXPECT_EQ(WEXITSTATUS(std::system(probe.c_str())), 9);
    sqlite3_close(writer);

    std::ofstream(folder + "/text") << "SQLite format 3";
    std::ofstream(folder + "/other") << "SQLite format 4, which is another one";
    for (const char* name : {"/text", "/other", "/none", ""})
        EXPECT_FALSE(sqlite.recognizes(folder + name)) << name;
    EXPECT_FALSE(sqlite.recognizes(""));
    std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace tessera_test
