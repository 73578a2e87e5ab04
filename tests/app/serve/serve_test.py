#!/usr/bin/env python3
"""serve_test.py PROGRAM   the preview server on its port: what it answers, to whom, and what does not
bring it down."""

import os
import signal
import socket
import sys
import tempfile
import threading
import time
from pathlib import Path

sys.dont_write_bytecode = True

from serving import Server, parsed
import processes
from processes import Failed

PROGRAM = sys.argv[1]
INDEX = "/Quillon/AlbumPicker/AlbumPicker0.asp"
PLAYER = "/Quillon/Quillon.asp"
SECRET = b"nobody may see this"


def expect(what, expected, actual):
    if expected != actual:
        raise Failed(f"{what}: expected {expected!r}, got {actual!r}")


def call(*arguments):
    return processes.call([PROGRAM, *arguments])


def host_folder(work):
    """A host folder with a page, a cover and, around the folder that is served, secrets."""
    (work / "Music").mkdir()
    host = work / "shelf"
    expect("init", 0, call("init", host, "--music", work / "Music").returncode)
    for statement in (
            "INSERT INTO Albums (CDJID, Artist, Title) VALUES ('A1', 'Alder', 'First Light')",
            "INSERT INTO Tracks (CDJID, Track, Title) VALUES ('A1', 2, 'Noon <b>')"):
        expect(statement, 0, call("db", "exec", host / "jukebox.mdb", statement).returncode)
    page = host / "HTML" / INDEX.lstrip("/")
    page.parent.mkdir(parents=True)
    page.write_bytes(b'<!--#include virtual="/includes/style.asp"-->\r\n<br>caf\xe9\r\n'
                     b'<%Response.Write CustomFooter()%>')
    (host / "HTML" / "cover.jpg").write_bytes(bytes(range(256)) * 4000)
    (host / "HTML" / ".hidden").write_bytes(SECRET)
    for secret in (work / "secret.txt", host / "secret.txt", work / "HTML.txt"):
        secret.write_bytes(SECRET)
    (host / "HTML" / "out.txt").symlink_to(work / "secret.txt")
    (host / "HTML" / "up").symlink_to("..")
    return host


def pages_and_files_are_served(work):
    with Server(PROGRAM, host_folder(work)) as server:
        expect("greeting", True, server.greeting.startswith("Serving " + str(work / "shelf" / "HTML")))
        status, headers, _ = server.ask("/")
        expect("start", (302, INDEX), (status, headers["location"]))
        status, headers, content = server.ask(INDEX)
        expect("page", (200, "text/html; charset=windows-1252"), (status, headers["content-type"]))
        expect("content", True, b"<br>caf\xe9\r\n" in content and b"<!DOCTYPE html>" in content)
        for name, value in (("cache-control", "no-store"), ("x-content-type-options", "nosniff")):
            expect(name, value, headers[name])
        expect("scripts", False, "'unsafe-inline'" in headers["content-security-policy"]
               .partition("script-src")[2].partition(";")[0])
        status, headers, content = server.ask("/COVER.jpg")
        expect("cover", (200, "image/jpeg", bytes(range(256)) * 4000),
               (status, headers["content-type"], content))


def a_request_to_the_player_is_listed(work):
    with Server(PROGRAM, host_folder(work)) as server:
        status, headers, _ = server.ask(f"{PLAYER}?Frame=Picker&ClientAction=play&CDJID=A1&ref=2")
        expect("request", (303, PLAYER), (status, headers["location"]))
        page = server.ask(PLAYER)[2].decode()
        expect("names", True, "Play track 2, Noon &#60;b&#62;, of First Light by Alder now" in page)
        expect("identifier", True, "<code>CDJID=A1</code>" in page)


def a_run_is_not_kept_waiting(work):
    host = host_folder(work)
    with Server(PROGRAM, host) as server:
        server.ask(PLAYER)
        expect("run beside the server", 0, call("run", "--host", host, "--view", "plain").returncode)
        expect("player after it", 200, server.ask(PLAYER)[0])


def head_sends_no_content(work):
    with Server(PROGRAM, host_folder(work)) as server:
        for target in (INDEX, "/cover.jpg", "/", "/nowhere"):
            seen, looked = server.ask(target), server.ask(target, "HEAD")
            expect(f"status of {target}", seen[0], looked[0])
            expect(f"length of {target}", seen[1]["content-length"], looked[1]["content-length"])
            expect(f"content of {target}", b"", looked[2])
        server.ask(PLAYER + "?ClientAction=clear", "HEAD")
        expect("trace of HEAD", False, b"Clear the playlist" in server.ask(PLAYER)[2])


