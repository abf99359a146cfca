#include "host/engine/sqlite/authorizer.h"

#include <utility>

#include "host/document/text.h"

namespace tessera_host {
namespace {

// SQLite passes null for an argument that the action does not have.
std::string_view viewOf(const char* text) {
    return text ? std::string_view(text) : std::string_view();
}

// What people call the actions that a document might try; the others share one name.
std::string_view nameOf(int action) {
    switch (action) {
        case SQLITE_PRAGMA:
            return "PRAGMA";
        case SQLITE_ATTACH:
            return "ATTACH";
        case SQLITE_DETACH:
            return "DETACH";
        case SQLITE_INSERT:
            return "INSERT";
        case SQLITE_UPDATE:
            return "UPDATE";
        case SQLITE_DELETE:
            return "DELETE";
        case SQLITE_TRANSACTION:
            return "a transaction";
        case SQLITE_SAVEPOINT:
            return "a savepoint";
        case SQLITE_REINDEX:
            return "REINDEX";
        default:
            return "a change of the database";
    }
}

}  // namespace

std::string foldName(std::string_view name) {
    std::string folded(name);
    for (char& c : folded)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return folded;
}

void Authorizer::install(sqlite3* database) {
    sqlite3_set_authorizer(database, &Authorizer::onAction, this);
}

void Authorizer::guard(bool mayRecurse) {
    m_mayRecurse = mayRecurse;
    m_refusal.clear();
    m_isGuarding = true;
}

int Authorizer::onAction(void* self, int action, const char* first, const char* second, const char* database,
                         const char* view) {
    auto& authorizer = *static_cast<Authorizer*>(self);
    if (!authorizer.m_isGuarding) return SQLITE_OK;
    return authorizer.decide(action, viewOf(first), viewOf(second), viewOf(database), viewOf(view));
}

int Authorizer::decide(int action, std::string_view first, std::string_view second, std::string_view database,
                       std::string_view view) {
    switch (action) {
        case SQLITE_SELECT:
            return SQLITE_OK;
        case SQLITE_READ:
            return decideRead(first, database);
        case SQLITE_FUNCTION:
            // They can make billions of characters, and cannot be stopped meanwhile.
            if (view.empty() && (foldName(second) == "printf" || foldName(second) == "format"))
                return refuse(
                    "the function " + quoted(second) +
                    " is not allowed; the query's \"format\" and \"unit\" say how a value is shown");
            if (m_functions.contains(foldName(second))) return SQLITE_OK;
            return refuse("the function " + quoted(second) + " is not allowed");
        case SQLITE_RECURSIVE:
            if (m_mayRecurse && !view.empty()) return SQLITE_OK;
            return refuse("a recursive query is only allowed in a view of the database");
        default:
            if (first == "sqlite_master") return refuse("only tables and views of the database may be read");
            return refuse("only reading is allowed, not " + std::string(nameOf(action)) +
                          (first.empty() ? "" : " " + quoted(first)));
    }
}

// Everything in the database may be read. What is not in it is the name of a common table expression or one
// of SQLite's virtual tables, of which only those that take JSON apart are harmless.
int Authorizer::decideRead(std::string_view table, std::string_view database) {
    const std::string name = foldName(table);
    const bool isElsewhere =
        (!database.empty() && foldName(database) != "main") || name.starts_with("sqlite_temp_");
    if (!isElsewhere) {
        if (m_tables.contains(name) || name == "json_each" || name == "json_tree") return SQLITE_OK;
        const bool isBuiltIn = m_modules.contains(name) || name.starts_with("pragma_");
        if (!isBuiltIn) return SQLITE_OK;
    }
    return refuse(quoted(table) + " is not a table or view of the database");
}

int Authorizer::refuse(std::string text) {
    // The first refusal is the cause; later ones follow from it.
    if (m_refusal.empty()) m_refusal = std::move(text);
    return SQLITE_DENY;
}

}  // namespace tessera_host
