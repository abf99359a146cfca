#include "host/meaning/level_finder.h"

#include <algorithm>
#include <cmath>

namespace tessera_host {

LevelFinder::LevelFinder(const ValueMeaning& meaning) : m_meaning(meaning) {
    const auto& rules = meaning.rules();
    for (std::size_t i = 0; i < rules.size(); ++i) {
        const LevelRule& rule = rules[i];
        if (rule.keys)
            add(m_ofReference[rule.query][keyTextOf(*rule.keys)], i);
        else
            add(m_ofQuery[rule.query], i);
    }
}

void LevelFinder::add(Bounds& bounds, std::size_t rule) const {
    const LevelRule& added = m_meaning.rules()[rule];
    std::vector<std::size_t>& list = added.isAbove ? bounds.above : bounds.below;
    if (!list.empty()) {
        const double last = m_meaning.rules()[list.back()].bound;
        if (added.isAbove ? added.bound >= last : added.bound <= last) return;
    }
    list.push_back(rule);
}

std::size_t LevelFinder::firstIn(const Bounds& bounds, double number) const {
    const auto& rules = m_meaning.rules();
    std::size_t first = rules.size();
    for (const auto* list : {&bounds.above, &bounds.below}) {
        const auto found = std::partition_point(list->begin(), list->end(),
                                                [&](std::size_t rule) { return !rules[rule].holds(number); });
        if (found != list->end()) first = std::min(first, *found);
    }
    return first;
}

const LevelRule* LevelFinder::find(const ReferenceQuery& reference, double number) const {
    const auto& rules = m_meaning.rules();
    if (rules.empty() || std::isnan(number)) return nullptr;
    std::size_t first = rules.size();
    const std::size_t query = reference.declaration().index;
    if (const auto all = m_ofQuery.find(query); all != m_ofQuery.end()) first = firstIn(all->second, number);
    if (const auto some = m_ofReference.find(query); some != m_ofReference.end())
        if (const auto one = some->second.find(reference.keyText()); one != some->second.end())
            first = std::min(first, firstIn(one->second, number));
    return first == rules.size() ? nullptr : &rules[first];
}

}  // namespace tessera_host
