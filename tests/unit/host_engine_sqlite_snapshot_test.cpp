// One request sees one state, and the next one the newest.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/unit/host_engine_sqlite_fixture.h"

namespace tessera_host::sqlite_test {
namespace {

namespace fs = std::filesystem;

class SqliteSnapshot : public testing::Test {
  protected:
    SqliteSnapshot() {
        makeDatabase(path, "CREATE TABLE t(k, v); INSERT INTO t VALUES ('a', 1), ('b', 2)");
        settings.busy = std::chrono::milliseconds(100);
    }

    Pane& counting(Pane& pane) {
        return pane.query("Count", "t", "COUNT(*)").query("Sum", "t", "SUM(v)", {{"key", "k"}});
    }

    TempFolder folder;
    const std::string path = folder.file("a.db");
    Settings settings;
};

TEST_F(SqliteSnapshot, SeesOneStateOfAWalDatabase) {
    const Writer writer(path);
    writer.run("PRAGMA journal_mode = WAL");
    Pane pane(path, settings);
    counting(pane);
    {
        const SnapshotUse snapshot(pane.source(), {});
        writer.run("INSERT INTO t VALUES ('a', 10)");  // before the first query, too
        EXPECT_EQ(pane.value("/Count"), "2");
        writer.run("INSERT INTO t VALUES ('a', 100)");
        EXPECT_EQ(pane.value("/Sum/a"), "1");
        EXPECT_EQ(pane.value("/Count"), "2");
    }
    EXPECT_EQ(pane.value("/Count"), "4");
    EXPECT_EQ(pane.value("/Sum/a"), "111");
}

TEST_F(SqliteSnapshot, SeesOneStateOfAJournalDatabase) {
    const Writer writer(path);
    Pane pane(path, settings);
    counting(pane);
    {
        const SnapshotUse snapshot(pane.source(), {});
        writer.run("BEGIN; INSERT INTO t VALUES ('a', 10)");
        EXPECT_EQ(writer.tryRun("COMMIT"), SQLITE_BUSY);  // has to wait for the snapshot's end
        EXPECT_EQ(pane.value("/Count"), "2");
        EXPECT_EQ(pane.value("/Sum/a"), "1");
    }
    writer.run("COMMIT");
    EXPECT_EQ(pane.value("/Count"), "3");
    EXPECT_EQ(pane.value("/Sum/a"), "11");
}

TEST_F(SqliteSnapshot, NoLockIsHeldBetweenRequests) {
    const Writer writer(path);
    Pane pane(path, settings);
    counting(pane);
    EXPECT_EQ(pane.value("/Count"), "2");
    writer.run("BEGIN EXCLUSIVE; INSERT INTO t VALUES ('c', 3); COMMIT");
    EXPECT_EQ(pane.value("/Count"), "3");
    EXPECT_EQ(pane.value("/Sum/zzz"), "");
    writer.run("BEGIN EXCLUSIVE; DELETE FROM t; COMMIT");
    EXPECT_EQ(pane.value("/Count"), "0");
}

TEST_F(SqliteSnapshot, NestedOnesShareTheOuterState) {
    const Writer writer(path);
    writer.run("PRAGMA journal_mode = WAL");
    Pane pane(path, settings);
    counting(pane);
    const SnapshotUse outer(pane.source(), {});
    {
        const SnapshotUse inner(pane.source(), {});
        EXPECT_EQ(pane.value("/Count"), "2");
    }
    writer.run("DELETE FROM t");
    EXPECT_EQ(pane.value("/Count"), "2");
    EXPECT_EQ(pane.value("/Sum/b"), "2");
    EXPECT_TRUE(outer.state());
}

TEST_F(SqliteSnapshot, AHoldBeginsWithTheFirstQuestionAndKeepsWhatItSaw) {
    const Writer writer(path);
    Pane pane(path, settings);
    counting(pane);
    {
        const SnapshotHold hold(pane.source());
        writer.run("BEGIN EXCLUSIVE; INSERT INTO t VALUES ('a', 10); COMMIT");  // nothing is locked yet
        EXPECT_EQ(pane.value("/Count"), "3");
        EXPECT_NE(writer.tryRun("INSERT INTO t VALUES ('a', 100)"), SQLITE_OK);
        EXPECT_EQ(pane.value("/Sum/a"), "11");
    }
    writer.run("INSERT INTO t VALUES ('a', 100)");
    {
        const SnapshotHold hold(pane.source());
        const SnapshotHold another(pane.source());
        EXPECT_EQ(pane.value("/Sum/a"), "111");
    }
    writer.run("DELETE FROM t");
}

TEST_F(SqliteSnapshot, AHoldKeepsTheFailureOfTheFirstQuestion) {
    Pane pane(path, settings);
    counting(pane);
    EXPECT_EQ(pane.value("/Count"), "2");
    const Writer writer(path);
    writer.run("BEGIN EXCLUSIVE");
    const SnapshotHold hold(pane.source());
    EXPECT_EQ(pane.failure("/Count"), "the database is locked by another program");
    writer.run("ROLLBACK");
    EXPECT_EQ(pane.value("/Count"), "[FailedTo]");
}

TEST_F(SqliteSnapshot, ALockedDatabaseFailsTheRequestOnly) {
    Pane pane(path, settings);
    counting(pane);
    EXPECT_EQ(pane.value("/Count"), "2");
    const Writer writer(path);
    writer.run("BEGIN EXCLUSIVE");
    {
        const SnapshotUse snapshot(pane.source(), {});
        ASSERT_FALSE(snapshot.state());
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(pane.failure("/Count"), "the database is locked by another program");
        EXPECT_EQ(pane.value("/Sum/a"),
                  "[FailedTo]");  // the whole request fails, is reported once, and does not wait again
        EXPECT_TRUE(pane.messenger.texts.empty());
        EXPECT_LT(elapsedSince(start), settings.busy);
        writer.run("ROLLBACK");
        EXPECT_EQ(pane.value("/Count"), "[FailedTo]");  // half of a request would be worse than none
    }
    EXPECT_EQ(pane.value("/Count"), "2");
}

TEST_F(SqliteSnapshot, WaitingForALockCanBeCancelled) {
    settings.busy = std::chrono::seconds(30);
    Pane pane(path, settings);
    counting(pane);
    EXPECT_EQ(pane.value("/Count"), "2");
    const Writer writer(path);
    writer.run("BEGIN EXCLUSIVE");
    Progress progress;
    progress.cancelAfter(std::chrono::milliseconds(50));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(pane.value("/Count", &progress), "[Cancelled]");
    EXPECT_LT(elapsedSince(start), std::chrono::milliseconds(1000));
    EXPECT_TRUE(pane.messenger.texts.empty());
}

TEST_F(SqliteSnapshot, AReplacedFileIsSeen) {
    Pane pane(path, settings);
    counting(pane);
    EXPECT_EQ(pane.value("/Count"), "2");
    makeDatabase(folder.file("new.db"), "CREATE TABLE t(v, k); INSERT INTO t VALUES (5, 'a')");
    fs::rename(folder.file("new.db"), path);
    EXPECT_EQ(pane.value("/Count"), "1");
    EXPECT_EQ(pane.value("/Sum/a"), "5");
}

TEST_F(SqliteSnapshot, AFileCopiedOverIsSeen) {
    // Made by the same steps, the two have the same size and the same header.
    makeDatabase(folder.file("new.db"), "CREATE TABLE t(k, v); INSERT INTO t VALUES ('a', 7), ('b', 8)");
    ASSERT_EQ(contentOf(path).substr(0, 100), contentOf(folder.file("new.db")).substr(0, 100));
    Pane pane(path, settings);
    counting(pane);
    EXPECT_EQ(pane.value("/Sum/a"), "1");
    fs::copy_file(folder.file("new.db"), path, fs::copy_options::overwrite_existing);
    EXPECT_EQ(pane.value("/Sum/a"), "7");
}

TEST_F(SqliteSnapshot, ALostFileFailsTheRequestOnly) {
    Pane pane(path, settings);
    counting(pane);
    EXPECT_EQ(pane.value("/Count"), "2");
    const std::string elsewhere = folder.file("elsewhere.db");
    fs::rename(path, elsewhere);
    const std::string named = "\"" + path + "\": ";
    EXPECT_EQ(pane.failure("/Count"), named + "there is no such file");
    std::ofstream(path) << "garbage garbage garbage";
    EXPECT_EQ(pane.failure("/Count"), named + "the file is not an SQLite database");
    fs::copy_file(elsewhere, path, fs::copy_options::overwrite_existing);
    fs::resize_file(path, fs::file_size(path) / 2);
    EXPECT_EQ(pane.failure("/Count"),
              named + "the database is damaged or truncated (database disk image is malformed)");
    fs::copy_file(elsewhere, path, fs::copy_options::overwrite_existing);
    EXPECT_EQ(pane.value("/Count"), "2");
}

TEST_F(SqliteSnapshot, ChangedTablesAreSeen) {
    Pane pane(path, settings);
    counting(pane);
    pane.query("Late", "late", "SUM(v)");
    EXPECT_EQ(pane.value("/Count"), "2");
    EXPECT_EQ(pane.failure("/Late"), "query \"Late\": no such table: late");
    const Writer writer(path);
    writer.run("ALTER TABLE t RENAME COLUMN v TO w; CREATE VIEW late AS SELECT w AS v FROM t");
    EXPECT_EQ(pane.failure("/Sum/a"), "query \"Sum\": no such column: v");
    EXPECT_EQ(pane.value("/Late"), "3");
    writer.run(
        "DROP VIEW late; ALTER TABLE t RENAME COLUMN w TO v; CREATE VIEW late AS SELECT v * 10 AS v FROM t");
    EXPECT_EQ(pane.value("/Sum/a"), "1");
    EXPECT_EQ(pane.value("/Late"), "30");
}

TEST_F(SqliteSnapshot, TheFileStaysAsItIs) {
    for (const char* mode : {"DELETE", "WAL"}) {
        { Writer(path).run(std::string("PRAGMA journal_mode = ") + mode); }
        const std::string before = contentOf(path);
        {
            Pane pane(path, settings);
            counting(pane);
            EXPECT_EQ(pane.value("/Count"), "2");
            EXPECT_EQ(pane.value("/Sum/a"), "1");
        }
        EXPECT_EQ(contentOf(path), before) << mode;
    }
}

}  // namespace
}  // namespace tessera_host::sqlite_test
