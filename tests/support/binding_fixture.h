// Shared by the tests of fetching values: a row set, and a host in memory with its values.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/view_model/display_info.h"
#include "tests/support/log_capture.h"
#include "tests/support/memory_host.h"

namespace tessera_test {

using Reports = std::vector<std::string>;

inline sptr_t<qlib_1::IQuery> query(const std::string& name) {
    return basekit2::make_counted<MemoryQuery>(name);
}

inline sptr_t<qlib_1::IVectorQuery> vectorOf(const std::vector<std::string>& names) {
    std::vector<sptr_t<qlib_1::IQuery>> members;
    for (const std::string& name : names)
        members.push_back(query(name));
    return qlib_1::IVectorQuery::create(std::move(members));
}

struct Binding : testing::Test {
    // Rows of these references; each has the value "old".
    void rows(const std::vector<std::string>& references) {
        for (const std::string& reference : references)
            info.m_rowSet.rows.push_back({"", "old", reference});
    }
    error_code_t fetch(relay2::IProgress* progress = nullptr) {
        return info.setDataFromResult(library, inputData, progress);
    }
    Reports values() const {
        Reports out;
        for (const auto& row : info.m_rowSet.rows)
            out.push_back(row.m_value);
        return out;
    }
    // Fetches, and expects a failure that only this check reports and that keeps the old values.
    void expectFailure(const std::string& condition) {
        EXPECT_TRUE(fetch().is_false());
        EXPECT_EQ(log.reports(), (Reports{"ERROR check " + condition}));
        EXPECT_EQ(values(), Reports(info.m_rowSet.rows.size(), "old"));
    }

    LogCapture log;
    std::shared_ptr<MemoryResult> result = std::make_shared<MemoryResult>();
    sptr_t<MemoryQueryLibrary> memoryLibrary = basekit2::make_counted<MemoryQueryLibrary>();
    sptr_t<qlib_1::IQueryLibrary> library = memoryLibrary;
    sptr_t<qlib_1::IInputData> inputData = basekit2::make_counted<MemoryInputData>(result);
    tessera_1::view_model::DisplayInfo info;
};

// A binding of rows and query q1, q2, q3 with the values 1, 2, 3.
struct ThreeRows : Binding {
    ThreeRows() {
        rows({"/q1", "/q2", "/q3"});
        info.m_rowSet.ds = vectorOf({"q1", "q2", "q3"});
        result->values = {{"q1", "1"}, {"q2", "2"}, {"q3", "3"}};
    }
};

}  // namespace tessera_test
