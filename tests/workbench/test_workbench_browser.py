"""The workbench in a real browser: headless Chromium driven by Selenium
opens the address that the program prints, with its token, and works the
page as a rules author does. A screenshot of each step is kept in the build
tree (TOV_WORKBENCH_ARTIFACTS). Skipped only where Chromium or chromedriver
is not installed."""

import json
import os
import shutil
from pathlib import Path

import pytest

from benching import EXAMPLES, Workbench

try:
    from selenium import webdriver
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
    from selenium.webdriver.support.ui import Select, WebDriverWait
except ImportError:  # the interpreter is chosen for selenium; see cmake/test_python.cmake
    pytest.fail("selenium is missing for this interpreter: install python3-selenium",
                pytrace=False)

CHROMIUM = next(filter(None, (shutil.which(name) for name in ("chromium", "chromium-browser"))),
                None)
CHROMEDRIVER = shutil.which("chromedriver") or (
    "/usr/bin/chromedriver" if os.path.exists("/usr/bin/chromedriver") else None)
if CHROMIUM is None or CHROMEDRIVER is None:
    pytest.skip("Chromium or chromedriver is not installed (Debian: chromium chromium-driver); "
                "the browser tests need both", allow_module_level=True)

ARTIFACTS = Path(os.environ.get("TOV_WORKBENCH_ARTIFACTS", "workbench-screenshots"))
# Bounds of every wait in the browser, far above what a loaded machine needs.
WAIT_SECONDS = 60


@pytest.fixture(scope="module")
def bench():
    with Workbench() as running:
        yield running


@pytest.fixture(scope="module")
def browser(tmp_path_factory):
    options = webdriver.ChromeOptions()
    options.binary_location = CHROMIUM
    profile = tmp_path_factory.mktemp("chromium-profile")
    # A closed network: without these, Chromium keeps trying to reach its
    # services, and each refused attempt costs time.
    for argument in ("--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
                     "--no-first-run", "--disable-background-networking",
                     "--disable-component-update", "--disable-sync",
                     "--disable-dev-shm-usage", "--window-size=1280,800",
                     "--user-data-dir=%s" % profile):
        options.add_argument(argument)
    service = Service(CHROMEDRIVER)
    driver = webdriver.Chrome(service=service, options=options)
    try:
        driver.set_page_load_timeout(WAIT_SECONDS)
        driver.set_script_timeout(WAIT_SECONDS)
        yield driver
    finally:
        try:
            driver.quit()
        finally:
            process = getattr(service, "process", None)
            if process is not None and process.poll() is None:
                process.kill()
                process.wait(timeout=WAIT_SECONDS)


def screenshot(driver, name):
    ARTIFACTS.mkdir(parents=True, exist_ok=True)
    assert driver.save_screenshot(str(ARTIFACTS / name))


def wait_until(driver, condition, what):
    return WebDriverWait(driver, WAIT_SECONDS, poll_frequency=0.05).until(
        lambda _: condition(), message=what)


def editor_text(driver, name):
    return driver.execute_script(
        "return document.querySelector('[data-test=%s] .CodeMirror').CodeMirror.getValue();"
        % name)


def by_test_id(driver, name):
    return driver.find_element(By.CSS_SELECTOR, "[data-test=%s]" % name)


def open_page(driver, bench):
    driver.get(bench.page)
    wait_until(driver, lambda: by_test_id(driver, "status").text.startswith("Both documents load"),
               "the page never loaded the documents")
    wait_until(driver, lambda: by_test_id(driver, "faults").text != "", "no findings were listed")


def show_pane(driver, name):
    by_test_id(driver, "tab-" + name).click()
    wait_until(driver, lambda: by_test_id(driver, "tab-" + name).get_attribute("aria-selected")
               == "true", "the pane %s never showed" % name)


def test_the_page_loads_the_examples(browser, bench):
    open_page(browser, bench)
    # The token went into the tab's keeping and out of the address bar.
    assert browser.current_url == bench.url + "/"
    assert editor_text(browser, "rules-editor") == (EXAMPLES / "rules.json").read_text()
    assert editor_text(browser, "dm-editor") == (EXAMPLES / "datamodel.json").read_text()
    explained = by_test_id(browser, "explain").text
    assert "Transition freeze rules (2)" in explained
    assert ('For Part: When Status equals "Released", then Description must remain unchanged.'
            in explained)
    faults = by_test_id(browser, "faults").text
    assert ("versioningSelections: Library_Item #1 (explain 3): offers no versioning attribute"
            in faults)
    assert "rules 48:95" in faults
    assert not by_test_id(browser, "save").is_displayed()
    assert browser.get_log("browser") == []
    screenshot(browser, "01-loaded.png")


