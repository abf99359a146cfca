// Opening files that are databases, and others.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/unit/host_engine_sqlite_fixture.h"

namespace tessera_host::sqlite_test {
namespace {

namespace fs = std::filesystem;

class SqliteDatabase : public testing::Test {
  protected:
    // Why the file cannot be opened; "" when it can.
    static std::string reasonFor(const std::string& path, Settings settings = {}) {
        const auto opened = EngineRegistry::builtIn().open(path, {"", settings.busy});
        if (opened) return "";
        EXPECT_EQ(opened.error().kind, ErrorKind::cannotOpen);
        EXPECT_NE(opened.error().text, "");
        return opened.error().text;
    }

    std::string named(const char* name, const char* rest) const {
        return '"' + folder.file(name) + '"' + rest;
    }

    TempFolder folder;
};

TEST_F(SqliteDatabase, OpensADatabase) {
    makeDatabase(folder.file("a.db"), "CREATE TABLE t(a)");
    EXPECT_EQ(reasonFor(folder.file("a.db")), "");
}

TEST_F(SqliteDatabase, RejectsWhatIsNotAFile) {
    EXPECT_EQ(reasonFor(folder.file("none.db")), "there is no such file");
    EXPECT_EQ(reasonFor(folder.file("none/a.db")), "there is no such file");
    EXPECT_EQ(reasonFor(folder.file("")), "it is a directory");
    EXPECT_EQ(reasonFor(""), "\"\" is not the name of a file");
    EXPECT_EQ(reasonFor(std::string("a\0b", 3)), "\"a b\" is not the name of a file");
    EXPECT_FALSE(fs::exists(folder.file("none.db")));
}

TEST_F(SqliteDatabase, DoesNotWaitForAPipe) {
    ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
    EXPECT_EQ(reasonFor(folder.file("pipe")), "it is not a regular file");
}

TEST_F(SqliteDatabase, SaysThatAFileMayNotBeRead) {
    makeDatabase(folder.file("a.db"), "CREATE TABLE t(a)");
    fs::permissions(folder.file("a.db"), fs::perms::none);
    fs::permissions(folder.file(""), fs::perms::group_exec | fs::perms::others_exec, fs::perm_options::add);
    const uid_t user = geteuid();
    ASSERT_EQ(seteuid(user == 0 ? 65534 : user), 0);  // the superuser may read every file
    const std::string reason = reasonFor(folder.file("a.db"));
    ASSERT_EQ(seteuid(user), 0);
    EXPECT_EQ(reason, "it may not be read (Permission denied)");
}

// SQLite wants to make files beside one in WAL mode, even to read it.
class SqliteWalInAClosedFolder : public SqliteDatabase {
  protected:
    SqliteWalInAClosedFolder() {
        fs::create_directory(folder.file("closed"));
        makeDatabase(path, "PRAGMA journal_mode = WAL; CREATE TABLE t(a); INSERT INTO t VALUES (1), (2)");
        fs::permissions(folder.file(""), fs::perms::group_exec | fs::perms::others_exec,
                        fs::perm_options::add);
        fs::permissions(path, fs::perms::group_read | fs::perms::others_read, fs::perm_options::add);
    }
    ~SqliteWalInAClosedFolder() override { open(); }

    // No user may write, not even the superuser, who is another user until open().
    void close() {
        fs::permissions(folder.file("closed"), fs::perms(0555));
        ASSERT_EQ(seteuid(user == 0 ? 65534 : user), 0);
    }
    void open() {
        EXPECT_EQ(seteuid(user), 0);
        fs::permissions(folder.file("closed"), fs::perms::owner_all, fs::perm_options::add);
    }

