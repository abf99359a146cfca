// The graph that is drawn: in each container vertices in layers, and edges from layer to layer.
#pragma once

#include <vector>

#include "draw/placement/isolated_grids.h"
#include "draw/placement/layers.h"

namespace tessera_draw::placing {

// A vertex is a box (with the box's number), a hierarchical port, or a dummy vertex, in this order.
//
// Hierarchical ports are where lines come through a container's border. They stand in two layers of their own
// before and behind those of the boxes. Inside they are vertices, outside ports of the container.
//
// Dummy vertices hold the way free where an edge passes a layer.
struct HierarchicalPort {
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
    Index tailPort = nothing;  // a hierarchical port of the tail or head, where that is a container passed
    Index headPort = nothing;
    Kind kind = Kind::plain;
    Bend bend = Bend::none;
    double tailOffset = 0;  // where it touches, from the vertex's top; of a lane: from the container's
    double headOffset = 0;
    double trackX = 0;  // of a track: from the beginning of the gap
};

// A part of a route segment inside one container: a chain of edges.
struct EdgeChain {
    Index container = 0;
    Index firstEdge = 0;
    Index edgeCount = 0;
    bool isReversed = false;  // the route segment runs from its last edge's head to its first edge's tail
};

struct ChainRange {
    Index begin = 0;
    Index end = 0;
};

struct LayeredGraph {
    Index boxCount = 0;
    Index firstDummyVertex = 0;
    std::vector<HierarchicalPort> hierarchicalPorts;
    std::vector<Edge> edges;
    std::vector<EdgeChain> chains;
    std::vector<ChainRange> ofRouteSegment;  // from the route segment's `from` to its `to`
    IsolatedGrids grids;                     // of each, only the leader stands in a layer

    // All layers of all containers, one after the other; each begins and ends with one of hierarchical ports.
    std::vector<Index> firstLayer;  // by container
    std::vector<Index> layerBegin;  // in `order`
    std::vector<Index> order;       // the vertices of a layer from top to bottom

    // By vertex.
    std::vector<Index> layer;
    std::vector<Index> place;  // in its layer
    std::vector<char>
        isOnLine;  // a point of a line more than a box: dummy vertices, hierarchical ports, labels
    std::vector<double> height;
    std::vector<double> top;  // in its container
    // Plain edges.
    std::vector<Index> inBegin;
    std::vector<Index> inEdges;
    std::vector<Index> outBegin;
    std::vector<Index> outEdges;

    [[nodiscard]] Index vertexOf(Index hierarchicalPort) const noexcept {
        return boxCount + hierarchicalPort;
    }
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
[[nodiscard]] LayeredGraph layeredGraphOf(const std::vector<BoxToPlace>& boxes, const Nesting& nesting,
                                          const std::vector<RouteSegment>& routeSegments,
                                          const Layers& layers);

}  // namespace tessera_draw::placing
