"""What a click on one of the picker's pages asks the player for."""


def ask(browser, control):
    """Clicks, and gives the player's request: its number, its sentence, what was sent."""
    found = browser.all(control, "xpath")
    if not found:
        return [f"there is no {control}"]
    found[0].click()
    browser.wait("the player", lambda: browser.title() == "Player requests")
    return browser.run(
        "const cells = document.querySelectorAll('tbody tr:first-child td');"
        "return [cells[0].textContent, cells[2].textContent, "
        "        ...[...cells[3].querySelectorAll('code')].map(code => code.textContent)]")