def test_without_its_token_the_page_says_where_to_find_it(browser, bench):
    # A new tab keeps nothing of the others: its own session storage.
    first = browser.current_window_handle
    browser.switch_to.new_window("tab")
    try:
        browser.get(bench.url + "/")
        wait_until(browser, lambda: by_test_id(browser, "notice").is_displayed(),
                   "no notice was shown")
        assert by_test_id(browser, "notice").text == (
            "This page was opened without its token. Open the address that tov workbench "
            "printed when it started (it ends in ?token=...).")
        screenshot(browser, "07-without-token.png")
        # The refusals are the browser's to log; nothing else may be.
        assert all("403" in entry["message"] for entry in browser.get_log("browser"))
    finally:
        browser.close()
        browser.switch_to.window(first)


def test_a_misspelt_section_is_listed_with_its_line(browser, bench):
    open_page(browser, bench)
    browser.execute_script(
        "const cm = document.querySelector('[data-test=rules-editor] .CodeMirror').CodeMirror;"
        "cm.focus(); cm.setCursor({line: 1, ch: 2});")
    typed = browser.find_element(By.CSS_SELECTOR, "[data-test=rules-editor] textarea")
    typed.send_keys('"transitionz": {},' + Keys.ENTER)
    message = 'transitionz: unknown section "transitionz" is ignored; did you mean "transitions"?'
    wait_until(browser, lambda: message in by_test_id(browser, "faults").text,
               "the misspelt section was never listed")
    item = next(entry for entry in by_test_id(browser, "faults").find_elements(By.TAG_NAME, "li")
                if message in entry.text)
    place = item.find_element(By.CSS_SELECTOR, "button.place")
    assert place.text == "rules 2:3"
    browser.execute_script(
        "document.querySelector('[data-test=rules-editor] .CodeMirror').CodeMirror"
        ".setCursor({line: 20, ch: 0});")
    place.click()
    cursor = browser.execute_script(
        "const c = document.querySelector('[data-test=rules-editor] .CodeMirror').CodeMirror"
        ".getCursor(); return [c.line, c.ch];")
    assert cursor == [1, 2]
    screenshot(browser, "02-misspelt-section.png")


def test_the_part_status_diagram_is_svg(browser, bench):
    open_page(browser, bench)
    show_pane(browser, "graph")
    Select(by_test_id(browser, "graph-type")).select_by_value("Part")
    Select(by_test_id(browser, "graph-attribute")).select_by_value("Status")
    wait_until(browser, lambda: browser.find_elements(By.CSS_SELECTOR, "[data-test=graph] svg"),
               "no diagram was drawn")
    drawing = browser.find_element(By.CSS_SELECTOR, "[data-test=graph] svg")
    assert drawing.tag_name == "svg"
    labels = {text.text for text in drawing.find_elements(By.TAG_NAME, "text")}
    assert {"In Work", "In Review", "Released", "Obsolete", "Cancelled"} <= labels
    assert drawing.size["width"] > 100
    screenshot(browser, "03-diagram.png")


def evaluate_example(browser, name):
    show_pane(browser, "request")
    Select(by_test_id(browser, "example")).select_by_value(name)
    before = by_test_id(browser, "answer").get_attribute("data-answered") or "0"
    by_test_id(browser, "evaluate").click()
    wait_until(browser, lambda: (by_test_id(browser, "answer").get_attribute("data-answered")
                                 or "0") != before, "the example was never evaluated")


