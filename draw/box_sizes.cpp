#include "draw/box_sizes.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "draw/text_width.h"
#include "draw/theme.h"

namespace tessera_draw {
namespace {

constexpr double leastCard = 84;  // inside
constexpr double mostCard = 244;
constexpr double mostNameColumn = 140;
constexpr double leastLabel = 52;
constexpr double mostLabel = 168;
constexpr double mostGroupTitle = 320;
constexpr std::uint32_t mostCardRows = 12;
constexpr std::uint32_t mostLabelRows = 6;
constexpr double groupMargin = 20;
constexpr double groupTop = 40;
constexpr double groupTopWithRows = 48;
constexpr double belowHeader = 8;  // from a group's texts to where lines may bend

// What is usual, in em: where nobody says what a box will show.
constexpr Room usualNode = {2, 0, 5.6, 6.6};
constexpr Room usualLabel = {1, 6, 0, 5.8};
constexpr Room usualGroup = {1, 0, 6, 6.6};

double even(double length) {
    return 2 * std::ceil(length / 2);
}

double captionWidth(const Node& node, double room) {
    const TextStyle& style = styleOf(TextRole::name);
    return fitText(captionOf(node), room, style.size, style.weight).width;
}

bool hasLook(const Node& node) {
    return !node.displayType.empty() && node.displayType != "none";
}

void setColumns(BoxRoom& box, const Room& room, double nameSize, double valueSize, double most) {
    box.valueColumn = std::min(room.valueWidth * valueSize + 1, most * 0.6);
    box.nameColumn =
        std::min({room.nameWidth * nameSize + 1, mostNameColumn, most - columnGap - box.valueColumn});
}

BoxRoom cardRoom(const Node& node, const Room& room) {
    BoxRoom box;
    box.rows = std::min(room.rows, mostCardRows);
    double inner = captionWidth(node, mostCard - markRoom) + (hasLook(node) ? markRoom : 0);
    if (box.rows > 0) {
        setColumns(box, room, styleOf(TextRole::rowName).size, styleOf(TextRole::rowValue).size, mostCard);
        inner = std::max(inner, box.nameColumn + columnGap + box.valueColumn);
    }
    box.size.width = even(std::clamp(inner, leastCard, mostCard)) + cardLeft + cardRight;
    box.size.height = box.rows == 0 ? 38 : cardFirstRow - 8 + rowStep * box.rows;
    return box;
}

BoxRoom labelRoom(const Room& room) {
    BoxRoom box;
    const double nameSize = styleOf(TextRole::labelName).size;
    const double valueSize = styleOf(TextRole::labelValue).size;
    box.rows = std::clamp<std::uint32_t>(room.rows, 1, mostLabelRows);
    setColumns(box, room, nameSize, valueSize, mostLabel);
    double inner = room.titleWidth * nameSize;
    if (box.rows == 1) {
        inner = std::max({inner, room.nameWidth * nameSize, room.valueWidth * valueSize});
        box.size.height = 34;
    } else {
        inner = std::max(inner, box.nameColumn + columnGap + box.valueColumn);
        box.size.height = labelFirstRow - 6 + labelRowStep * box.rows;
    }
    box.size.width = even(std::clamp(inner, leastLabel, mostLabel)) + 2 * labelSide;
    return box;
}

BoxRoom containerRoom(const Node& node, const Room& room) {
    BoxRoom box;
    box.rows = std::min(room.rows, mostCardRows);
    double inner = captionWidth(node, mostGroupTitle) + (hasLook(node) ? markRoom : 0);
    double top = groupTop;
    if (box.rows > 0) {
        setColumns(box, room, styleOf(TextRole::rowName).size, styleOf(TextRole::rowValue).size,
                   mostGroupTitle);
        inner = std::max(inner, box.nameColumn + columnGap + box.valueColumn);
        top = groupTopWithRows + rowStep * box.rows;
    }
    box.padding = {groupMargin, top, groupMargin, groupMargin};
    box.size = {even(inner) + 2 * groupSide, top + groupMargin};
    box.header = {groupSide + inner, top - belowHeader};
    return box;
}

Reservation::Place placeOf(std::string_view location) {
    if (location == "from") return Reservation::Place::from;
    return location == "to" ? Reservation::Place::to : Reservation::Place::center;
}

// By node, the thread that a label stands on.
std::vector<Index> threadsOfLabels(const Diagram& diagram, const Threads& threads) {
    std::vector<Index> answer(diagram.nodes.size(), nothing);
    for (std::size_t at = 0; at < threads.threads.size(); ++at) {
        const Thread& thread = threads.threads[at];
        for (std::uint32_t i = 0; i < thread.slotCount; ++i)
            answer[threads.slots[thread.firstSlot + i].node] = static_cast<Index>(at);
    }
    return answer;
}

Room orNothing(const Room* room) {
    return room == nullptr ? Room{} : *room;
}

// Cards of one layer as wide as the widest of them: their texts then stand in columns.
void evenOut(const Diagram& diagram, const BoxKinds& kinds, std::vector<BoxRoom>& rooms) {
    std::map<std::pair<Index, std::int32_t>, double> widest;
    const auto layerOf = [&](std::size_t at) {
        return std::pair(diagram.nodes[at].group, diagram.nodes[at].level);
    };
    for (std::size_t i = 0; i < rooms.size(); ++i)
        if (kinds.kinds[i] == BoxKind::card && diagram.nodes[i].level >= 0)
            widest[layerOf(i)] = std::max(widest[layerOf(i)], rooms[i].size.width);
    for (std::size_t i = 0; i < rooms.size(); ++i)
        if (kinds.kinds[i] == BoxKind::card && diagram.nodes[i].level >= 0)
            rooms[i].size.width = widest[layerOf(i)];
}

}  // namespace

BoxKinds findKinds(const Diagram& diagram) {
    const std::size_t count = diagram.nodes.size();
    BoxKinds answer{std::vector<BoxKind>(count, BoxKind::card), std::vector<Index>(count, nothing)};
    for (std::size_t i = 0; i < count; ++i) {
        const Node& node = diagram.nodes[i];
        if (node.type == "dummy") answer.kinds[i] = BoxKind::none;
        if (node.type == "label") answer.kinds[i] = BoxKind::label;
        if (node.type != "groupInfo" || node.isGroup || node.group == nothing) continue;
        answer.kinds[i] = BoxKind::none;
        answer.groupInfos[node.group] = static_cast<Index>(i);
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (diagram.nodes[i].isGroup) answer.kinds[i] = BoxKind::container;
        if (diagram.nodes[i].group != nothing) answer.kinds[diagram.nodes[i].group] = BoxKind::container;
    }
    return answer;
}

std::vector<BoxRoom> reserveBoxes(const Diagram& diagram, const Threads& threads, const BoxKinds& kinds,
                                  const Reservation* reservation) {
    const std::vector<Index> threadOf = threadsOfLabels(diagram, threads);
    std::vector<BoxRoom> rooms(diagram.nodes.size());
    for (std::size_t i = 0; i < rooms.size(); ++i) {
        const Node& node = diagram.nodes[i];
        const Room* kept = reservation == nullptr ? nullptr : reservation->findNode(node.id);
        if (kinds.kinds[i] == BoxKind::card) {
            rooms[i] = cardRoom(node, reservation == nullptr ? usualNode : orNothing(kept));
        } else if (kinds.kinds[i] == BoxKind::container) {
            const bool hasRows = kinds.groupInfos[i] != nothing;
            rooms[i] = containerRoom(node, reservation != nullptr ? orNothing(kept)
                                           : hasRows              ? usualGroup
                                                                  : Room{});
        } else if (kinds.kinds[i] == BoxKind::label) {
            const Index thread = threadOf[i];
            const Room* link =
                reservation == nullptr || thread == nothing
                    ? nullptr
                    : reservation->findLink(threads.threads[thread].id, placeOf(node.location));
            rooms[i] = labelRoom(link == nullptr ? usualLabel : *link);
        }
    }
    evenOut(diagram, kinds, rooms);
    return rooms;
}

}  // namespace tessera_draw
