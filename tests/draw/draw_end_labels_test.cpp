#include "draw/read/end_labels.h"

#include <gtest/gtest.h>

#include <string>

namespace tessera_draw {
namespace {

// One link path through the stops that the letters name: dummies, and labels "from", "center", "to". Each
// stop has a level and a group of its own.
class Chain {
  public:
    explicit Chain(const std::string& letters) {
        for (const char letter : letters) {
            Node node;
            node.type = letter == 'd' ? "dummy" : "label";
            node.location = letter == 'f' ? "from" : letter == 'c' ? "center" : letter == 't' ? "to" : "";
            const auto index = static_cast<Index>(m_diagram.nodes.size());
            m_linkPaths.stops.push_back({index, 100 + index, static_cast<std::int32_t>(index)});
            m_diagram.nodes.push_back(node);
        }
        LinkPath path;
        path.stopCount = static_cast<std::uint32_t>(letters.size());
        m_linkPaths.paths.push_back(path);
    }

    std::string moved() {
        moveEndLabels(m_diagram, m_linkPaths);
        std::string letters;
        for (std::size_t i = 0; i < m_linkPaths.stops.size(); ++i) {
            const PathStop& stop = m_linkPaths.stops[i];
            EXPECT_EQ(stop.level, static_cast<std::int32_t>(i)) << "levels stay";
            EXPECT_EQ(stop.group, 100 + i) << "so do groups";
            const Node& node = m_diagram.nodes[stop.node];
            letters += node.type == "dummy" ? 'd' : node.location.front();
        }
        return letters;
    }

  private:
    Diagram m_diagram;
    LinkPaths m_linkPaths;
};

TEST(DrawEndLabels, StandAtTheEnds) {
    EXPECT_EQ(Chain("fctdd").moved(), "fcddt");
    EXPECT_EQ(Chain("ddfct").moved(), "fddct");
    EXPECT_EQ(Chain("dftd").moved(), "fddt");
    EXPECT_EQ(Chain("dcd").moved(), "dcd") << "those of the centre stay";
    EXPECT_EQ(Chain("fddt").moved(), "fddt") << "already there";
}

TEST(DrawEndLabels, NoLabelIsPushedAway) {
    EXPECT_EQ(Chain("cfd").moved(), "cfd") << "no layout puts them so";
    EXPECT_EQ(Chain("ctc").moved(), "ctc");
    EXPECT_EQ(Chain("t").moved(), "t");
    EXPECT_EQ(Chain("").moved(), "");
    EXPECT_EQ(Chain("ddd").moved(), "ddd");
}

}  // namespace
}  // namespace tessera_draw
