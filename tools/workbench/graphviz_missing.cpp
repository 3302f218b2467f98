// A program built without Graphviz's library: the page shows DOT text.
#include "diagram_renderer.h"

namespace tovwb {

std::unique_ptr<DiagramRenderer> makeDiagramRenderer() {
    return makeMissingRenderer();
}

}  // namespace tovwb
