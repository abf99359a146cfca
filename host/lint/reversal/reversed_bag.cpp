#include "host/lint/reversal/reversed_bag.h"

#include "host/lint/reversal/opposites.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;

void copyValues(const variant_bag_t& from, variant_bag_t& to) {
    to.set_position(from.position());
    for (auto value = from.begin_values(); !value.at_end(); value.next())
        to.put(value.get_name(), value.get_value());
}

void copyChildren(const variant_bag_t& from, variant_bag_t& to) {
    for (auto child = from.begin(); !child.at_end(); child.next())
        to.add_variant_bag(child.get_name()) = child.get_value();
}

// With both ends, the values are exchanged, which keeps the order of the attributes; an end that is alone
// is renamed.
void reverseLink(const variant_bag_t& link, variant_bag_t& to) {
    to.set_position(link.position());
    const bool hasBothEnds = link.get("from") != nullptr && link.get("to") != nullptr;
    for (auto value = link.begin_values(); !value.at_end(); value.next()) {
        const std::string_view name = value.get_name();
        if (name == "direction")
            to.put(name, oppositeDirection(link.get_text(name)));
        else if (name != "from" && name != "to")
            to.put(name, value.get_value());
        else if (hasBothEnds)
            to.put(name, *link.get(otherEnd(name)));
        else
            to.put(otherEnd(name), value.get_value());
    }
    copyChildren(link, to);
}

void reverseLabel(const variant_bag_t& label, variant_bag_t& to) {
    copyValues(label, to);
    to.put("location", otherEnd(label.get_text("location")));
    copyChildren(label, to);
}

// A child of a display section.
void copyEntry(const variant_bag_t& entry, const ReversedElements& elements, variant_bag_t& to) {
    copyValues(entry, to);
    for (auto child = entry.begin(); !child.at_end(); child.next()) {
        variant_bag_t& copy = to.add_variant_bag(child.get_name());
        if (elements.contains(&child.get_value()))
            reverseLabel(child.get_value(), copy);
        else
            copy = child.get_value();
    }
}

// In a graph section links are reversed, in a display section the labels of their entries.
void copySection(const variant_bag_t& section, bool isGraph, const ReversedElements& elements,
                 variant_bag_t& to) {
    copyValues(section, to);
    for (auto child = section.begin(); !child.at_end(); child.next()) {
        variant_bag_t& copy = to.add_variant_bag(child.get_name());
        if (child.get_name() != "link" || (isGraph && !elements.contains(&child.get_value())))
            copy = child.get_value();
        else if (isGraph)
            reverseLink(child.get_value(), copy);
        else
            copyEntry(child.get_value(), elements, copy);
    }
}

}  // namespace

variant_bag_t reversedBag(const variant_bag_t& viewpoint, const ReversedElements& elements) {
    variant_bag_t document;
    copyValues(viewpoint, document);
    for (auto child = viewpoint.begin(); !child.at_end(); child.next()) {
        variant_bag_t& diagram = document.add_variant_bag(child.get_name());
        // Queries and filters do not depend on directions.
        if (child.get_name() != "diagram") {
            diagram = child.get_value();
            continue;
        }
        copyValues(child.get_value(), diagram);
        for (auto section = child.get_value().begin(); !section.at_end(); section.next()) {
            const std::string_view name = section.get_name();
            variant_bag_t& copy = diagram.add_variant_bag(name);
            if (name == "graph" || name == "display")
                copySection(section.get_value(), name == "graph", elements, copy);
            else
                copy = section.get_value();
        }
    }
    return document;
}

}  // namespace tessera_host
