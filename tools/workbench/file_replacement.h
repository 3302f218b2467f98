// Saving a document so that nothing ever reads half of it.
#ifndef TOV_TOOLS_WORKBENCH_FILE_REPLACEMENT_H_
#define TOV_TOOLS_WORKBENCH_FILE_REPLACEMENT_H_

#include <string>

namespace tovwb {

// Replaces the file at `path` with `text`: the text goes to a new file in the
// same folder, which is flushed to the disk and then renamed over the old
// one, so that a reader, or a crash at any moment, finds either the old text
// whole or the new one whole. The new file keeps the old one's permission
// bits. False, with the reason in `error`, when a step fails; the old file
// then stands as it was.
bool replaceFile(const std::string& path, const std::string& text, std::string& error);

}  // namespace tovwb

#endif  // TOV_TOOLS_WORKBENCH_FILE_REPLACEMENT_H_
