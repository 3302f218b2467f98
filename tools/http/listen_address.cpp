#include "listen_address.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <cctype>

namespace tovhttp {

namespace {

bool isAddress(int family, const std::string& host) {
    std::array<unsigned char, sizeof(in6_addr)> parsed{};
    return ::inet_pton(family, host.c_str(), parsed.data()) == 1;
}

}  // namespace

bool parseListenAddress(const std::string& text, ListenAddress& address, std::string& error) {
    const std::size_t colon = text.rfind(':');
    error = "--listen takes HOST:PORT, such as 127.0.0.1:8480 or [::1]:8480, not \"" + text + "\"";
    if (colon == std::string::npos) {
        return false;
    }
    std::string host = text.substr(0, colon);
    const std::string port = text.substr(colon + 1);
    if (port.empty() || port.size() > 5 || !std::all_of(port.begin(), port.end(), [](char c) {
            return std::isdigit(static_cast<unsigned char>(c)) != 0;
        })) {
        return false;
    }
    const unsigned long number = std::stoul(port);
    if (number > 65535) {
        error = "--listen: the port " + port + " is over 65535";
        return false;
    }
    if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
        host = host.substr(1, host.size() - 2);
        if (!isAddress(AF_INET6, host)) {
            error = "--listen: \"" + host + "\" is no IPv6 address";
            return false;
        }
    } else if (host == "localhost") {
        host = "127.0.0.1";
    } else if (!isAddress(AF_INET, host)) {
        error = "--listen: \"" + host +
                "\" is no IPv4 address (write an IPv6 address in brackets, such as [::1])";
        return false;
    }
    address.host = host;
    address.port = static_cast<unsigned short>(number);
    error.clear();
    return true;
}

}  // namespace tovhttp
