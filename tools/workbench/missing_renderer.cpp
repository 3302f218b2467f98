#include "diagram_renderer.h"

namespace tovwb {

namespace {

class MissingRenderer final : public DiagramRenderer {
public:
    std::optional<std::string> svgOf(const std::string& /*dot*/, std::string& error) override {
        error = unavailable();
        return std::nullopt;
    }

    std::string unavailable() const override {
        return "This tov was built without Graphviz's library, so the diagram is shown as DOT "
               "text: install libgraphviz-dev and build tov again to see it drawn here, or "
               "render the text with Graphviz's dot -Tsvg.";
    }
};

}  // namespace

std::unique_ptr<DiagramRenderer> makeMissingRenderer() {
    return std::make_unique<MissingRenderer>();
}

}  // namespace tovwb
