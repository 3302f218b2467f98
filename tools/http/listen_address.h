// Where a server listens, as written after --listen.
#ifndef TOV_TOOLS_HTTP_LISTEN_ADDRESS_H_
#define TOV_TOOLS_HTTP_LISTEN_ADDRESS_H_

#include <string>

namespace tovhttp {

struct ListenAddress {
    std::string host;         // an IP address as written, brackets of IPv6 taken off
    unsigned short port = 0;  // 0: any free port
};

// "HOST:PORT": an IPv4 address, "localhost" (taken as 127.0.0.1), or an IPv6
// address in brackets ("[::1]:8480"); the port 0 to 65535. False, with the
// reason in `error`, for anything else.
bool parseListenAddress(const std::string& text, ListenAddress& address, std::string& error);

}  // namespace tovhttp

#endif  // TOV_TOOLS_HTTP_LISTEN_ADDRESS_H_