    Settings settings;
    const std::string path = folder.file("closed/a.db");
    const uid_t user = geteuid();
};

TEST_F(SqliteWalInAClosedFolder, IsReadAsItIs) {
    for (const char* name : {"closed/a.db-wal", "closed/a.db-shm"})
        ASSERT_FALSE(fs::exists(folder.file(name)));
    close();
    Pane pane(path, settings);
    pane.query("Sum", "t", "SUM(a)");
    EXPECT_EQ(pane.value("/Sum"), "3");
}

TEST_F(SqliteWalInAClosedFolder, ItsNameIsTakenLiterally) {
    const std::string odd = folder.file("closed/a?mode=rw#%41.db");
    fs::rename(path, odd);
    close();
    EXPECT_EQ(reasonFor(odd), "");
}

TEST_F(SqliteWalInAClosedFolder, AChangeWhileItIsReadIsReported) {
    close();
    Pane pane(path, settings);
    pane.query("Sum", "t", "SUM(a)").query("Count", "t", "COUNT(*)");
    {
        const SnapshotUse snapshot(pane.source(), {});
        EXPECT_EQ(pane.value("/Sum"), "3");
        open();
        Writer(path).run("INSERT INTO t VALUES (39)");  // its end brings the change into the file
        EXPECT_EQ(pane.failure("/Count"), "query \"Count\": the database was changed while it was read");
    }
    EXPECT_EQ(pane.value("/Sum"), "42");
}

TEST_F(SqliteWalInAClosedFolder, PendingChangesAreNotIgnored) {
    fs::copy_file(path, folder.file("other.db"));
    const Writer writer(folder.file("other.db"));
    writer.run("INSERT INTO t VALUES (39)");
    for (const char* ending : {"", "-wal"})
        fs::copy_file(folder.file("other.db") + ending, path + ending, fs::copy_options::overwrite_existing);
    close();
    EXPECT_NE(reasonFor(path), "");
}

TEST_F(SqliteDatabase, RejectsWhatIsNotADatabase) {
    std::ofstream(folder.file("text")) << std::string(5000, 'x');
    EXPECT_EQ(reasonFor(folder.file("text")), "the file is not an SQLite database");
    std::ofstream(folder.file("short")) << "SQLite format 3";
    EXPECT_EQ(reasonFor(folder.file("short")), "the file is not an SQLite database");
    std::ofstream(folder.file("empty")).flush();
    EXPECT_EQ(reasonFor(folder.file("empty")), "it is empty");
}

TEST_F(SqliteDatabase, DetectsATruncatedFile) {
    const std::string path = folder.file("a.db");
    makeDatabase(path, numbersTable("t", 10000));
    fs::resize_file(path, fs::file_size(path) / 2);
    EXPECT_EQ(reasonFor(path), "the database is damaged or truncated (database disk image is malformed)");
}

TEST_F(SqliteDatabase, NoticesADamagedPage) {
    const std::string path = folder.file("a.db");
    makeDatabase(path, numbersTable("t", 10000));
    {
        std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(4096 * 10);
        file << std::string(4096, '\xA5');
    }
    Pane pane(path);
    pane.query("Sum", "t", "SUM(i)");
    EXPECT_EQ(pane.failure("/Sum"),
              "query \"Sum\": the database is damaged or truncated (database disk image is malformed)");
    EXPECT_EQ(pane.failure("/Sum"),
              "query \"Sum\": the database is damaged or truncated (database disk image is malformed)");
}

TEST_F(SqliteDatabase, WaitsForALockAndSaysSo) {
    const std::string path = folder.file("a.db");
    makeDatabase(path, "CREATE TABLE t(a)");
    Settings settings;
    settings.busy = std::chrono::milliseconds(100);
    const Writer writer(path);
    writer.run("BEGIN EXCLUSIVE");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(reasonFor(path, settings), "the database is locked by another program");
    EXPECT_GE(elapsedSince(start), settings.busy);
    writer.run("COMMIT");
    EXPECT_EQ(reasonFor(path, settings), "");
}

TEST_F(SqliteDatabase, SaysThatAWriterHasToTidyUpFirst) {
    const std::string path = folder.file("a.db");
    makeDatabase(path, numbersTable("t", 10000));
    {
        // Copied in the middle of a change, so that the copy looks as after a crash.
        const Writer writer(path);
        writer.run("PRAGMA cache_size = 5; BEGIN; UPDATE t SET x = -x;");
        fs::copy_file(path, folder.file("crashed.db"));
        fs::copy_file(path + "-journal", folder.file("crashed.db-journal"));
    }
    EXPECT_EQ(reasonFor(folder.file("crashed.db")),
              "the database has unfinished changes that a program with write access must settle first");
    Writer(folder.file("crashed.db")).run("SELECT * FROM t");  // any use by a writer settles them
    EXPECT_EQ(reasonFor(folder.file("crashed.db")), "");
}

TEST_F(SqliteDatabase, TakesPathsLiterally) {
    const fs::path before = fs::current_path();
    fs::current_path(folder.file(""));
    for (const char* name : {"file:a.db?mode=rwc", ":memory:", "-x y%41#.db", "file::memory:"}) {
        EXPECT_EQ(reasonFor(name), "there is no such file");
        makeDatabase(std::string("./") + name, "CREATE TABLE t(a)");
        EXPECT_EQ(reasonFor(name), "") << name;
        Pane pane(name);
        pane.query("Count", "t", "COUNT(*)");
        EXPECT_EQ(pane.value("/Count"), "0") << name;
    }
    fs::current_path(before);
}

TEST_F(SqliteDatabase, MessagesAreOneLine) {
    EXPECT_EQ(reasonFor(folder.file("a\nb\xFF")).find('\n'), std::string::npos);
}

TEST_F(SqliteDatabase, OpeningCanBeCancelled) {
    const std::string path = folder.file("a.db");
    makeDatabase(path, "CREATE TABLE t(a)");
    const Writer writer(path);
    writer.run("BEGIN EXCLUSIVE");
    Progress progress;
    progress.cancelAfter(std::chrono::milliseconds(50));
    const auto start = std::chrono::steady_clock::now();
    const auto opened = EngineRegistry::builtIn().open(path, {}, progress.token());
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error(), (Error{ErrorKind::cancelled, "the request was cancelled"}));
    EXPECT_LT(elapsedSince(start), std::chrono::milliseconds(1000));
}

TEST_F(SqliteDatabase, ReadsOtherEncodings) {
    for (const char* encoding : {"UTF-16le", "UTF-16be"}) {
        const std::string path = folder.file(encoding);
        makeDatabase(
            path, "PRAGMA encoding = '" + std::string(encoding) +
                      "'; CREATE TABLE \"täble\"(k, v); INSERT INTO \"täble\" VALUES ('Zürich', '\u20AC'), "
                      "('Zurich', 'x')");
        Pane pane(path);
        pane.query("V", "täble", "MAX(v)", {{"key", "k"}});
        EXPECT_EQ(pane.value("/V/Zürich"), "\u20AC") << encoding;
    }
}

}  // namespace
}  // namespace tessera_host::sqlite_test