def test_an_example_edit_evaluates_to_its_expected_verdict(browser, bench):
    open_page(browser, bench)
    name = "edit-released-part-description-frozen"
    evaluate_example(browser, name)
    expected = json.loads((EXAMPLES / "expected" / (name + ".out")).read_text())
    assert expected["Result"] == "Failure"
    assert by_test_id(browser, "request-kind").get_attribute("value") == "edit"
    assert by_test_id(browser, "verdict").text == "Refused"
    assert by_test_id(browser, "comment").text == expected["ResultComment"]
    # The trace names the deciding rule, and leads to it in the rules editor.
    steps = browser.find_elements(By.CSS_SELECTOR, "[data-test=trace] li")
    deciding = browser.find_elements(By.CSS_SELECTOR, "[data-test=trace] li.deciding")
    assert len(steps) == 1 and deciding == steps
    rule = 'For Part: When Status equals "Released", then Description must remain unchanged.'
    assert deciding[0].text.startswith("objected" + rule + " transitionsFreeze #1 at 17:7")
    assert rule in expected["ResultComment"]
    marked = browser.find_elements(By.CSS_SELECTOR, "[data-test=explain] li.deciding")
    assert [item.get_attribute("textContent") for item in marked] == [rule]
    deciding[0].find_element(By.CSS_SELECTOR, "button.place").click()
    cursor = browser.execute_script(
        "const c = document.querySelector('[data-test=rules-editor] .CodeMirror').CodeMirror"
        ".getCursor(); return [c.line, c.ch];")
    assert cursor == [16, 6]
    assert browser.find_elements(By.CSS_SELECTOR, "[data-test=rules-editor] .line-deciding")
    screenshot(browser, "04-evaluated.png")
    # The picture of the README: a verdict, its trace, and the rule that
    # decided marked in the rules editor.
    screenshot(browser, "workbench.png")


def test_an_answer_that_asks_for_more_says_which_section_to_add(browser, bench):
    open_page(browser, bench)
    evaluate_example(browser, "edit-assembly-release-first-pass")
    assert by_test_id(browser, "verdict").text == "Needs more data"
    # Both link rules asked, and both decided the answer.
    deciding = [item.text for item in
                browser.find_elements(By.CSS_SELECTOR, "[data-test=trace] li.deciding")]
    assert [text.split("For ")[0] for text in deciding] == ["asked for missing data"] * 2
    advice = by_test_id(browser, "advice").text
    assert '"membersOfFamily"' in advice and '"manualLinkAncestors"' in advice
    evaluate_example(browser, "edit-part-release-family-clean")
    assert by_test_id(browser, "verdict").text == "Approved"
    assert not by_test_id(browser, "advice").is_displayed()
    screenshot(browser, "05-approved.png")


def test_the_edited_rules_are_downloaded(browser, bench, tmp_path):
    open_page(browser, bench)
    browser.execute_cdp_cmd("Browser.setDownloadBehavior",
                            {"behavior": "allow", "downloadPath": str(tmp_path)})
    browser.execute_script(
        "const cm = document.querySelector('[data-test=rules-editor] .CodeMirror').CodeMirror;"
        "cm.setValue(cm.getValue().replace('\"transitions\"', '\"transitionz\"'));")
    by_test_id(browser, "download-rules").click()
    downloaded = tmp_path / "rules.json"
    wait_until(browser, lambda: downloaded.exists() and downloaded.stat().st_size > 0,
               "the rules were never downloaded")
    assert downloaded.read_text() == editor_text(browser, "rules-editor")
    assert '"transitionz"' in downloaded.read_text()


def test_write_saves_the_edited_documents(browser, tmp_path):
    rules = tmp_path / "rules.json"
    data_model = tmp_path / "datamodel.json"
    rules.write_text((EXAMPLES / "rules.json").read_text())
    data_model.write_text((EXAMPLES / "datamodel.json").read_text())
    with Workbench("--write", "--rules", rules, "--dm", data_model) as writing:
        open_page(browser, writing)
        browser.execute_script(
            "const cm = document.querySelector('[data-test=rules-editor] .CodeMirror').CodeMirror;"
            "cm.replaceRange('\\n', {line: cm.lineCount(), ch: 0});")
        edited = editor_text(browser, "rules-editor")
        assert edited != rules.read_text()
        by_test_id(browser, "save").click()
        wait_until(browser, lambda: by_test_id(browser, "status").text.startswith("Saved"),
                   "the documents were never saved")
        assert by_test_id(browser, "status").text == "Saved %s and %s." % (rules, data_model)
        assert rules.read_text() == edited
        screenshot(browser, "08-saved.png")


def test_the_example_suite_passes_in_the_test_pane(browser, bench):
    open_page(browser, bench)
    show_pane(browser, "tests")
    wait_until(browser, lambda: '"cases"' in editor_text(browser, "suite"), "no suite was shown")
    by_test_id(browser, "run-tests").click()
    wait_until(browser, lambda: "passed" in by_test_id(browser, "tests").text,
               "the suite never ran")
    assert by_test_id(browser, "tests").text.startswith("25 passed, 0 failed")
    assert len(browser.find_elements(By.CSS_SELECTOR, "[data-test=tests] li.passed")) == 25
    screenshot(browser, "06-tests.png")
    assert browser.get_log("browser") == []
