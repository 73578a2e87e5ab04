#!/usr/bin/env python3
"""packages_test.py SOURCES BUILD   makes the packages of a build, installs them into a clean root,
uses what they bring as a person would, removes them and looks what they leave."""

import os
import re
import subprocess
import sys
import tempfile
import xml.dom.minidom
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "app"))

from clean_root import CleanRoot, Failed, call  # noqa: E402
import terminal  # noqa: E402

SOURCES, BUILD = Path(sys.argv[1]), Path(sys.argv[2])
# Warnings of lintian that are no faults: no bug asked for this first package, and the program that
# the desktop entry starts is in the package that the window's package depends on.
ACCEPTED = "initial-upload-closes-no-bugs,desktop-command-not-in-package"
NOBODY = 65534


def expect(what, expected, actual):
    if expected != actual:
        raise Failed(f"{what}: expected {expected!r}, got {actual!r}")


def expect_in(what, part, whole):
    if part not in whole:
        raise Failed(f"{what}: no {part!r} in\n{whole}")


class Installation:
    """What the packages have put into the root, used by somebody without any rights."""

    def __init__(self, root, home):
        self.root, self.home = root, home
        self.usr = root.folder / "usr"
        self.program = self.usr / "bin/quillon"
        (home / "Music/Alder/First Light").mkdir(parents=True)
        for number in range(3):
            (home / f"Music/Alder/First Light/{number} - Song.mp3").write_bytes(bytes(300))
        self.rights = {}
        if os.geteuid() == 0:
            self.rights = {"user": NOBODY, "group": NOBODY, "extra_groups": []}
            for path in [home, *home.rglob("*")]:
                os.chown(path, NOBODY, NOBODY)

    def run(self, *command, **variables):
        environment = {"HOME": str(self.home), "PATH": f"{self.usr}/bin:/usr/bin:/bin",
                       "LC_ALL": "C.UTF-8", **variables}
        return call(*command, cwd=self.home, env=environment, **self.rights)


def lintian_finds_no_fault(packages):
    call("lintian", "--allow-root", "--fail-on", "error,warning", "--suppress-tags", ACCEPTED,
         *packages)


def dependencies_are_named(packages):
    for package in packages:
        depends = call("dpkg-deb", "-f", package, "Depends")
        expect_in(package.name, "libc6", depends)
        if package.name.startswith("quillon-window"):
            version = call("dpkg-deb", "-f", package, "Version").strip()
            expect_in(package.name, f"quillon (= {version})", depends)
            expect_in(package.name, "libqt6widgets6", depends)
        else:
            expect_in(package.name, "libsqlite3-0", depends)
            expect("Qt in what the program needs", False, "libqt6" in depends)


def the_window_does_not_come_without_the_program(packages, work):
    window, = (package for package in packages if package.name.startswith("quillon-window"))
    try:
        CleanRoot(work / "without", [window]).dpkg("--install", window)
    except Failed as failure:
        expect_in("why", "quillon-window depends on quillon (=", str(failure))
    else:
        raise Failed("the window's package is content without the program's")


def an_installation_from_source_has_the_same_files(packages, work):
    packed = set()
    for package in packages:
        for line in call("dpkg-deb", "-c", package).splitlines():
            mode, name = line.split()[0], line.split()[5]
            if not mode.startswith("d"):
                packed.add(f"{mode} {name}")
    for component in ("program", "window"):
        # CMake notes what it has installed in the folder that it is called in.
        call("cmake", "--install", BUILD, "--prefix", "/usr", "--component", component,
             cwd=work, env=dict(os.environ, DESTDIR=str(work / "installed")))
    installed = {f"{call('stat', '-c', '%A', path).strip()} ./{path.relative_to(work / 'installed')}"
                 for path in (work / "installed").rglob("*") if not path.is_dir()}
    expect("files of the installation", sorted(packed), sorted(installed))


def a_library_is_made_checked_and_run(at):
    expect_in("init", "Made the host folder", at.run("quillon", "init", "shelf", "--music", "Music"))
    expect_in("check", "A run could start", at.run("quillon", "check", "--host", "shelf"))
    at.run("quillon", "run", "--host", "shelf", "--quiet")
    rows = at.run("quillon", "db", "query", "--json", "shelf/jukebox.mdb",
                  "SELECT Artist, Title, Tracks FROM Albums")
    expect("albums", '{"Artist":"Alder","Title":"First Light","Tracks":3}\n', rows)
    expect_in("albums as another reader sees them", '"Alder"',
              at.run("mdb-export", "shelf/jukebox.mdb", "Albums"))


