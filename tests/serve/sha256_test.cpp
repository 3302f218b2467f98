#include "sha256.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <utility>

namespace {

TEST(Sha256, KnownDigests) {
    EXPECT_EQ(tovserve::sha256Hex(""),
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(tovserve::sha256Hex("abc"),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(tovserve::sha256Hex("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(tovserve::sha256Hex(std::string(1000000, 'a')),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

// Lengths around the block of 64 bytes and the 56 bytes after which the
// length no longer fits in the last block.
TEST(Sha256, LengthsAroundTheBlock) {
    const std::array<std::pair<std::size_t, const char*>, 7> expected = {{
        {55, "9f4390f8d30c2dd92ec9f095b65e2b9ae9b0a925a5258e241c9f1e910f734318"},
        {56, "b35439a4ac6f0948b6d6f9e3c6af0f5f590ce20f1bde7090ef7970686ec6738a"},
        {63, "7d3e74a05d7db15bce4ad9ec0658ea98e3f06eeecf16b4c6fff2da457ddc2f34"},
        {64, "ffe054fe7ae0cb6dc65c3af9b61d5209f439851db43d0ba5997337df154668eb"},
        {65, "635361c48bb9eab14198e76ea8ab7f1a41685d6ad62aa9146d301d4f17eb0ae0"},
        {119, "31eba51c313a5c08226adf18d4a359cfdfd8d2e816b13f4af952f7ea6584dcfb"},
        {120, "2f3d335432c70b580af0e8e1b3674a7c020d683aa5f73aaaedfdc55af904c21c"},
    }};
    for (const auto& [length, digest] : expected) {
        EXPECT_EQ(tovserve::sha256Hex(std::string(length, 'a')), digest) << length;
    }
}

TEST(Sha256, EveryByteValue) {
    std::string bytes;
    for (int round = 0; round < 3; ++round) {
        for (int value = 0; value < 256; ++value) {
            bytes.push_back(static_cast<char>(value));
        }
    }
    EXPECT_EQ(tovserve::sha256Hex(bytes),
              "f3a25aa93aa2fbba28d79260535bbd6a5eb0fc1c24a8b0f04e12b484c1dfe363");
}

}  // namespace
