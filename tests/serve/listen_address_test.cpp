#include "listen_address.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using tovhttp::ListenAddress;
using tovhttp::parseListenAddress;

TEST(ListenAddress, TakesIpv4Ipv6AndLocalhost) {
    ListenAddress address;
    std::string error;
    ASSERT_TRUE(parseListenAddress("127.0.0.1:8480", address, error));
    EXPECT_EQ(address.host, "127.0.0.1");
    EXPECT_EQ(address.port, 8480);
    EXPECT_EQ(error, "");
    ASSERT_TRUE(parseListenAddress("[::1]:0", address, error));
    EXPECT_EQ(address.host, "::1");
    EXPECT_EQ(address.port, 0);
    ASSERT_TRUE(parseListenAddress("localhost:65535", address, error));
    EXPECT_EQ(address.host, "127.0.0.1");
    EXPECT_EQ(address.port, 65535);
    ASSERT_TRUE(parseListenAddress("0.0.0.0:80", address, error));
    EXPECT_EQ(address.host, "0.0.0.0");
}

TEST(ListenAddress, RefusesWhatIsNoAddressAndPort) {
    ListenAddress address;
    std::string error;
    for (const char* text :
         {"8480", "127.0.0.1", "127.0.0.1:", "127.0.0.1:80a", "127.0.0.1:-1", "127.0.0.1:123456"}) {
        EXPECT_FALSE(parseListenAddress(text, address, error)) << text;
        EXPECT_EQ(error, std::string("--listen takes HOST:PORT, such as 127.0.0.1:8480 or "
                                     "[::1]:8480, not \"") +
                             text + "\"");
    }
    EXPECT_FALSE(parseListenAddress("127.0.0.1:65536", address, error));
    EXPECT_EQ(error, "--listen: the port 65536 is over 65535");
    EXPECT_FALSE(parseListenAddress("tov.example:80", address, error));
    EXPECT_EQ(error,
              "--listen: \"tov.example\" is no IPv4 address (write an IPv6 address in "
              "brackets, such as [::1])");
    EXPECT_FALSE(parseListenAddress(":80", address, error));
    EXPECT_EQ(error,
              "--listen: \"\" is no IPv4 address (write an IPv6 address in brackets, such as "
              "[::1])");
    EXPECT_FALSE(parseListenAddress("::1:80", address, error));
    EXPECT_FALSE(parseListenAddress("[fe80::zz]:80", address, error));
    EXPECT_EQ(error, "--listen: \"fe80::zz\" is no IPv6 address");
}

}  // namespace
