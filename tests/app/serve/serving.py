"""`quillon serve` as a process, for the tests of this folder and of the browser."""

import re
import signal
import socket
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "outside"))

from processes import start, told_by

TIME_LIMIT = 60


class Server:
    """Serves a host folder on a free port; use with `with`."""

    def __init__(self, program, host, port=0):
        self._command = [str(program), "serve", "--host", str(host), "--port", str(port)]

    def __enter__(self):
        self.process = start(self._command, stderr=None, text=True)
        self.greeting = self.process.stdout.readline()
        found = re.search(r"http://127\.0\.0\.1:(\d+)/$", self.greeting.rstrip("\n"))
        if not found:
            self.process.kill()
            self.process.communicate()
            raise RuntimeError(f"no address in {self.greeting!r}")
        self.port = int(found[1])
        self.address = f"http://127.0.0.1:{self.port}"
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.stop()

    def stop(self, number=signal.SIGTERM):
        """Ends it; its exit status."""
        self.process.send_signal(number)
        return told_by(self.process, TIME_LIMIT).returncode

    def connect(self):
        return socket.create_connection(("127.0.0.1", self.port), timeout=TIME_LIMIT)

    def crowd(self, count, request=b""):
        """That many clients, who come all at once and send this."""
        def come(_):
            connection = self.connect()
            connection.sendall(request)
            return connection

        with ThreadPoolExecutor(count) as clients:
            return list(clients.map(come, range(count)))

    def exchange(self, data):
        """Everything that comes back for these bytes."""
        with self.connect() as connection:
            received = b""
            try:
                connection.sendall(data)
                while part := connection.recv(65536):
                    received += part
            except ConnectionError:
                pass  # refused before all was sent; what came back counts
            return received

    def ask(self, target, method="GET", host="localhost", more=""):
        """Status, headers and content of the answer to a request that is sent as it stands."""
        request = f"{method} {target} HTTP/1.1\r\nHost: {host}\r\n{more}\r\n"
        return parsed(self.exchange(request.encode("latin-1")))


def parsed(answer):
    """An answer's status, headers by lower-case name, and content."""
    head, _, content = answer.partition(b"\r\n\r\n")
    first, *lines = head.decode("latin-1").split("\r\n")
    headers = {name.lower(): value.strip() for name, _, value in
               (line.partition(":") for line in lines)}
    return int(first.split()[1]) if first else 0, headers, content
