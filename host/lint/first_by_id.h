// Where an id is first used.
#pragma once

#include <string_view>
#include <unordered_map>

#include "host/document/document_structure.h"

namespace tessera_host {

// Finds the first of the nodes or links of a document that has an id. Makes its index when it is first
// needed: documents without mistakes do without. One thread at a time.
template <class Objects>
class FirstById {
  public:
    // `objects` must outlive this.
    explicit FirstById(const Objects& objects) : m_objects(objects) {}

    // Null when there is none.
    [[nodiscard]] DocumentStructure::Element find(std::string_view id) {
        if (m_index.empty())
            for (const auto& object : m_objects)
                if (object.element != nullptr) m_index.try_emplace(object.id, object.element);
        const auto it = m_index.find(id);
        return it == m_index.end() ? nullptr : it->second;
    }

  private:
    const Objects& m_objects;
    std::unordered_map<std::string_view, DocumentStructure::Element> m_index;
};

}  // namespace tessera_host
