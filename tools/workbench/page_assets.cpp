#include "page_assets.h"

#include <array>

namespace tovwb {

namespace {

constexpr std::string_view kHtml = "text/html; charset=utf-8";
constexpr std::string_view kScript = "text/javascript; charset=utf-8";
constexpr std::string_view kStyle = "text/css; charset=utf-8";

const std::array<PageAsset, 7> kAssets = {{
    {"/", kHtml, &pageHtml},
    {"/static/workbench.js", kScript, &pageScript},
    {"/static/workbench.css", kStyle, &pageStyle},
    {"/static/codemirror/codemirror.js", kScript, &codeMirrorScript},
    {"/static/codemirror/codemirror.css", kStyle, &codeMirrorStyle},
    {"/static/codemirror/javascript.js", kScript, &codeMirrorJavascriptMode},
    {"/static/codemirror/matchbrackets.js", kScript, &codeMirrorMatchBrackets},
}};

}  // namespace

const PageAsset* findPageAsset(std::string_view path) {
    for (const PageAsset& asset : kAssets) {
        if (asset.path == path) {
            return &asset;
        }
    }
    return nullptr;
}

}  // namespace tovwb
