// Breaks links that skip layers into chains of "dummy" nodes, one a layer.
//
// Needs:  the layers, the dummy links between groups.
// Leaves: a link inside a group that goes down joins neighbouring layers. A link between groups climbs
//         out of the group of its to end up to layer 0 of each group that it leaves, and out of that of
//         its from end down to the last layer of each.
// Order:  after the hierarchical levels, before the interfaces.
// Fails:  with the false code, reported, when the diagram would grow beyond a limit; what was made until
//         then stays. A link with a missing end takes no part, nor does one between groups without a
//         dummy link.
#include <string>

#include "core/check.h"
#include "core/view_model/graph.h"
#include "core/view_model/passes/cross_group_splitter.h"
#include "core/view_model/passes/dummy_maker.h"
#include "core/view_model/passes/inner_splitter.h"
#include "core/view_model/passes/layout_run.h"

namespace tessera_1::view_model {

TESSERA_SOURCE_UNIT("core/view_model/graph");

using basekit2::error_code_t;

// Both halves of the pass, and how far they have come.
class LabelDummies {
  public:
    LabelDummies(Graph& graph, LayoutRun& run)
        : m_run(run), m_dummies(graph, run), m_inner(graph, m_dummies), m_crossGroup(graph, m_dummies) {}

    error_code_t splitInner(const char* signature) { return split(m_inner, signature); }
    error_code_t splitCrossGroup(const char* signature) { return split(m_crossGroup, signature); }

  private:
    template <class Splitter>
    error_code_t split(Splitter& splitter, const char* signature) {
        if (splitter.run()) return {};
        m_run.isTruncated = !m_run.isCancelled;
        if (m_run.isTruncated) TESSERA_ALERT_IN(signature, m_dummies.problem(*splitter.link()));
        return error_code_t::false_code();
    }

    LayoutRun& m_run;
    DummyMaker m_dummies;
    InnerSplitter m_inner;
    CrossGroupSplitter m_crossGroup;
};

error_code_t addDummyNodesForLabels(Graph& graph, LayoutRun& run) {
    if (!run.labelDummies) run.labelDummies = std::make_shared<LabelDummies>(graph, run);
    error_code_t err = run.labelDummies->splitInner(
        "basekit2::error_code_t tessera_1::view_model::Graph::addDummyNodesForLabels()");
    if (err.is_success())
        err = run.labelDummies->splitCrossGroup(
            "basekit2::error_code_t tessera_1::view_model::Graph::addDummyNodesForLabelsOnCrosslevelLinks()");
    if (!run.isCancelled) run.labelDummies = nullptr;
    return err;
}

error_code_t Graph::addDummyNodesForLabels() {
    LayoutRun run;
    return view_model::addDummyNodesForLabels(*this, run);
}

error_code_t Graph::addDummyNodesForLabelsOnCrosslevelLinks() {
    LayoutRun run;
    return LabelDummies(*this, run).splitCrossGroup(TESSERA_SIGNATURE);
}

}  // namespace tessera_1::view_model