def the_window_is_found_and_shown(at):
    at.run("quillon", "run", "--host", "shelf", "--view", "window", QT_QPA_PLATFORM="offscreen")


def the_manual_pages_are_shown_without_a_warning(at):
    for page in ("man1/quillon.1.gz", "man5/quillon-settings.5.gz"):
        path = at.usr / "share/man" / page
        text = call("man", "--warnings", "-l", path,
                    env=dict(os.environ, MANWIDTH="80", LC_ALL="C.UTF-8", MANROFFOPT="-ww"))
        expect(f"warnings of man about {page}", [], re.findall("^.*warning.*$", text, re.MULTILINE))
        # The width of lines in the source is a matter of style.
        call("mandoc", "-T", "lint", "-W", "warning,stop", path)
        expect(f"places in {page} that nobody filled", [], re.findall("@[A-Z]+@", text))
    text = call("mandoc", "-T", "ascii", at.usr / "share/man/man5/quillon-settings.5.gz")
    page = re.sub(".\b", "", text)
    for file in ("Quillon.ini", "host.ini"):
        settings = (at.home / "shelf" / file).read_text(encoding="utf-8")
        section = ""
        for line in settings.splitlines():
            if line.startswith("["):
                section = line
                expect_in(f"sections of {file} in the manual page", line, page)
            key = line.split("=")[0]
            if re.match(r"\w+=", line) and section != "[Drives]" and \
                    not re.search(rf"^ +{key} \(.*, default: ", page, re.MULTILINE):
                raise Failed(f"the manual page has no entry for {key} of {file}")


def completed(start, begun, *expected):
    """What a shell on a terminal makes of words that end in a tab."""
    with terminal.Terminal(start, columns=100) as screen:
        screen.wait_for(r"begin\$")
        screen.type(begun, "Tab")
        screen.wait_for(*expected)


def bash_completes(at):
    script = at.usr / "share/bash-completion/completions/quillon"
    call("bash", "-n", script)
    rc = at.home / "bashrc"
    rc.write_text(f"PS1='begin$ '\ncd {at.home}\n. {script}\n")
    start = f"bash --rcfile {rc} -i"
    completed(start, "quillon che", r"begin\$ quillon check")
    completed(start, "quillon run --al", r"quillon run --allow-removals")
    completed(start, "quillon run --view=term", r"quillon run --view=terminal")
    completed(start, "quillon check --host sh", r"quillon check --host shelf/")
    completed(start, "quillon db query shelf/juk", r"quillon db query shelf/jukebox.mdb")
    completed(start, "quillon help db q", r"quillon help db query")


def zsh_completes(at):
    script = at.usr / "share/zsh/vendor-completions/_quillon"
    call("zsh", "-n", script)
    folder = at.home / "zsh"
    folder.mkdir()
    (folder / ".zshrc").write_text(
        f"PS1='begin$ '\ncd {at.home}\nfpath=({script.parent} $fpath)\n"
        "autoload -U compinit\ncompinit -u -D\n")
    start = f"ZDOTDIR={folder} zsh -d -i"
    completed(start, "quillon che", r"begin\$ quillon check")
    completed(start, "quillon run --al", r"quillon run --allow-removals")
    completed(start, "quillon run --view=term", r"quillon run --view=terminal")
    completed(start, "quillon check --host=sh", r"quillon check --host=shelf/")
    completed(start, "quillon db query shelf/juk", r"quillon db query shelf/jukebox.mdb")
    completed(start, "quillon help db q", r"quillon help db query")


def fish_completes(at):
    script = at.usr / "share/fish/vendor_completions.d/quillon.fish"
    call("fish", "--no-execute", script)

    def offered(words):
        done = call("fish", "--no-config", "-c", f"source {script}; complete -C '{words}'",
                    cwd=at.home, env=dict(os.environ, HOME=str(at.home)))
        return [line.split("\t")[0] for line in done.splitlines()]

    expect("commands", ["check"], offered("quillon che"))
    expect("options", ["--allow-removals"], offered("quillon run --al"))
    expect("views", ["terminal"], offered("quillon run --view t"))
    expect("folders", ["shelf/"], offered("quillon check --host sh"))
    expect("files", ["shelf/Quillon.ini"], offered("quillon db query shelf/Quill"))
    expect("topics", ["query"], offered("quillon help db q"))


