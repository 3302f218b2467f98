// Drawings through Graphviz's own library (libgvc), in the process: no dot
// program needs to be installed, and no file is written.
#include <gvc.h>

#include <mutex>

#include "diagram_renderer.h"

namespace tovwb {

namespace {

// Graphviz tells its errors through one process-wide callback; the renderer
// collects them here while it holds its lock.
std::string* collectedErrors = nullptr;

int collectError(char* message) {
    if (collectedErrors != nullptr && message != nullptr) {
        collectedErrors->append(message);
    }
    return 0;
}

class GraphvizRenderer final : public DiagramRenderer {
public:
    GraphvizRenderer() : context(gvContext()) {}
    ~GraphvizRenderer() override {
        if (context != nullptr) {
            gvFreeContext(context);
        }
    }
    GraphvizRenderer(const GraphvizRenderer&) = delete;
    GraphvizRenderer& operator=(const GraphvizRenderer&) = delete;

    std::optional<std::string> svgOf(const std::string& dot, std::string& error) override {
        // Graphviz keeps global state: one drawing at a time in the process.
        static std::mutex drawing;
        const std::lock_guard<std::mutex> lock(drawing);
        if (context == nullptr) {
            error = "Graphviz's library could not start";
            return std::nullopt;
        }
        std::string messages;
        collectedErrors = &messages;
        agseterrf(&collectError);
        std::optional<std::string> svg = draw(dot, messages);
        agseterrf(nullptr);
        collectedErrors = nullptr;
        if (!svg) {
            error = "Graphviz could not draw the diagram" +
                    (messages.empty() ? std::string() : ": " + messages);
            while (!error.empty() && (error.back() == '\n' || error.back() == ' ')) {
                error.pop_back();
            }
        }
        return svg;
    }

    std::string unavailable() const override { return {}; }

private:
    std::optional<std::string> draw(const std::string& dot, std::string& /*messages*/) {
        Agraph_t* graph = agmemread(dot.c_str());
        if (graph == nullptr) {
            return std::nullopt;
        }
        std::optional<std::string> svg;
        if (gvLayout(context, graph, "dot") == 0) {
            char* data = nullptr;
            unsigned int length = 0;
            if (gvRenderData(context, graph, "svg", &data, &length) == 0 && data != nullptr) {
                svg.emplace(data, length);
            }
            gvFreeRenderData(data);
            gvFreeLayout(context, graph);
        }
        agclose(graph);
        return svg;
    }

    GVC_t* context;
};

}  // namespace

std::unique_ptr<DiagramRenderer> makeDiagramRenderer() {
    return std::make_unique<GraphvizRenderer>();
}

}  // namespace tovwb

#if defined(__SANITIZE_ADDRESS__)
#define TOV_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TOV_ADDRESS_SANITIZER 1
#endif
#endif
#ifdef TOV_ADDRESS_SANITIZER
// Graphviz 2.43 keeps, past gvFreeContext, the text of its plugin
// configuration that gvContext reads, and the fontconfig under its text
// layout keeps its font cache for the life of the process. Those leaks are
// theirs, not ours, and LeakSanitizer is told so here rather than in every
// test's environment.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the sanitizer's hook.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libgvc.so\nleak:libfontconfig.so\n";
}
// Nor are those known leaks worth a table on standard error at every exit.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the sanitizer's hook.
extern "C" const char* __lsan_default_options() {
    return "print_suppressions=0";
}
#endif
