#include "sha256.h"

#include <openssl/evp.h>

#include <array>
#include <cstddef>
#include <new>

namespace tovserve {

std::string sha256Hex(std::string_view data) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int length = 0;
    // OpenSSL's digest, rather than one of our own: a well-kept implementation
    // of a function whose only job is to be exactly right.
    if (EVP_Digest(data.data(), data.size(), digest.data(), &length, EVP_sha256(), nullptr) != 1) {
        throw std::bad_alloc();  // it fails only when it cannot allocate its context
    }
    static const char* const kHexDigits = "0123456789abcdef";
    std::string hex;
    hex.reserve(std::size_t{2} * length);
    for (unsigned int i = 0; i < length; ++i) {
        hex += kHexDigits[digest[i] >> 4U];
        hex += kHexDigits[digest[i] & 0x0FU];
    }
    return hex;
}

}  // namespace tovserve