def the_timer_does_what_it_says_once_it_is_enabled(at, work):
    units = at.usr / "lib/systemd/user"
    expect("units", ["quillon@.service", "quillon@.timer"],
           sorted(path.name for path in units.iterdir()))
    # systemd looks for the program in the system's folders, which this root is none of.
    service = (units / "quillon@.service").read_text()
    instance = call("systemd-escape", "--path", at.home / "shelf").strip()
    copies = work / "units"
    copies.mkdir(mode=0o700)
    (copies / f"quillon@{instance}.service").write_text(
        service.replace("ExecStart=quillon ", f"ExecStart={at.program} "))
    (copies / f"quillon@{instance}.timer").write_text((units / "quillon@.timer").read_text())
    for kind in ("service", "timer"):
        said = call("systemd-analyze", "verify", "--user", "--man=no",
                    copies / f"quillon@{instance}.{kind}",
                    env=dict(os.environ, XDG_RUNTIME_DIR=str(copies)))
        expect(f"what systemd says about the {kind}", "", said)
    command = re.search("^ExecStart=(.*)$", service, re.MULTILINE).group(1)
    at.run(*command.replace("%f", str(at.home / "shelf")).split(" "))


def the_log_is_rotated(at, work):
    example = (at.usr / "share/doc/quillon/examples/logrotate.conf").read_text()
    log = at.home / "shelf/host.log"

    def run_that_removes(song):
        (at.home / f"Music/Alder/First Light/{song} - Song.mp3").unlink()
        at.run("quillon", "run", "--host", "shelf", "--quiet")
        expect_in("the log", f"{song} - Song.mp3", log.read_text())

    run_that_removes(1)
    before = log.read_text()
    rules = work / "logrotate.conf"
    rules.write_text(example.replace("/srv/shelf/host.log", str(log)).replace("1M", "1"))
    rules.chmod(0o644)
    at.run("/usr/sbin/logrotate", "--state", at.home / "rotated", rules)
    archive, = log.parent.glob("host.log-*.gz")
    expect("the archived log", before, call("zcat", archive))
    run_that_removes(2)
    expect_in("check", "A run could start", at.run("quillon", "check", "--host", "shelf"))


def the_desktop_entry_is_one(at):
    call("desktop-file-validate", at.usr / "share/applications/quillon.desktop")
    icon = at.usr / "share/icons/hicolor/scalable/apps/quillon.svg"
    expect("the icon's outermost element", "svg",
           xml.dom.minidom.parse(str(icon)).documentElement.tagName)


def nothing_is_left(root, before):
    root.dpkg("--purge", "quillon-window", "quillon")
    expect("files after the packages are removed", before, root.files())
    status = (root.folder / "var/lib/dpkg/status").read_text(encoding="utf-8")
    expect("traces in dpkg's database", [], re.findall("^Package: quillon.*", status, re.MULTILINE))


def main():
    failures = 0

    def tell(story, *arguments):
        nonlocal failures
        name = story.__name__.replace("_", " ")
        try:
            story(*arguments)
            print(f"{name}: yes", flush=True)
        except (Failed, terminal.Failed, subprocess.TimeoutExpired) as failure:
            failures += 1
            print(f"{name}: NO: {failure}", flush=True)

    with tempfile.TemporaryDirectory(prefix="quillon-packages-") as folder:
        work = Path(folder)
        work.chmod(0o755)
        call(SOURCES / "scripts/make-packages", "--built", BUILD, "--output", work / "packages")
        packages = sorted((work / "packages").glob("*.deb"))
        expect("packages", ["quillon", "quillon-window"],
               sorted(package.name.split("_")[0] for package in packages))
        tell(lintian_finds_no_fault, packages)
        tell(dependencies_are_named, packages)
        tell(the_window_does_not_come_without_the_program, packages, work)
        tell(an_installation_from_source_has_the_same_files, packages, work)

        root = CleanRoot(work / "root", packages)
        before = root.files()
        root.dpkg("--install", *packages)
        (work / "home").mkdir()
        at = Installation(root, work / "home")
        tell(a_library_is_made_checked_and_run, at)
        tell(the_window_is_found_and_shown, at)
        tell(the_manual_pages_are_shown_without_a_warning, at)
        tell(bash_completes, at)
        tell(zsh_completes, at)
        tell(fish_completes, at)
        tell(the_timer_does_what_it_says_once_it_is_enabled, at, work)
        tell(the_log_is_rotated, at, work)
        tell(the_desktop_entry_is_one, at)
        tell(nothing_is_left, root, before)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
