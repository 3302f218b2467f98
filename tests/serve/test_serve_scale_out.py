"""Scale-out behind a standard load balancer: three `tov serve` instances
behind Debian's nginx, configured by the shipped deploy/nginx/tov.conf. Under
load through nginx one instance is killed with SIGKILL and another reloads,
and the client sees no failed request.

The test's configuration is derived from the shipped one: its TLS lines are
left out, the listen line is the test's loopback port and the upstream's
servers are the instances' ports; every other line, the balancing and retry
directives among them, is kept as shipped. nginx runs unprivileged in the
foreground (daemon off) with its prefix, temporary folders, error log and pid
file in the test's temporary folder, and is stopped by the test.
"""

import http.client
import os
import re
import shutil
import signal
import socket
import subprocess
import threading
import time

import pytest

from serving import EXAMPLES, SOURCE, STOP_SECONDS, Server

NGINX = shutil.which("nginx") or "/usr/sbin/nginx"
SHIPPED = SOURCE / "deploy" / "nginx" / "tov.conf"
EDIT = (EXAMPLES / "requests" / "edit-part-release-first-pass.json").read_bytes()
EDIT_ANSWER = (EXAMPLES / "expected" / "edit-part-release-first-pass.out").read_bytes()
# Directives that make the scale-out work; the derived configuration must keep them.
KEPT = ["least_conn;", "keepalive 32;", "proxy_http_version 1.1;",
        'proxy_set_header Connection "";', "proxy_set_header Host localhost;",
        "proxy_next_upstream error timeout http_502 http_503 non_idempotent;",
        "proxy_next_upstream_tries 3;"]


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def derive_configuration(shipped, port, instance_ports):
    """The shipped configuration for the test: no TLS, the test's ports."""
    lines = []
    servers = iter(instance_ports)
    for line in shipped.splitlines():
        stripped = line.strip()
        if stripped.startswith("ssl_"):
            continue
        if stripped.startswith("listen "):
            line = "    listen 127.0.0.1:%d;" % port
        upstream = re.match(r"(\s*server )127\.0\.0\.1:\d+( .*;)$", line)
        if upstream:
            line = "%s127.0.0.1:%d%s" % (upstream.group(1), next(servers), upstream.group(2))
        lines.append(line)
    assert next(servers, None) is None, "the shipped upstream has fewer servers than instances"
    return "\n".join(lines) + "\n"


def main_configuration(folder, included):
    temporary = {name: folder / name for name in ("client_body", "proxy", "fastcgi", "uwsgi",
                                                  "scgi")}
    for path in temporary.values():
        path.mkdir()
    user = "user root;\n" if os.geteuid() == 0 else ""
    return ("daemon off;\n%sworker_processes 1;\npid %s;\nerror_log %s info;\n"
            "events { worker_connections 1024; }\n"
            "http {\n  access_log off;\n"
            "  client_body_temp_path %s;\n  proxy_temp_path %s;\n  fastcgi_temp_path %s;\n"
            "  uwsgi_temp_path %s;\n  scgi_temp_path %s;\n  include %s;\n}\n"
            % (user, folder / "nginx.pid", folder / "error.log", temporary["client_body"],
               temporary["proxy"], temporary["fastcgi"], temporary["uwsgi"], temporary["scgi"],
               included))


class Nginx:
    def __init__(self, folder, port):
        self.folder = folder
        self.port = port
        self.process = subprocess.Popen(
            [NGINX, "-p", str(folder), "-c", str(folder / "nginx.conf"), "-e",
             str(folder / "error.log")], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.STDOUT)
        deadline = time.monotonic() + 30
        while True:
            try:
                socket.create_connection(("127.0.0.1", port), timeout=5).close()
                return
            except OSError:
                if self.process.poll() is not None or time.monotonic() > deadline:
                    self.stop()
                    raise AssertionError("nginx did not start: " + self.error_log())
                time.sleep(0.05)

    def error_log(self):
        log = self.folder / "error.log"
        return log.read_text() if log.exists() else ""

    def stop(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGQUIT)
            try:
                self.process.wait(timeout=STOP_SECONDS)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()


def test_the_shipped_configuration_derives_and_passes_nginx_t(tmp_path):
    shipped = SHIPPED.read_text()
    derived = derive_configuration(shipped, 8480, [1, 2, 3])
    for directive in KEPT:
        assert directive in shipped and directive in derived, directive
    assert "ssl" not in derived.replace("$scheme", "")
    (tmp_path / "tov.conf").write_text(derived)
    (tmp_path / "nginx.conf").write_text(main_configuration(tmp_path, tmp_path / "tov.conf"))
    checked = subprocess.run([NGINX, "-t", "-p", str(tmp_path), "-c", str(tmp_path / "nginx.conf"),
                              "-e", str(tmp_path / "error.log")], capture_output=True, timeout=60,
                             check=False)
    assert checked.returncode == 0, checked.stderr


def test_load_through_nginx_survives_a_killed_and_a_reloading_instance(tmp_path):
    instances = [Server("--threads", "1") for _ in range(3)]
    nginx = None
    try:
        port = free_port()
        derived = derive_configuration(SHIPPED.read_text(), port,
                                       [instance.port for instance in instances])
        (tmp_path / "tov.conf").write_text(derived)
        (tmp_path / "nginx.conf").write_text(main_configuration(tmp_path, tmp_path / "tov.conf"))
        nginx = Nginx(tmp_path, port)

        failures = []
        answered = [0]
        lock = threading.Lock()
        done = threading.Event()

        def ask():
            connection = http.client.HTTPConnection("127.0.0.1", port, timeout=60)
            try:
                for _ in range(5000):  # bounded, whatever the machine's speed
                    if done.is_set():
                        return
                    try:
                        connection.request("POST", "/v1/evaluate/edit", body=EDIT,
                                           headers={"Content-Type": "application/json",
                                                    "Host": "tov.example.org"})
                        answer = connection.getresponse()
                        body = answer.read()
                        with lock:
                            if (answer.status, body) == (200, EDIT_ANSWER):
                                answered[0] += 1
                            else:
                                failures.append((answer.status, body))
                    except Exception as error:  # every failure counts, whatever it is
                        with lock:
                            failures.append(error)
                        connection.close()
                        connection = http.client.HTTPConnection("127.0.0.1", port, timeout=60)
            finally:
                connection.close()

        def wait_for_answers(count):
            deadline = time.monotonic() + 120
            while True:
                with lock:
                    if answered[0] >= count or failures:
                        return
                assert time.monotonic() < deadline, "the load made no progress"
                time.sleep(0.01)

        clients = [threading.Thread(target=ask) for _ in range(4)]
        for client in clients:
            client.start()
        try:
            wait_for_answers(200)
            instances[0].kill()  # SIGKILL, mid-load
            assert instances[0].exit_status == -signal.SIGKILL
            wait_for_answers(500)
            instances[1].send_signal(signal.SIGHUP)
            instances[1].wait_for_status(lambda status: status["generation"] == 2)
            wait_for_answers(800)
        finally:
            done.set()
            for client in clients:
                client.join(timeout=120)
        assert not any(client.is_alive() for client in clients)
        assert failures == []
        assert answered[0] >= 800
        # The two that live both took part.
        for instance in instances[1:]:
            metrics = instance.get("/metrics").body.decode()
            served = re.search(r'tov_requests_total\{kind="edit",result="MissingData"\} (\d+)',
                               metrics)
            assert int(served.group(1)) > 0
    finally:
        if nginx is not None:
            nginx.stop()
        for instance in instances:
            if instance.exit_status is None:
                assert instance.stop() == 0, instance.stderr_text()
