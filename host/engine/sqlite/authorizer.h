// What SQL from a document may do: read the tables and views of the database, and call functions that
// compute.
#pragma once

#include <sqlite3.h>

#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace tessera_host {

// Names in the form in which SQLite compares them: ASCII letters small.
using NameSet = std::unordered_set<std::string>;
[[nodiscard]] std::string foldName(std::string_view name);

// Decides for one connection. The connection's own statements are not restricted; those from documents are,
// between guard() and release(), which enclose their preparing and their stepping.
class Authorizer {
  public:
    Authorizer() = default;
    Authorizer(const Authorizer&) = delete;
    Authorizer& operator=(const Authorizer&) = delete;

    // Makes `database` call this authorizer, which must live as long as it.
    void install(sqlite3* database);
    // The tables and views of the database.
    void setTables(NameSet tables) { m_tables = std::move(tables); }
    // The kinds of virtual tables that SQLite itself offers, and the functions that may be called.
    void setBuiltIns(NameSet modules, NameSet functions) {
        m_modules = std::move(modules);
        m_functions = std::move(functions);
    }

    // `mayRecurse`: recursive queries inside of the database's own views are allowed. False when the
    // document's text has common table expressions of its own, because SQLite reports these and a view's
    // alike.
    void guard(bool mayRecurse);
    void release() noexcept { m_isGuarding = false; }
    [[nodiscard]] bool isGuarding() const noexcept { return m_isGuarding; }
    // What was refused first since guard(), as a clause for people; "" when nothing was.
    [[nodiscard]] const std::string& refusal() const noexcept { return m_refusal; }

  private:
    static int onAction(void* self, int action, const char* first, const char* second, const char* database,
                        const char* view);
    int decide(int action, std::string_view first, std::string_view second, std::string_view database,
               std::string_view view);
    int decideRead(std::string_view table, std::string_view database);
    int refuse(std::string text);

    NameSet m_tables;
    NameSet m_modules;
    NameSet m_functions;
    std::string m_refusal;
    bool m_isGuarding = false;
    bool m_mayRecurse = false;
};

}  // namespace tessera_host
