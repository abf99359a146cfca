#include "host/text/json_writer.h"

#include <string_view>
#include <vector>

#include "host/text/json_text.h"
#include "host/text/name_groups.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;
using basekit2::variant_t;

class BagWriter {
  public:
    BagWriter(TextSink& sink, JsonForm form) : m_sink(sink), m_text(sink, form) {}

    void write(const variant_bag_t& root);

  private:
    // An object that is being written; its children lie in m_children from `next` to `end`.
    struct Level {
        std::size_t begin;
        std::size_t next;
        std::size_t end;
        const variant_t* arrayOf;  // null when there is none
        bool isInArray = false;
        bool hasArray = false;  // the group that arrayOf names has been written
    };

    void openObject(const variant_bag_t& bag);
    void closeObject();
    void writeNextChild();
    void writeValues(const variant_bag_t& bag);
    void writeValue(const variant_t& value);

    TextSink& m_sink;
    JsonText m_text;
    NameGroups m_groups;
    std::vector<NamedBag> m_children;  // of all open levels, one after the other
    std::vector<Level> m_levels;
};

bool isCalled(std::string_view name, const variant_t* arrayOf) {
    return arrayOf && arrayOf->get<std::string_view>() == name;
}

void BagWriter::write(const variant_bag_t& root) {
    openObject(root);
    // m_levels instead of recursion: bags may nest to any depth.
    while (!m_levels.empty() && m_sink.good()) {
        if (m_levels.back().next == m_levels.back().end)
            closeObject();
        else
            writeNextChild();
    }
}

void BagWriter::openObject(const variant_bag_t& bag) {
    m_text.open('{');
    writeValues(bag);
    const std::size_t begin = m_children.size();
    m_groups.append(bag, m_children);
    const variant_t* arrayOf = bag.get("arrayOf");
    if (arrayOf && !arrayOf->can_get<std::string_view>()) arrayOf = nullptr;
    m_levels.push_back({begin, begin, m_children.size(), arrayOf});
}

void BagWriter::closeObject() {
    const Level& level = m_levels.back();
    if (level.isInArray) m_text.close(']');
    if (level.arrayOf && !level.hasArray) {
        m_text.key(level.arrayOf->get<std::string_view>());
        m_text.open('[');
        m_text.close(']');
    }
    m_text.close('}');
    m_children.resize(level.begin);
    m_levels.pop_back();
}

// REQUIRES: the innermost level has a further child.
void BagWriter::writeNextChild() {
    Level& level = m_levels.back();
    const std::size_t at = level.next++;
    const NamedBag child = m_children[at];
    // The first child of its name. Several of one name are an array, as is a single one that arrayOf names.
    if (at == level.begin || m_children[at - 1].name != child.name) {
        if (level.isInArray) m_text.close(']');
        m_text.key(child.name);
        const bool isNamed = isCalled(child.name, level.arrayOf);
        level.hasArray = level.hasArray || isNamed;
        level.isInArray = isNamed || (level.next < level.end && m_children[level.next].name == child.name);
        if (level.isInArray) m_text.open('[');
    }
    if (level.isInArray) m_text.element();
    openObject(*child.bag);
}

void BagWriter::writeValues(const variant_bag_t& bag) {
    for (auto it = bag.begin_values(); !it.at_end(); it.next()) {
        m_text.key(it.get_name());
        writeValue(it.get_value());
    }
}

void BagWriter::writeValue(const variant_t& value) {
    switch (value.type()) {
        case variant_t::type_t::string:
            m_text.string(value.get<std::string_view>());
            break;
        case variant_t::type_t::integer:
            m_text.integer(value.get<std::int64_t>());
            break;
        case variant_t::type_t::boolean:
            m_text.literal(value.get<bool>() ? "true" : "false");
            break;
        case variant_t::type_t::none:
            m_text.literal("null");
            break;
    }
}

}  // namespace

bool writeJson(const variant_bag_t& bag, TextSink& sink, JsonForm form) {
    BagWriter(sink, form).write(bag);
    return sink.flush();
}

}  // namespace tessera_host
