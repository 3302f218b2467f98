"""Clients that hold connections or send slowly do not stall others: with a
thousand idle keep-alive connections open, and a client that trickles its
request, other clients are answered as usual."""

import socket

from serving import EXAMPLES, Server, raise_open_file_limit

EDIT = (EXAMPLES / "requests" / "edit-part-release-first-pass.json").read_bytes()
EDIT_ANSWER = (EXAMPLES / "expected" / "edit-part-release-first-pass.out").read_bytes()
IDLE_CONNECTIONS = 1000
HEALTH = b"GET /health HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n"
SERVING = b'{"status":"serving"}\n'


def read_answer(connection, ending):
    received = b""
    while not received.endswith(ending):
        chunk = connection.recv(65536)
        assert chunk, received
        received += chunk
    return received


def test_a_thousand_idle_keep_alive_connections_stall_no_one():
    raise_open_file_limit()
    idle = []
    # One thread answers, so that no other thread could hide a stall.
    with Server("--threads", "1") as server:
        try:
            for _ in range(IDLE_CONNECTIONS):
                connection = socket.create_connection(("127.0.0.1", server.port), timeout=60)
                idle.append(connection)
                connection.sendall(HEALTH)
            for connection in idle:
                assert read_answer(connection, SERVING).startswith(b"HTTP/1.1 200 OK\r\n")
            # All of them open and idle: others are answered as usual.
            for _ in range(20):
                assert server.post("/v1/evaluate/edit", EDIT).body == EDIT_ANSWER
            metrics = server.get("/metrics").body.decode()
            assert 'tov_http_responses_total{code="200"} %d\n' % (IDLE_CONNECTIONS + 20) in metrics
            # And the idle ones were kept, and answer again.
            for connection in idle[::100]:
                connection.sendall(HEALTH)
                assert read_answer(connection, SERVING).startswith(b"HTTP/1.1 200 OK\r\n")
        finally:
            for connection in idle:
                connection.close()


def test_a_client_that_trickles_its_request_stalls_no_one():
    with Server("--threads", "1") as server:
        request = (b"POST /v1/evaluate/edit HTTP/1.1\r\nHost: 127.0.0.1\r\n"
                   b"Content-Type: application/json\r\nContent-Length: "
                   + str(len(EDIT)).encode() + b"\r\n\r\n" + EDIT)
        with socket.create_connection(("127.0.0.1", server.port), timeout=60) as slow:
            # A byte at a time, with whole requests of others in between.
            for at in range(0, len(request), max(1, len(request) // 40)):
                slow.sendall(request[at:at + max(1, len(request) // 40)])
                assert server.get("/health").body == SERVING
            assert read_answer(slow, EDIT_ANSWER).startswith(b"HTTP/1.1 200 OK\r\n")
