// The layered graph: in each container, vertices in layers, and edges between them.
#pragma once

#include <vector>

#include "draw/placement/isolated_grids.h"
#include "draw/placement/layers.h"

namespace tessera_draw::placing {

// Vertices are numbered: first the boxes (by their indices), then hierarchical ports, then dummy vertices.
//
// Hierarchical ports are the points where lines cross a container's border. They are in two layers
// of their own, one before and one after the layers of the boxes. Inside they are vertices,
// outside ports of the container.
//
// Where a line ends at the container, its end label needs space in the port's layer: outside beside the container, or
// inside in that layer.
//
// Dummy vertices reserve space where an edge passes a layer.
struct HierarchicalPort {
    Index box = 0;  // the container
    bool isAtEnd = false;
    Index label = nothing;  // the end label of the line that ends here
};

struct Edge {
    enum class Kind : std::uint8_t {
        plain,   // to the next layer
        loop,    // between vertices of one layer, through the gap after it
        toLane,  // to the lane below all boxes of the container, and from there
        fromLane
    };
    enum class Bend : std::uint8_t { none, curve, track, fold };

    Index tail = nothing;  // vertices; `nothing` at a lane
    Index head = nothing;
    Index tailPort = nothing;  // the hierarchical port of a tail or head that is a container
    Index headPort = nothing;
    Index tailLabel = nothing;  // the end label beside the tail or head
    Index headLabel = nothing;
    Kind kind = Kind::plain;
    Bend bend = Bend::none;
    double tailOffset = 0;  // where it touches, from the vertex's top; at a lane: from the container's
    double headOffset = 0;
    double bendBegin = 0;  // of a curve or track: its sides in the container; a track's are the same
    double bendEnd = 0;
    Index fold = nothing;  // of a bend into the next row: in the geometry
};

// The far end of an edge, as the vertex at its near end sees it.
struct EdgeEnd {
    Index vertex = 0;
    Index port = nothing;  // the hierarchical port when the vertex is a container
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

// What is known of vertices from an earlier placement; see orderAsKept(). All empty without one.
struct KeptPlaces {
    std::vector<double> top;         // by vertex, in its container; not a number for new ones
    std::vector<double> middle;      // the same for the middle, of new ones that of their neighbours
    std::vector<char> isRowEnd;      // by layer
    std::vector<double> contentTop;  // by container, where its contents begin; not a number for new ones
};

struct LayeredGraph {
    Index boxCount = 0;
    Index firstDummyVertex = 0;
    std::vector<HierarchicalPort> hierarchicalPorts;
    std::vector<Edge> edges;
    std::vector<EdgeChain> chains;
    std::vector<ChainRange> ofRouteSegment;  // from the route segment's `from` to its `to`
    IsolatedGrids grids;                     // of each, only the leader stands in a layer

    // The layers of all containers, one container after the other. The first and the last layer of each
    // container are those of its hierarchical ports.
    std::vector<Index> firstLayer;  // by container
    std::vector<Index> layerBegin;  // in `order`
    std::vector<Index> order;       // the vertices of a layer from top to bottom

    // By vertex.
    std::vector<Index> layer;
    std::vector<Index> place;  // in its layer
    std::vector<char>
        isOnLine;  // treated as a point of a line: dummy vertices, hierarchical ports, most labels
    std::vector<double> height;
    std::vector<double> top;    // in its container
    std::vector<double> inset;  // of a box: from its vertex's top, and bottom, to its own
    // Plain edges by vertex, and their far ends once more: ordering reads these again and again, and finds
    // them next to each other.
    std::vector<Index> inBegin;
    std::vector<Index> inEdges;
    std::vector<EdgeEnd> inTails;
    std::vector<Index> outBegin;
    std::vector<Index> outEdges;
    std::vector<EdgeEnd> outHeads;
    KeptPlaces kept;

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
    // The position of an edge's end among its container's ports on that side.
    [[nodiscard]] Index portPlace(Index port) const { return port == nothing ? 0 : place[vertexOf(port)]; }
    [[nodiscard]] bool isPort(Index vertex) const noexcept {
        return vertex >= boxCount && vertex < firstDummyVertex;
    }
    [[nodiscard]] double tailY(const Edge& edge) const { return top[edge.tail] + edge.tailOffset; }
    [[nodiscard]] double headY(const Edge& edge) const { return top[edge.head] + edge.headOffset; }
};

// Builds the graph with its layers in the order of the input. Heights and tops are still 0.
[[nodiscard]] LayeredGraph layeredGraphOf(const std::vector<BoxToPlace>& boxes, const Nesting& nesting,
                                          const std::vector<RouteSegment>& routeSegments,
                                          const Layers& layers, const EndLabels& endLabels);

}  // namespace tessera_draw::placing