def other_methods_are_refused(work):
    with Server(PROGRAM, host_folder(work)) as server:
        for method in ("POST", "PUT", "DELETE", "PATCH", "OPTIONS"):
            status, headers, _ = server.ask(PLAYER + "?ClientAction=clear", method,
                                            more="Content-Length: 5\r\n\r\nhello")
            expect(method, (405, "GET, HEAD"), (status, headers["allow"]))
        for method in ("TRACE", "CONNECT", "BREW", "get"):
            expect(method, 400, server.ask("/", method)[0])
        expect("trace of them", False, b"Clear the playlist" in server.ask(PLAYER)[2])


def nothing_outside_the_folder_is_served(work):
    up = "../" * 12
    names = ["/" + up + "etc/passwd", "/../secret.txt", "/../../secret.txt", "/../HTML.txt", "//etc/passwd",
             "/out.txt", "/up/secret.txt", "/.hidden", "/Quillon/../../secret.txt",
             "/..\\secret.txt", "/..%5csecret.txt", "/..%2fsecret.txt", "/%2e%2e/secret.txt",
             "/%252e%252e/secret.txt", "/%c0%ae%c0%ae/secret.txt", "/%u002e%u002e/secret.txt",
             "/..;/secret.txt", "/...//secret.txt", "/H:/secret.txt", "/H%3a%5csecret.txt", "/Z:/etc/passwd",
             "/Z%3A%2Fetc%2Fpasswd", "/%5C%5C127.0.0.1%5Cc$", "/cover.jpg%00", "/cover.jpg/../../secret.txt",
             "/cover.jpg::$DATA", "/cover.jpg.", "/cover.jpg%20", "/Quillon/", "/Quillon", "/%",
             "/file:///etc/passwd", "file:///etc/passwd", "/proc/self/environ", "secret.txt", "*",
             f"{work}/secret.txt", "/" + "a/" * 2000 + "x", "/" + "%2e%2e%2f" * 500 + "etc/passwd"]
    with Server(PROGRAM, host_folder(work)) as server:
        for name in names:
            status, _, content = server.ask(name)
            expect(f"status of {name[:60]}", 404, status)
            if SECRET in content or b"root:" in content:
                raise Failed(f"{name} was served")
        request = b"GET /cover.jpg\0/../../secret.txt HTTP/1.1\r\nHost: localhost\r\n\r\n"
        expect("a zero byte in the path", False, SECRET in server.exchange(request))
        expect("a page after all that", 200, server.ask(INDEX)[0])


def only_this_computers_names_are_answered(work):
    with Server(PROGRAM, host_folder(work)) as server:
        for host in ("localhost", f"localhost:{server.port}", "127.0.0.1", "[::1]:80"):
            expect(host, 200, server.ask(INDEX, host=host)[0])
        for host in ("evil.example", "localhost.evil.example", "127.0.0.1.evil.example", "192.168.1.2",
                     "", "localhost\r\nHost: evil.example"):
            expect(repr(host), 403, server.ask(INDEX, host=host)[0])
        expect("no name", 403, parsed(server.exchange(f"GET {INDEX} HTTP/1.0\r\n\r\n".encode()))[0])


def other_computers_cannot_connect(work):
    with Server(PROGRAM, host_folder(work)) as server:
        number = f":{server.port:04X}"
        local = [line.split()[1] for kind in ("tcp", "tcp6")
                 for line in Path("/proc/net", kind).read_text().splitlines()[1:]
                 if line.split()[3] == "0A" and line.split()[1].endswith(number)]
        expect("listens at", ["0100007F" + number], local)
        for _, _, _, _, address in socket.getaddrinfo(socket.gethostname(), server.port,
                                                      socket.AF_INET, socket.SOCK_STREAM):
            if address[0].startswith("127."):
                continue
            try:
                socket.create_connection(address, timeout=2).close()
                raise Failed(f"connected by {address}")
            except OSError:
                pass


