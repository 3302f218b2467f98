// Turns the DOT text of a lifecycle into SVG for the page, through Graphviz's
// library when the program was built with it. Without it the page shows the
// DOT text and says how to get the picture.
#ifndef TOV_TOOLS_WORKBENCH_DIAGRAM_RENDERER_H_
#define TOV_TOOLS_WORKBENCH_DIAGRAM_RENDERER_H_

#include <memory>
#include <optional>
#include <string>

namespace tovwb {

class DiagramRenderer {
public:
    virtual ~DiagramRenderer() = default;

    // The SVG drawing of `dot`, or nothing with the reason in `error`.
    virtual std::optional<std::string> svgOf(const std::string& dot, std::string& error) = 0;

    // Empty when drawings can be made; otherwise what to do to get them.
    virtual std::string unavailable() const = 0;
};

// Graphviz's renderer when the program was built with libgvc, else one that
// makes no drawing.
std::unique_ptr<DiagramRenderer> makeDiagramRenderer();

// The renderer of a program built without libgvc.
std::unique_ptr<DiagramRenderer> makeMissingRenderer();

}  // namespace tovwb

#endif  // TOV_TOOLS_WORKBENCH_DIAGRAM_RENDERER_H_
