// The values of many key choices, from one statement.
#pragma once

#include <span>
#include <string>
#include <unordered_map>

#include "host/engine/reference_query.h"
#include "host/engine/result.h"
#include "host/engine/sqlite/connection.h"

namespace tessera_host {

// What one statement with GROUP BY returned. It is only used where it gives what single statements give: see
// canServe() and hasSameOrder().
class GroupedValues {
  public:
    // True when the rows with these key values are one group, if there are any: each value is not a number,
    // or a number in the one form that is its text as well.
    [[nodiscard]] static bool canServe(const KeyValues& keys);

    // Runs the statement and keeps the groups that the questions name. An error when the limits ended the
    // run, the values are too large to be kept, something failed, or the request was cancelled. REQUIRES: all
    // questions are about `selection`, which has keys.
    [[nodiscard]] static Expected<GroupedValues> load(Connection& connection, const Selection& selection,
                                                      std::span<const Question> questions);

    // The most bytes that the values of one call may have, since some may never be used.
    [[nodiscard]] static std::uint64_t maxBytes(Connection& connection);

    struct Found {
        std::size_t count = 0;             // of groups; several may share a text, as 5 and '5' do
        const CellValue* value = nullptr;  // of the group when it is one
    };
    // REQUIRES: the key values were among the questions'.
    [[nodiscard]] Found find(const KeyValues& keys) const;

  private:
    struct Group {
        std::size_t count = 0;
        CellValue value;
    };

    // Returns the bytes of the value that was kept.
    std::uint64_t insertRow(const StatementRun& run, std::size_t keyCount);

    std::unordered_map<KeyText, Group> m_groups;  // of all questions, also without rows
};

}  // namespace tessera_host