def odd_requests_do_no_harm(work):
    host = b"Host: localhost\r\n"
    with Server(PROGRAM, host_folder(work)) as server:
        for what, request, statuses in (
                ("no HTTP", b"\0\1\2\3\r\n\r\n", {400}),
                ("another version", b"GET / HTTP/9\r\n" + host + b"\r\n", {400}),
                ("a long line", b"GET /" + b"a" * 100000 + b" HTTP/1.1\r\n" + host + b"\r\n", {414}),
                ("a long header", b"GET / HTTP/1.1\r\nX: " + b"a" * 100000 + b"\r\n" + host + b"\r\n", {400}),
                ("many headers", b"GET / HTTP/1.1\r\n" + b"X: a\r\n" * 50000 + host + b"\r\n", {302}),
                ("many ranges", b"GET / HTTP/1.1\r\nRange: bytes=" + b"0-1," * 1900 + b"0-1\r\n" + host
                 + b"\r\n", {302}),
                ("a wide range", b"GET /cover.jpg HTTP/1.1\r\nRange: bytes=99999999-\r\n" + host + b"\r\n",
                 {200}),
                ("content announced and missing", b"GET / HTTP/1.1\r\nContent-Length: 10\r\n" + host
                 + b"\r\n", {302}),
                ("much content", b"POST / HTTP/1.1\r\nContent-Length: 9000000\r\n" + host + b"\r\n"
                 + b"x" * 9000000, {405, 0}),
                ("two requests", (b"GET / HTTP/1.1\r\n" + host + b"\r\n") * 2, {302})):
            status = parsed(server.exchange(request))[0]
            if status not in statuses:
                raise Failed(f"{what}: status {status}")
            expect(f"page after {what}", 200, server.ask(INDEX)[0])


def slow_and_idle_clients_hinder_nobody(work):
    with Server(PROGRAM, host_folder(work)) as server:
        # More silent ones at once than wait for being accepted where nobody sees to that.
        idle = server.crowd(200) + server.crowd(20, b"GET / HTTP/1.1\r\nHost: local")
        expect("page meanwhile", 200, server.ask(INDEX)[0])
        # They are let go, with or without an answer.
        for connection in idle:
            while connection.recv(65536):
                pass
            connection.close()


def answered_soon(server, what):
    """Somebody who asks as people do, among others who keep the server busy."""
    for target in (INDEX, "/cover.jpg"):
        began = time.monotonic()
        expect(f"{target} among clients that {what}", 200, server.ask(target)[0])
        seconds = time.monotonic() - began
        if seconds > 2:
            raise Failed(f"{target} among clients that {what} took {seconds:.1f} seconds")


def clients_that_drip_their_headers_hinder_nobody(work):
    with Server(PROGRAM, host_folder(work)) as server:
        ends = threading.Event()

        def drip(number):
            """Comes again as soon as it is let go."""
            while not ends.is_set():
                try:
                    with server.connect() as connection:
                        connection.sendall(b"GET / HTTP/1.1\r\n")
                        for letter in b"X-Slow: " + bytes([97 + number % 26]) * 1000:
                            connection.sendall(bytes([letter]))
                            if ends.wait(0.1):
                                return
                except OSError:
                    pass

        drippers = [threading.Thread(target=drip, args=(number,)) for number in range(80)]
        for dripper in drippers:
            dripper.start()
        time.sleep(0.5)
        for _ in range(8):
            answered_soon(server, "drip")
            time.sleep(0.5)
        ends.set()
        for dripper in drippers:
            dripper.join()


def a_head_has_a_time_in_which_it_must_have_come(work):
    with Server(PROGRAM, host_folder(work)) as server, server.connect() as connection:
        began = time.monotonic()
        connection.sendall(b"GET / HTTP/1.1\r\n")
        try:
            while time.monotonic() - began < 20:
                connection.sendall(b"X")
                time.sleep(0.2)
        except OSError:
            pass
        if time.monotonic() - began > 10:
            raise Failed("a client that drips was not let go")


def more_than_may_wait_push_out_who_waits_longest(work):
    with Server(PROGRAM, host_folder(work)) as server:
        crowd = server.crowd(600)
        answered_soon(server, "say nothing")
        for connection in crowd:
            connection.close()


def clients_that_keep_an_answer_waiting_hinder_nobody(work):
    host = host_folder(work)
    (host / "HTML" / "big.jpg").write_bytes(bytes(40_000_000))
    with Server(PROGRAM, host) as server:
        for what, request in (
                ("do not read", b"GET /big.jpg HTTP/1.1\r\nHost: localhost\r\n\r\n"),
                ("owe content", b"POST / HTTP/1.1\r\nHost: localhost\r\nContent-Length: 9\r\n\r\nx")):
            crowd = server.crowd(80, request)
            time.sleep(0.3)
            answered_soon(server, what)
            for connection in crowd:
                connection.close()


def a_request_in_pieces_is_understood(work):
    with Server(PROGRAM, host_folder(work)) as server, server.connect() as connection:
        for piece in (b"GET /cov", b"er.jpg HTTP/1.1\r", b"\nHost: localhost\r\n", b"\r", b"\n"):
            connection.sendall(piece)
            time.sleep(0.1)
        answer = b""
        while data := connection.recv(65536):
            answer += data
        expect("answer", (200, bytes(range(256)) * 4000), (parsed(answer)[0], parsed(answer)[2]))


