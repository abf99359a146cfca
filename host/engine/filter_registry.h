// The filters of a pane, as the library's handlers see them.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "host/document/filters.h"
#include "platform/basekit2/ref_counted.h"
#include "platform/qlib_1/input_data.h"

namespace tessera_host {

// Made by InputData and handed out through its interfaces, so handlers may keep it for longer. Any thread.
class FilterRegistry final : public basekit2::ref_counted_t<qlib_1::IFilterRegistry> {
  public:
    explicit FilterRegistry(Filters filters) : m_filters(std::move(filters)) {}

    basekit2::sptr_t<basekit2::IObject> queryInterface(basekit2::type_id_t id) override {
        if (id == qlib_1::IFilterRegistry::typeId) return basekit2::sptr_t<basekit2::IObject>::share(this);
        return nullptr;
    }

    // Called by the library before it adds a filter to a query.
    [[nodiscard]] bool hasFilter(const std::string& name) const override {
        const std::scoped_lock lock(m_mutex);
        return m_filters.contains(name);
    }

    // The filter's SQL, or none when there is no such filter.
    [[nodiscard]] std::optional<std::string> predicateOf(const std::string& name) const {
        const std::scoped_lock lock(m_mutex);
        const auto it = m_filters.find(name);
        if (it == m_filters.end()) return std::nullopt;
        return it->second.predicate;
    }

    // In alphabetical order.
    [[nodiscard]] std::vector<std::string> names() const {
        const std::scoped_lock lock(m_mutex);
        std::vector<std::string> names;
        names.reserve(m_filters.size());
        for (const auto& [name, filter] : m_filters)
            names.push_back(name);
        return names;
    }

    // The next look-up finds the new ones.
    void replace(Filters filters) {
        const std::scoped_lock lock(m_mutex);
        m_filters.swap(filters);
    }

  private:
    mutable std::mutex m_mutex;
    Filters m_filters;
};

}  // namespace tessera_host
