// The files of the workbench's page, compiled into the program (by
// cmake/embed_text.cmake) so that it runs offline and fetches nothing: the
// page, its script and style, and the CodeMirror editor from Debian's
// libjs-codemirror.
#ifndef TOV_TOOLS_WORKBENCH_PAGE_ASSETS_H_
#define TOV_TOOLS_WORKBENCH_PAGE_ASSETS_H_

#include <string_view>

namespace tovwb {

struct PageAsset {
    std::string_view path;  // "/", "/static/workbench.js", ...
    std::string_view contentType;
    std::string_view (*text)();
};

// The asset served at `path`, or null.
const PageAsset* findPageAsset(std::string_view path);

// The texts, one function per file (generated sources).
std::string_view pageHtml();
std::string_view pageScript();
std::string_view pageStyle();
std::string_view codeMirrorScript();
std::string_view codeMirrorStyle();
std::string_view codeMirrorJavascriptMode();
std::string_view codeMirrorMatchBrackets();

}  // namespace tovwb

#endif  // TOV_TOOLS_WORKBENCH_PAGE_ASSETS_H_
