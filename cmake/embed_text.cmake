# Writes a C++ source that holds a file's bytes, for texts that the program
# serves as they are committed:
#   cmake -DINPUT=file -DOUTPUT=source.cpp -DNAMESPACE=ns -DFUNCTION=name -P embed_text.cmake
# The source defines std::string_view ns::name(). Bytes, not a string
# literal, so that no text can end the literal early or pass a compiler's
# limit on literal length.
file(READ "${INPUT}" content HEX)
string(LENGTH "${content}" hex_length)
math(EXPR size "${hex_length} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${content}")
string(REGEX REPLACE "(('[^']*',){16})" "\\1\n    " bytes "${bytes}")
file(WRITE "${OUTPUT}.tmp"
"// Generated from ${INPUT} by cmake/embed_text.cmake; do not edit.
#include <string_view>

namespace ${NAMESPACE} {

namespace {

const char kText[] = {
    ${bytes}'\\0'};

}  // namespace

std::string_view ${FUNCTION}() {
    return std::string_view(kText, ${size});
}

}  // namespace ${NAMESPACE}
")
file(COPY_FILE "${OUTPUT}.tmp" "${OUTPUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUTPUT}.tmp")
