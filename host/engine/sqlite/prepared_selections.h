// The selections of a connection that had a question.
#pragma once

#include <cstddef>
#include <memory>
#include <unordered_map>

#include "host/engine/sqlite/prepared_selection.h"

namespace tessera_host {

// Finds a selection by its contents, so panes on one document share the statements of a connection.
class PreparedSelections {
  public:
    // The selection found is valid until the next call.
    [[nodiscard]] PreparedSelection& find(const Selection& selection);

    void startSnapshot();
    // For another connection or another schema.
    void clear();

  private:
    [[nodiscard]] PreparedSelection& ensureEntry(const Selection& selection);
    void dropStatements();

    std::unordered_map<Selection, std::unique_ptr<PreparedSelection>, SelectionHash> m_selections;
    // How many may have statements, and the bytes of those that had a question before the last one.
    std::size_t m_withStatements = 0;
    std::size_t m_bytes = 0;
    const PreparedSelection* m_last = nullptr;  // its bytes are not counted yet; null for none
};

}  // namespace tessera_host
