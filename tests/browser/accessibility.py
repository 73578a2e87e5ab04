"""Asks axe-core, from npm, what a page lacks for people who cannot see it or use no pointer."""

import shutil
import subprocess

PACKAGE = "axe-core@4.14.1"


class Axe:
    """`problem` says why it is not at hand, "" when it is."""

    def __init__(self, folder):
        self._file = folder / "node_modules" / "axe-core" / "axe.min.js"
        self.problem = self._install(folder)

    def _install(self, folder):
        folder.mkdir(parents=True, exist_ok=True)
        if self._file.is_file():
            return ""
        if not shutil.which("npm"):
            return "there is no npm"
        done = subprocess.run(["npm", "install", "--no-audit", "--no-fund", "--prefix", str(folder), PACKAGE],
                              capture_output=True, encoding="utf-8", check=False, timeout=300)
        return done.stderr.strip() if done.returncode != 0 else ""

    def violations(self, browser):
        """What is wrong with the page that is shown, one line a rule."""
        if self.problem:
            return []
        browser.run(self._file.read_text("utf-8"))
        return browser.run_to_end("""
            const done = arguments[arguments.length - 1];
            axe.run(document, {resultTypes: ['violations']}).then(
                results => done(results.violations.map(rule => `${rule.id}: ${rule.nodes.length} x ${rule.help}: `
                    + rule.nodes[0].html.slice(0, 200))),
                error => done([String(error)]));""")
