// The graph that is drawn: in each container vertices in layers, and edges from layer to layer.
#pragma once

#include <vector>

#include "draw/placement/bundles.h"
#include "draw/placement/layers.h"

namespace tessera_draw::placing {

// A vertex is a box (with the box's number), a border point, or a waypoint, in this order.
//
// Border points are where lines come through a container's border. They stand in two layers of their own
// before and behind those of the boxes. Inside they are vertices, outside ports of the container.
//
// Waypoints hold the way free where an edge passes a layer.
struct BorderPoint {
    Index box = 0;  // the container
    bool isAtEnd = false;
};

struct Edge {
    enum class Kind : std::uint8_t {
        plain,   // to the next layer
        loop,    // back into the same layer, through the gap behind it
        toLane,  // to the lane along the container's far side, and from there
        fromLane
    };
    enum class Bend : std::uint8_t { none, curve, track };

    Index tail = nothing;  // vertices; nothing at a lane
    Index head = nothing;
    Index tailPort = nothing;  // a border point of the tail or head, where that is a container passed
    Index headPort = nothing;
    Kind kind = Kind::plain;
    Bend bend = Bend::none;
    double tailOffset = 0;  // where it touches, from the vertex's top; of a lane: from the container's
    double headOffset = 0;
    double trackX = 0;  // of a track: from the beginning of the gap
};

// A part of a hop inside one container: a chain of edges.
struct Piece {
    Index container = 0;
    Index firstEdge = 0;
    Index edgeCount = 0;
    bool isReversed = false;  // the hop runs from its last edge's head to its first edge's tail
};

struct PieceRange {
    Index begin = 0;
    Index end = 0;
};

struct Net {
    Index boxCount = 0;
    Index firstWaypoint = 0;
    std::vector<BorderPoint> borderPoints;
    std::vector<Edge> edges;
    std::vector<Piece> pieces;
    std::vector<PieceRange> ofHop;  // from the hop's `from` to its `to`
    Bundles bundles;                // of each, only the leader stands in a layer

    // All layers of all containers, one after the other; each begins and ends with one of border points.
    std::vector<Index> firstLayer;  // by container
    std::vector<Index> layerBegin;  // in `order`
    std::vector<Index> order;       // the vertices of a layer from top to bottom

    // By vertex.
    std::vector<Index> layer;
    std::vector<Index> place;    // in its layer
    std::vector<char> isOnLine;  // a point of a line more than a box: waypoints, border points, labels
    std::vector<double> height;
    std::vector<double> top;  // in its container
    // Plain edges.
    std::vector<Index> inBegin;
    std::vector<Index> inEdges;
    std::vector<Index> outBegin;
    std::vector<Index> outEdges;

    [[nodiscard]] Index vertexOf(Index borderPoint) const noexcept { return boxCount + borderPoint; }
    [[nodiscard]] Index vertexCount() const noexcept { return static_cast<Index>(layer.size()); }
    [[nodiscard]] Index lastLayer(Index container) const { return firstLayer[container + 1] - 1; }
    [[nodiscard]] Index sizeOf(Index layerIndex) const {
        return layerBegin[layerIndex + 1] - layerBegin[layerIndex];
    }
    [[nodiscard]] Index at(Index layerIndex, Index placeIndex) const {
        return order[layerBegin[layerIndex] + placeIndex];
    }
    // Where the edge's end stands among its container's ports on that side.
    [[nodiscard]] Index portPlace(Index port) const { return port == nothing ? 0 : place[vertexOf(port)]; }
    [[nodiscard]] double tailY(const Edge& edge) const { return top[edge.tail] + edge.tailOffset; }
    [[nodiscard]] double headY(const Edge& edge) const { return top[edge.head] + edge.headOffset; }
};

// Leaves: layers in the order of the input, sizes and places not set.
[[nodiscard]] Net netOf(const std::vector<BoxToPlace>& boxes, const Nesting& nesting,
                        const std::vector<Hop>& hops, const Layers& layers);

}  // namespace tessera_draw::placing
