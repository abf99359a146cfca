#include "draw/end_labels.h"

#include <gtest/gtest.h>

#include <string>

namespace tessera_draw {
namespace {

// One thread through what the letters say: dummies, and labels "from", "center", "to". Every slot has a level
// and a group of its own.
class Chain {
  public:
    explicit Chain(const std::string& letters) {
        for (const char letter : letters) {
            Node node;
            node.type = letter == 'd' ? "dummy" : "label";
            node.location = letter == 'f' ? "from" : letter == 'c' ? "center" : letter == 't' ? "to" : "";
            const auto index = static_cast<Index>(m_diagram.nodes.size());
            m_threads.slots.push_back({index, 100 + index, static_cast<std::int32_t>(index)});
            m_diagram.nodes.push_back(node);
        }
        Thread thread;
        thread.slotCount = static_cast<std::uint32_t>(letters.size());
        m_threads.threads.push_back(thread);
    }

    std::string moved() {
        moveEndLabels(m_diagram, m_threads);
        std::string letters;
        for (std::size_t i = 0; i < m_threads.slots.size(); ++i) {
            const Slot& slot = m_threads.slots[i];
            EXPECT_EQ(slot.level, static_cast<std::int32_t>(i)) << "levels stay";
            EXPECT_EQ(slot.group, 100 + i) << "so do groups";
            const Node& node = m_diagram.nodes[slot.node];
            letters += node.type == "dummy" ? 'd' : node.location.front();
        }
        return letters;
    }

  private:
    Diagram m_diagram;
    Threads m_threads;
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
