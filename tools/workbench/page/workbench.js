// The workbench's page: two editors, and panes that ask the program about
// what they hold. Every question sends both documents as they stand; the
// program answers from a private copy and keeps nothing.
"use strict";

(function () {
  // ---------------------------------------------------------------------
  // Asking the program

  // The token comes once in the address the program printed; the page keeps
  // it for this tab only and takes it out of the address bar.
  const TOKEN_KEY = "tov-workbench-token";
  const token = (function () {
    const fromAddress = new URLSearchParams(window.location.search).get("token");
    if (fromAddress) {
      window.sessionStorage.setItem(TOKEN_KEY, fromAddress);
      window.history.replaceState(null, "", window.location.pathname);
      return fromAddress;
    }
    return window.sessionStorage.getItem(TOKEN_KEY) || "";
  })();

  class ProgramError extends Error {
    constructor(status, message) {
      super(message);
      this.status = status;
    }
  }

  async function ask(method, path, body) {
    const headers = { "X-Tov-Token": token };
    const options = { method: method, headers: headers, cache: "no-store" };
    if (body !== undefined) {
      headers["Content-Type"] = "application/json";
      options.body = JSON.stringify(body);
    }
    let response;
    try {
      response = await window.fetch(path, options);
    } catch (failure) {
      throw new ProgramError(0, "The workbench does not answer: is tov workbench still running?");
    }
    const text = await response.text();
    let answer = null;
    try {
      answer = JSON.parse(text);
    } catch (notJson) {
      throw new ProgramError(response.status, text);
    }
    if (!response.ok) {
      if (response.status === 403 && String(answer.error).startsWith("this server asks for its token")) {
        showNotice("This page was opened without its token. Open the address that " +
                   "tov workbench printed when it started (it ends in ?token=...).");
      }
      throw new ProgramError(response.status, answer.error);
    }
    return answer;
  }

  function documentsNow() {
    return { rules: editors.rules.getValue(), datamodel: editors.datamodel.getValue() };
  }

  function withDocuments(extra) {
    return Object.assign(documentsNow(), extra);
  }

  // ---------------------------------------------------------------------
  // Small helpers for the page

  function byId(id) {
    return document.getElementById(id);
  }

  function element(name, className, text) {
    const made = document.createElement(name);
    if (className) {
      made.className = className;
    }
    if (text !== undefined) {
      made.textContent = text;
    }
    return made;
  }

  function setStatus(text, tone) {
    const status = byId("status");
    status.textContent = text;
    status.className = "status" + (tone ? " " + tone : "");
  }

  function showNotice(text) {
    const notice = byId("notice");
    notice.textContent = text;
    notice.hidden = false;
  }

  function showError(container, error) {
    container.replaceChildren(element("p", "error", error.message));
  }

  // Runs `work` `delay` ms after the last call; an answer to an older call
  // that arrives late is dropped, so that the page always shows the newest.
  function debounced(delay, work) {
    let timer = null;
    let latest = 0;
    return function () {
      window.clearTimeout(timer);
      timer = window.setTimeout(function () {
        latest += 1;
        const mine = latest;
        work(function isCurrent() {
          return mine === latest;
        });
      }, delay);
    };
  }

  // ---------------------------------------------------------------------
  // Editors

  const editors = {};

  function makeEditor(id, extra) {
    return window.CodeMirror(byId(id), Object.assign({
      mode: { name: "javascript", json: true },
      lineNumbers: true,
      matchBrackets: true,
      indentUnit: 2,
      tabSize: 2,
      indentWithTabs: false,
      viewportMargin: 50,
    }, extra || {}));
  }

  // A place as the program tells it, the column in bytes of UTF-8, as an
  // editor position, whose column counts UTF-16 units.
  function positionOf(editor, line, byteColumn) {
    const lineIndex = Math.max(0, Math.min(line - 1, editor.lineCount() - 1));
    const text = editor.getLine(lineIndex);
    let bytes = 0;
    let ch = 0;
    for (const character of text) {
      if (bytes >= byteColumn - 1) {
        break;
      }
      const point = character.codePointAt(0);
      bytes += point < 0x80 ? 1 : point < 0x800 ? 2 : point < 0x10000 ? 3 : 4;
      ch += character.length;
    }
    return { line: lineIndex, ch: ch };
  }

  function goTo(editor, position) {
    editor.focus();
    editor.setCursor(position);
    editor.scrollIntoView(position, 80);
  }

  // ---------------------------------------------------------------------
  // Faults and findings, as tov check --strict tells them

  let objectTypes = [];
  const markedLines = [];

  function clearMarks() {
    while (markedLines.length > 0) {
      const mark = markedLines.pop();
      mark.editor.removeLineClass(mark.handle, "background", mark.className);
    }
  }

  function markLine(editor, line, className) {
    const handle = editor.getLineHandle(line);
    if (handle) {
      editor.addLineClass(handle, "background", className);
      markedLines.push({ editor: editor, handle: handle, className: className });
    }
  }

  function showFindings(answer) {
    const list = byId("faults");
    clearMarks();
    list.replaceChildren();
    for (const finding of answer.findings) {
      const editor = editors[finding.document];
      const item = element("li", finding.severity);
      item.append(element("span", "severity", finding.severity === "fault" ? "fault" : "finding"));
      const name = finding.document === "rules" ? "rules" : "data model";
      if (finding.line !== undefined) {
        const position = positionOf(editor, finding.line, finding.column);
        const place = element("button", "place", name + " " + finding.line + ":" + finding.column);
        place.type = "button";
        place.title = "Put the cursor there";
        place.addEventListener("click", function () {
          goTo(editor, position);
        });
        item.append(place);
        markLine(editor, position.line, finding.severity === "fault" ? "line-fault" : "line-note");
      } else {
        item.append(element("span", "place", name));
      }
      item.append(element("span", "message", finding.message));
      list.append(item);
    }
    if (answer.findings.length === 0) {
      list.append(element("li", "none", "Both documents load, and nothing looks amiss."));
    }
    const faults = answer.findings.filter((finding) => finding.severity === "fault").length;
    const notes = answer.findings.length - faults;
    byId("faults-count").textContent = "(" + faults + " " + (faults === 1 ? "fault" : "faults") +
      ", " + notes + " " + (notes === 1 ? "finding" : "findings") + ")";
    if (answer.loaded) {
      setStatus("Both documents load" + (notes > 0 ? "; see the findings." : "."), "good");
    } else {
      setStatus("The documents do not load: see the faults.", "bad");
    }
  }

  const check = debounced(400, async function (isCurrent) {
    setStatus("Checking\u2026");
    let answer;
    try {
      answer = await ask("POST", "/api/check", documentsNow());
    } catch (error) {
      if (isCurrent()) {
        setStatus(error.message, "bad");
      }
      return;
    }
    if (!isCurrent()) {
      return;
    }
    showFindings(answer);
    objectTypes = answer.objectTypes;
    fillGraphChoices();
    if (answer.loaded) {
      explain();
      drawGraph();
    }
  });

  // ---------------------------------------------------------------------
  // The rules in words, as tov explain tells them

  let explained = null;

  async function explain() {
    const container = byId("explain");
    try {
      explained = await ask("POST", "/api/explain", documentsNow());
    } catch (error) {
      showError(container, error);
      return;
    }
    container.replaceChildren();
    for (const group of explained.kinds) {
      const section = element("div", "kind-rules");
      const title = group.kind.charAt(0).toUpperCase() + group.kind.slice(1) + " rules (" +
        group.rules.length + ")";
      section.append(element("h3", "", title));
      const list = element("ol");
      for (const sentence of group.rules) {
        list.append(element("li", "", sentence));
      }
      section.append(list);
      container.append(section);
    }
    if (explained.kinds.length === 0) {
      container.append(element("p", "hint", "The rules document holds no rules."));
    }
    if (explained.libraryItem) {
      container.append(element("p", "hint", "Library_Item stands for the RLI object types of " +
        "the data model: " + (explained.libraryItem.join(", ") || "none") + "."));
    }
  }

  // ---------------------------------------------------------------------
  // The lifecycle diagram, as tov graph draws it

  function fillSelect(select, values, preferred) {
    const keep = select.value;
    select.replaceChildren();
    for (const value of values) {
      const option = element("option", "", value);
      option.value = value;
      select.append(option);
    }
    for (const wanted of [keep, preferred]) {
      if (values.includes(wanted)) {
        select.value = wanted;
        return;
      }
    }
  }

  function fillGraphChoices() {
    const typeSelect = byId("graph-type");
    fillSelect(typeSelect, objectTypes.map((type) => type.name), "Part");
    const type = objectTypes.find((candidate) => candidate.name === typeSelect.value);
    fillSelect(byId("graph-attribute"), type ? type.attributes : [], "Status");
  }

  async function drawGraph() {
    const container = byId("graph");
    const type = byId("graph-type").value;
    const attribute = byId("graph-attribute").value;
    if (!type || !attribute) {
      container.replaceChildren(element("p", "hint", "The data model describes no object type."));
      return;
    }
    let answer;
    try {
      answer = await ask("POST", "/api/graph", withDocuments({ type: type, attribute: attribute }));
    } catch (error) {
      showError(container, error);
      return;
    }
    container.replaceChildren();
    if (answer.svg) {
      // Parsed as SVG, never as HTML: Graphviz escapes the texts of the
      // rules, and no script of a drawing could run under the page's policy.
      const drawing = new window.DOMParser().parseFromString(answer.svg, "image/svg+xml");
      container.append(document.importNode(drawing.documentElement, true));
      return;
    }
    container.append(element("p", "hint", answer.message));
    container.append(element("pre", "", answer.dot));
  }

  // ---------------------------------------------------------------------
  // Requests: pick or write one, evaluate it, read the verdict

  let examples = [];

  const VERDICTS = {
    "approved": "Approved",
    "refused": "Refused",
    "needs more data": "Needs more data",
  };

  const MISSING_ADVICE = {
    membersOfFamily: "the other members of the object's family: add a \"membersOfFamily\" " +
      "section, each member's server id with {\"attributes\": {...}} ({} when there are none)",
    manualLinkAncestors: "the object's manual link ancestors: add a \"manualLinkAncestors\" " +
      "section, each ancestor's server id with {\"attributes\": {...}} ({} when there are none)",
  };

  function chooseExample() {
    const chosen = examples.find((example) => example.name === byId("example").value);
    byId("example-purpose").textContent = chosen ? chosen.purpose : "";
    if (chosen) {
      byId("request-kind").value = chosen.kind;
      editors.request.setValue(chosen.request);
    }
  }

  const OUTCOME_CLASSES = {
    "approved": "approved",
    "objected": "objected",
    "asked for missing data": "asked",
    "not applicable": "not-applicable",
  };

  const decidingLines = [];

  function clearDecidingLines() {
    while (decidingLines.length > 0) {
      const mark = decidingLines.pop();
      editors.rules.removeLineClass(mark, "background", "line-deciding");
    }
  }

  // The rules that decided, in the rules in words: their sentences are the same.
  function markDecidingSentences(sentences) {
    for (const item of byId("explain").querySelectorAll("li")) {
      item.classList.toggle("deciding", sentences.includes(item.textContent));
    }
  }

  // The steps of the decision trace in judging order; the rules whose words
  // stand in the answer's comment decided it, and are marked here, in the
  // rules in words and in the rules editor.
  function showTrace(trace, places) {
    const list = byId("trace");
    list.replaceChildren();
    clearDecidingLines();
    markDecidingSentences(trace.filter((step) => step.decisive).map((step) => step.rule));
    trace.forEach(function (step, index) {
      const item = element("li", OUTCOME_CLASSES[step.outcome] || "");
      item.append(element("span", "outcome", step.outcome));
      item.append(document.createTextNode(step.rule + " "));
      const label = step.section + " #" + step.number;
      const place = places[index];
      if (place) {
        const position = positionOf(editors.rules, place.line, place.column);
        const button = element("button", "place", label + " at " + place.line + ":" + place.column);
        button.type = "button";
        button.title = "Put the cursor on this rule";
        button.addEventListener("click", () => goTo(editors.rules, position));
        item.append(button);
        if (step.decisive) {
          decidingLines.push(editors.rules.addLineClass(position.line, "background",
                                                        "line-deciding"));
        }
      } else {
        item.append(element("span", "place", label));
      }
      if (step.decisive) {
        item.classList.add("deciding");
        item.title = "This rule decided the answer";
      }
      list.append(item);
    });
  }

  // Counts the answers shown, so that whoever waits for the next one knows it came.
  function markAnswered() {
    const pane = byId("answer");
    pane.hidden = false;
    pane.dataset.answered = String(Number(pane.dataset.answered || "0") + 1);
  }

  function showAnswer(answer) {
    const verdict = byId("verdict");
    verdict.textContent = VERDICTS[answer.verdict] || answer.verdict;
    verdict.className = "verdict " + answer.verdict.replace(/ /g, "-");
    byId("comment").textContent = answer.comment;
    const advice = byId("advice");
    const asked = answer.missing.map((section) => MISSING_ADVICE[section]).filter(Boolean);
    advice.hidden = asked.length === 0;
    advice.textContent = asked.length === 0 ? "" : "The answer asks for " +
      asked.join("; and for ") + ". Then evaluate again.";
    showRequestWarnings(answer.warnings);
    const table = byId("keywords");
    table.replaceChildren();
    for (const keyword of Object.keys(answer.keywords)) {
      const row = element("tr");
      row.append(element("td", "", keyword), element("td", "", answer.keywords[keyword]));
      table.append(row);
    }
    showTrace(answer.trace, answer.tracePlaces);
    markAnswered();
  }

  // Names of the request that the data model does not describe, as tov eval warns of them.
  function showRequestWarnings(warnings) {
    const list = byId("request-warnings");
    list.replaceChildren();
    for (const warning of warnings) {
      list.append(element("li", "", "warning: " + warning));
    }
    list.hidden = warnings.length === 0;
  }

  async function evaluate() {
    const button = byId("evaluate");
    button.disabled = true;
    try {
      showAnswer(await ask("POST", "/api/evaluate", withDocuments({
        kind: byId("request-kind").value,
        request: editors.request.getValue(),
      })));
    } catch (error) {
      const verdict = byId("verdict");
      verdict.textContent = "Not evaluated";
      verdict.className = "verdict refused";
      byId("comment").textContent = error.message;
      byId("advice").hidden = true;
      showRequestWarnings([]);
      byId("keywords").replaceChildren();
      showTrace([], []);
      markAnswered();
    } finally {
      button.disabled = false;
    }
  }

  // ---------------------------------------------------------------------
  // Tests: run a suite against the edited documents

  function differenceInWords(mismatch) {
    const said = (text) => (text === null ? "nothing" : JSON.stringify(text));
    return mismatch.keyword + ": expected " + said(mismatch.expected) + ", got " +
      said(mismatch.actual);
  }

  async function runTests() {
    const container = byId("tests");
    const button = byId("run-tests");
    button.disabled = true;
    let answer;
    try {
      answer = await ask("POST", "/api/test", withDocuments({ suite: editors.suite.getValue() }));
    } catch (error) {
      showError(container, error);
      return;
    } finally {
      button.disabled = false;
    }
    container.replaceChildren();
    container.append(element("p", "summary " + (answer.failed === 0 ? "good" : "bad"),
      answer.passed + " passed, " + answer.failed + " failed"));
    const list = element("ul");
    for (const testCase of answer.cases) {
      const item = element("li", testCase.passed ? "passed" : "failed");
      item.append(element("span", "mark", testCase.passed ? "PASS" : "FAIL"));
      item.append(document.createTextNode(testCase.name + " (" + testCase.kind + ")"));
      for (const mismatch of testCase.mismatches) {
        item.append(element("div", "difference", differenceInWords(mismatch)));
      }
      if (!testCase.passed) {
        // Both answers whole, as tov test prints them: the comment tells why.
        item.append(element("div", "whole-answer", "expected: " + JSON.stringify(testCase.expected)));
        item.append(element("div", "whole-answer", "actual: " + JSON.stringify(testCase.actual)));
      }
      for (const warning of testCase.warnings) {
        item.append(element("div", "warning", "warning: " + warning));
      }
      list.append(item);
    }
    container.append(list);
  }

  // ---------------------------------------------------------------------
  // Downloads, and saves when the program was started with --write

  const names = { rules: "rules.json", datamodel: "datamodel.json" };

  function download(key) {
    const blob = new window.Blob([editors[key].getValue()], { type: "application/json" });
    const link = element("a");
    link.href = window.URL.createObjectURL(blob);
    link.download = names[key].split("/").pop();
    document.body.append(link);
    link.click();
    link.remove();
    window.setTimeout(() => window.URL.revokeObjectURL(link.href), 1000);
  }

  async function save() {
    try {
      const answer = await ask("POST", "/api/save", documentsNow());
      setStatus("Saved " + answer.saved.join(" and ") + ".", "good");
    } catch (error) {
      setStatus(error.message, "bad");
    }
  }

  // ---------------------------------------------------------------------
  // Tabs

  function showPane(tab) {
    for (const other of document.querySelectorAll("[role=tab]")) {
      const selected = other === tab;
      other.setAttribute("aria-selected", selected ? "true" : "false");
      byId(other.dataset.pane).hidden = !selected;
    }
    for (const editor of [editors.request, editors.suite]) {
      editor.refresh();
    }
  }

  // ---------------------------------------------------------------------
  // Start

  async function start() {
    editors.rules = makeEditor("rules-editor");
    editors.datamodel = makeEditor("dm-editor");
    editors.request = makeEditor("request");
    editors.suite = makeEditor("suite");
    for (const tab of document.querySelectorAll("[role=tab]")) {
      tab.addEventListener("click", () => showPane(tab));
    }

    let opened;
    try {
      opened = await ask("GET", "/api/documents");
    } catch (error) {
      setStatus(error.message, "bad");
      return;
    }
    names.rules = opened.rules.name;
    names.datamodel = opened.datamodel.name;
    byId("rules-name").textContent = opened.rules.name;
    byId("dm-name").textContent = opened.datamodel.name;
    editors.rules.setValue(opened.rules.text);
    editors.datamodel.setValue(opened.datamodel.text);
    editors.rules.clearHistory();
    editors.datamodel.clearHistory();

    fillSelect(byId("request-kind"), opened.kinds.map((kind) => kind.name), "edit");
    examples = opened.examples;
    const exampleSelect = byId("example");
    const written = element("option", "", "(write your own)");
    written.value = "";
    exampleSelect.append(written);
    for (const example of examples) {
      const option = element("option", "", example.name);
      option.value = example.name;
      exampleSelect.append(option);
    }
    if (examples.length > 0) {
      exampleSelect.value = examples[0].name;
      chooseExample();
    }
    if (opened.suite) {
      byId("suite-name").textContent = opened.suite.name;
      editors.suite.setValue(JSON.stringify(JSON.parse(opened.suite.text), null, 2));
    }
    byId("save").hidden = !opened.write;

    editors.rules.on("changes", check);
    editors.datamodel.on("changes", check);
    exampleSelect.addEventListener("change", chooseExample);
    byId("graph-type").addEventListener("change", function () {
      fillGraphChoices();
      drawGraph();
    });
    byId("graph-attribute").addEventListener("change", drawGraph);
    byId("evaluate").addEventListener("click", evaluate);
    byId("run-tests").addEventListener("click", runTests);
    byId("download-rules").addEventListener("click", () => download("rules"));
    byId("download-dm").addEventListener("click", () => download("datamodel"));
    byId("save").addEventListener("click", save);
    check();
  }

  start();
})();