def many_at_once_are_served(work):
    with Server(PROGRAM, host_folder(work)) as server:
        statuses = []

        def visit(number):
            for round_ in range(10):
                target = (INDEX, "/cover.jpg", PLAYER, f"{PLAYER}?ClientAction=play&CDJID={number}")
                statuses.append(server.ask(target[(number + round_) % 4])[0])

        visitors = [threading.Thread(target=visit, args=(number,)) for number in range(30)]
        for visitor in visitors:
            visitor.start()
        for visitor in visitors:
            visitor.join()
        asked = sum((number + round_) % 4 == 3 for number in range(30) for round_ in range(10))
        expect("statuses", {200: 300 - asked, 303: asked},
               {status: statuses.count(status) for status in statuses})
        expect("requests noted", True, f"<td>{asked}</td>" in server.ask(PLAYER)[2].decode())


def a_signal_ends_it(work):
    host = host_folder(work)
    for number in (signal.SIGINT, signal.SIGTERM):
        with Server(PROGRAM, host) as server:
            connection = server.connect()
            expect(f"status after {number}", 0, server.stop(number))
            connection.close()
            try:
                server.connect().close()
                raise Failed("the port is still there")
            except ConnectionRefusedError:
                pass


def a_second_signal_ends_it_at_once(work):
    with Server(PROGRAM, host_folder(work)) as server:
        with server.connect() as connection:
            # A request under way, of somebody who takes his time with what belongs to it.
            connection.sendall(b"POST / HTTP/1.1\r\nHost: localhost\r\nContent-Length: 9\r\n\r\nx")
            time.sleep(0.2)
            server.process.send_signal(signal.SIGINT)
            time.sleep(0.3)
            expect("status", -signal.SIGTERM, server.stop(signal.SIGTERM))


def an_ignored_interrupt_stays_ignored(work):
    host = host_folder(work)
    before = signal.signal(signal.SIGINT, signal.SIG_IGN)
    try:
        with Server(PROGRAM, host) as server:
            server.process.send_signal(signal.SIGINT)
            time.sleep(0.2)
            expect("page after it", 200, server.ask(INDEX)[0])
            expect("status", 0, server.stop())
    finally:
        signal.signal(signal.SIGINT, before)


def a_port_in_use_is_refused(work):
    host = host_folder(work)
    with Server(PROGRAM, host) as server:
        done = call("serve", "--host", host, "--port", server.port)
        expect("status", 2, done.returncode)
        expect("words", True, done.stderr.startswith(f"quillon: port {server.port} cannot be used"))
    with Server(PROGRAM, host, server.port) as again:
        expect("the port right after", server.port, again.port)


def only_a_host_folder_is_served(work):
    done = call("serve", "--host", work, "--port", "0")
    expect("status", 2, done.returncode)
    expect("words", True, "has no Quillon.ini and no host.ini" in done.stderr)


def nothing_is_written(work):
    host = host_folder(work)

    def state():
        return {str(path): (path.lstat().st_mtime_ns, path.lstat().st_size)
                for path in sorted(work.rglob("*"))}

    before = state()
    with Server(PROGRAM, host) as server:
        for target in ("/", INDEX, PLAYER, PLAYER + "?ClientAction=clear", "/nowhere"):
            server.ask(target)
    expect("files", before, state())


STORIES = (pages_and_files_are_served, a_request_to_the_player_is_listed, a_run_is_not_kept_waiting,
           head_sends_no_content, other_methods_are_refused, nothing_outside_the_folder_is_served,
           only_this_computers_names_are_answered, other_computers_cannot_connect,
           odd_requests_do_no_harm, slow_and_idle_clients_hinder_nobody,
           clients_that_drip_their_headers_hinder_nobody, a_head_has_a_time_in_which_it_must_have_come,
           more_than_may_wait_push_out_who_waits_longest,
           clients_that_keep_an_answer_waiting_hinder_nobody, a_request_in_pieces_is_understood, many_at_once_are_served,
           a_signal_ends_it, a_second_signal_ends_it_at_once, an_ignored_interrupt_stays_ignored,
           a_port_in_use_is_refused, only_a_host_folder_is_served, nothing_is_written)


def main():
    failures = 0
    for story in STORIES:
        name = story.__name__.replace("_", " ")
        with tempfile.TemporaryDirectory(prefix="quillon-serve-") as folder:
            try:
                story(Path(os.path.realpath(folder)))
                print(f"{name}: yes", flush=True)
            except (Failed, OSError, RuntimeError) as failure:
                failures += 1
                print(f"{name}: NO: {failure}", flush=True)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
