"""A picker page as Python's own HTML parser reads it."""

import re
from html.parser import HTMLParser

# What the host replaces. Everything else between "<%" and "%>" would be server code of ours.
HEAD = re.compile(
    r'<!--#include virtual="/includes/style\.asp"-->\r\n'
    r'<!--#include virtual="/includes/header\.asp"-->\r\n'
    r'<%\r\n'
    r'If Request\.ServerVariables\("AUTH_USER"\) = "guest" '
    r'Then Response\.Redirect\("/unauthorized\.asp"\)\r\n'
    r'Response\.Write CustomHeader\("(Album Picker (?:Page [1-9][0-9]*|Index Page))"\)\r\n'
    r'%>\r\n'
    r'<br><br>\r\n')
FOOT = "\r\n<%Response.Write CustomFooter()%>"

# The one text that closes two elements in the wrong order; it has always been written so.
CROSSED = "<b><center>Add To Playlist</b></center>"
UNCROSSED = "<b><center>Add To Playlist</center></b>"

VOID = {"br", "img", "input", "link"}
ELEMENTS = VOID | {"a", "b", "bdi", "center", "div", "form", "h1", "h2", "label", "li", "nav", "p",
                   "table", "td", "tr", "ul"}
ATTRIBUTES = {"action", "alt", "aria-current", "aria-label", "cellpadding", "cellspacing", "class",
              "dir", "height", "href", "id", "loading", "method", "name", "rel", "role", "size",
              "src", "style", "type", "valign", "value", "width"}


class Page(HTMLParser):
    """Elements, links and texts of one page; `faults` says what is wrong with it."""

    def __init__(self, content):
        super().__init__(convert_charrefs=True)
        self.faults, self.open, self.ids, self.links = [], [], [], []
        self.images, self.inputs, self.forms, self.elements = [], [], [], []
        self.texts = {}
        text = content.decode("ascii")
        head = HEAD.match(text)
        if not head or not text.endswith(FOOT):
            self.faults.append("the head or the foot is not the host's")
            return
        self.title = head[1]
        body = text[head.end():-len(FOOT)]
        if "<%" in body or "<!" in body or "<?" in body:
            self.faults.append("server code, a comment or a declaration in the page")
        self.feed(body.replace(CROSSED, UNCROSSED))
        self.close()
        if self.open:
            self.faults.append(f"left open: {self.open}")
        for value in {one for one in self.ids if self.ids.count(one) > 1}:
            self.faults.append(f"id {value} occurs twice")

    def handle_starttag(self, tag, attrs):
        names = [name for name, _ in attrs]
        if tag not in ELEMENTS:
            self.faults.append(f"element {tag}")
        if len(set(names)) != len(names):
            self.faults.append(f"an attribute of {tag} twice: {attrs}")
        for name, value in attrs:
            if name not in ATTRIBUTES or value is None:
                self.faults.append(f"attribute {name} of {tag}: {attrs}")
        attributes = dict(attrs)
        self.elements.append((tag, attributes))
        if "id" in attributes:
            self.ids.append(attributes["id"])
        if tag == "form":
            self.forms.append((attributes, []))
        elif tag == "input":
            (self.forms[-1][1] if "form" in self.open else self.inputs).append(attributes)
        elif tag == "img":
            self.images.append(attributes)
        elif tag == "a":
            self.links.append([attributes["href"], "", attributes])
        if tag not in VOID:
            self.open.append(tag)

    def handle_endtag(self, tag):
        if not self.open or self.open[-1] != tag:
            self.faults.append(f"</{tag}> closes {self.open[-1:]}")
        else:
            self.open.pop()

    def handle_data(self, data):
        if "a" in self.open and self.links:
            self.links[-1][1] += data
        for tag in ("bdi", "h1", "h2"):
            if self.open and self.open[-1] == tag:
                self.texts.setdefault(tag, []).append(data)

    def handle_comment(self, data):
        self.faults.append(f"comment {data}")

    def handle_decl(self, decl):
        self.faults.append(f"declaration {decl}")

    def handle_pi(self, data):
        self.faults.append(f"instruction {data}")

    def link_to(self, caption):
        """Where a link or button of this caption leads; None without one."""
        for target, text, _ in self.links:
            if text.strip() == caption:
                return target
        for form, inputs in self.forms:
            if any(one.get("type") == "submit" and one.get("value") == caption for one in inputs):
                return form["action"]
        return None

    def count(self, tag):
        return sum(1 for name, _ in self.elements if name == tag)
