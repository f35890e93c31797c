"use strict";
// Shows the tree that `qo tree --html` put into the page, beside what this browser makes of the
// same source. All content reaches the document as text nodes; the source itself is only ever
// parsed into an inert document, in which nothing runs and nothing is loaded.

const rowsAtFirst = 1500;   // opened without being asked
const rowsAtOnce = 500;     // children that one click shows
const deepestIndent = 60;   // levels
const lookAhead = 40;       // nodes, when the two trees differ

// --- Trees: nodes in document order, under a root that is not shown ---

function makeNode(parent, kind, text, attributes) {
  const node = { parent, kind, text, attributes, depth: parent ? parent.depth + 1 : -1,
    children: [], index: 0, mark: "", matches: 0, partner: null, row: null, shown: 0 };
  if (parent) {
    node.index = parent.children.length;
    parent.children.push(node);
  }
  return node;
}

function treeOfRows(rows) {
  const root = makeNode(null, "document", "", []);
  const path = [root];
  const nodes = [];
  for (const [depth, kind, text, attributes, matches] of rows) {
    path.length = depth + 1;
    const node = makeNode(path[depth], kind, text, attributes);
    node.matches = matches;
    path.push(node);
    nodes.push(node);
  }
  return { root, nodes };
}

function describe(dom) {
  switch (dom.nodeType) {
    case Node.ELEMENT_NODE:
      return ["element", dom.localName, Array.from(dom.attributes, a => [a.name, a.value])];
    case Node.TEXT_NODE:
      return [/[^ \t\n\v\f\r]/.test(dom.data) ? "text" : "blank", dom.data, []];
    case Node.COMMENT_NODE:
      return ["comment", dom.data, []];
    case Node.DOCUMENT_TYPE_NODE:
      return ["declaration", "!doctype", [[dom.name, null]]];
    default:
      return ["cdata", dom.data || "", []];
  }
}

function childrenOf(dom) {
  return dom.localName === "template" && dom.content ? dom.content.childNodes : dom.childNodes;
}

function treeOfBrowser(source) {
  // A byte order mark at the start is no text to a browser that loads a file.
  const page = new DOMParser().parseFromString(source.replace(/^\uFEFF/, ""), "text/html");
  const root = makeNode(null, "document", "", []);
  const nodes = [];
  const waiting = [[page, root]];
  while (waiting.length) {
    const [dom, node] = waiting.pop();
    if (node !== root) nodes.push(node);
    const below = Array.from(childrenOf(dom), child => [child, makeNode(node, ...describe(child))]);
    for (const pair of below.reverse()) waiting.push(pair);
  }
  return { root, nodes };
}

// --- Comparing them ---

const inert = new DOMParser().parseFromString("<textarea></textarea><i></i>", "text/html");
const [textDecoder, attributeDecoder] = inert.body.children;

function withBrowserLineEnds(text) {
  return text.replace(/\r\n?/g, "\n");
}

// References as a browser reads them: those in attributes have a rule of their own.
function decodedText(text) {
  const lines = withBrowserLineEnds(text);
  if (!lines.includes("&")) return lines;
  textDecoder.innerHTML = "\n" + lines.replaceAll("<", "&lt;");
  return textDecoder.value;
}

function decodedAttribute(value) {
  const lines = withBrowserLineEnds(value);
  if (!lines.includes("&")) return lines;
  attributeDecoder.innerHTML = '<i title="' + lines.replaceAll('"', "&quot;") + '"></i>';
  return attributeDecoder.firstChild.title;
}

const rawElements = /^(script|style|xmp|iframe|noembed|noframes)$/i;

// What two nodes have in common that stand for the same thing.
function keyOf(node, ours) {
  const collapse = text => text.replace(/[ \t\n\v\f\r]+/g, " ").replace(/^ | $/g, "");
  switch (node.kind) {
    case "text":
      return "text " + collapse(ours && !rawElements.test(node.parent.text) ? decodedText(node.text)
        : withBrowserLineEnds(node.text));
    case "comment":
    case "cdata":
      return node.kind + " " + withBrowserLineEnds(node.text);
    default:
      return node.text.toLowerCase();
  }
}

// The distances to the nearest pair of equal keys in front of us, or null.
function nearestMeeting(a, i, b, j) {
  for (let sum = 1; sum <= 2 * lookAhead; ++sum) {
    for (let k = Math.max(0, sum - lookAhead); k <= Math.min(sum, lookAhead); ++k) {
      if (i + k < a.length && j + sum - k < b.length && a[i + k].key === b[j + sum - k].key) {
        return [k, sum - k];
      }
    }
  }
  return null;
}

function pairUp(a, b) {
  let i = 0;
  let j = 0;
  while (i < a.length && j < b.length) {
    if (a[i].key === b[j].key) {
      a[i].partner = b[j];
      b[j++].partner = a[i++];
    } else {
      const [k, l] = nearestMeeting(a, i, b, j) || [1, 1];
      i += k;
      j += l;
    }
  }
}

function pairedAncestor(node) {
  let above = node.parent;
  while (above.parent && !above.partner) above = above.parent;
  return above;
}

function sameAttributes(ours, theirs) {
  const wanted = new Map();
  for (const [name, value] of ours) {
    const key = name.toLowerCase();
    if (!wanted.has(key)) wanted.set(key, decodedAttribute(value || ""));
  }
  return wanted.size === theirs.length &&
    theirs.every(([name, value]) => wanted.get(name.toLowerCase()) === (value || ""));
}

// White space is not compared: a browser drops and moves much of it.
function compare(ours, theirs) {
  const lists = [ours, theirs].map(tree => tree.nodes.filter(node => node.kind !== "blank"));
  lists.forEach((list, side) => list.forEach(node => { node.key = keyOf(node, side === 0); }));
  ours.root.partner = theirs.root;
  theirs.root.partner = ours.root;
  pairUp(...lists);
  for (const node of lists.flat()) {
    if (!node.partner) node.mark = "only";
    else if (pairedAncestor(node).partner !== pairedAncestor(node.partner)) node.mark = "moved";
  }
  for (const node of lists[0]) {
    const isElement = node.kind === "element" || node.kind === "void";
    if (node.mark || !isElement || sameAttributes(node.attributes, node.partner.attributes)) continue;
    node.mark = node.partner.mark = "attributes";
  }
  return lists[0].filter(node => node.mark).concat(lists[1].filter(node => node.mark === "only"));
}

// --- Showing them ---

function make(name, className, ...content) {
  const element = document.createElement(name);
  if (className) element.className = className;
  element.append(...content);
  return element;
}

function shownText(text) {
  return JSON.stringify(text).replaceAll("\\\"", "\"");
}

function labelOf(node) {
  switch (node.kind) {
    case "text":
      return [shownText(node.text)];
    case "blank":
      return [node.text === "" ? "empty text" : "white space " + shownText(node.text)];
    case "comment":
      return ["<!--" + node.text + "-->"];
    case "cdata":
      return ["<![CDATA[" + node.text + "]]>"];
    default: {
      const parts = ["<", make("span", "name", node.text)];
      for (const [name, value] of node.attributes) {
        parts.push(" ", make("span", "attribute", name));
        if (value !== null) parts.push("=", make("span", "value", '"' + value + '"'));
      }
      return [...parts, node.kind === "void" ? "/>" : ">"];
    }
  }
}

class TreeView {
  constructor(tree, element, badges) {
    this.tree = tree;
    this.element = element;
    this.badges = badges;
    element.addEventListener("click", event => this.toggleAt(event.target));
    element.addEventListener("keydown", event => {
      if (event.key !== "Enter" && event.key !== " ") return;
      event.preventDefault();
      this.toggleAt(event.target);
    });
    this.rowCount = 0;
    this.open(tree.root);
    const waiting = [...tree.root.children];
    for (let i = 0; i < waiting.length && this.rowCount < rowsAtFirst; ++i) {
      this.open(waiting[i]);
      waiting.push(...waiting[i].children.slice(0, waiting[i].shown));
    }
  }

  makeRow(node, className, content) {
    const row = make("div", "row " + className, ...content);
    row.style.paddingLeft = 2 + 1.4 * Math.min(node.depth, deepestIndent) + "em";
    row.node = node;
    ++this.rowCount;
    return row;
  }

  rowOf(node) {
    const classes = [node.kind, node.mark];
    if (node.matches) classes.push("match");
    if (node.children.length) classes.push("parent");
    const row = this.makeRow(node, classes.filter(Boolean).join(" "), labelOf(node));
    row.setAttribute("role", "treeitem");
    row.setAttribute("aria-level", node.depth + 1);
    if (node.children.length) {
      row.tabIndex = 0;
      row.setAttribute("aria-expanded", "false");
    }
    if (node.depth > deepestIndent) row.title = "level " + (node.depth + 1);
    if (node.mark) row.append(make("span", "badge", this.badges[node.mark]));
    node.row = row;
    return row;
  }

  // Shows the next of a node's children.
  open(node) {
    if (!node.children.length) return;
    const until = Math.min(node.children.length, node.shown + rowsAtOnce);
    const rows = node.children.slice(node.shown, until).map(child => this.rowOf(child));
    if (until < node.children.length) {
      const left = node.children.length - until;
      rows.push(this.makeRow(node.children[0], "more", ["... " + left + " more"]));
      rows[rows.length - 1].more = node;
    }
    if (node.more) node.more.replaceWith(...rows);
    else if (node.row) node.row.after(...rows);
    else this.element.append(...rows);
    node.shown = until;
    node.more = until < node.children.length ? rows[rows.length - 1] : null;
    this.setOpen(node, true);
  }

  close(node) {
    while (node.row.nextSibling && node.row.nextSibling.node.depth > node.depth) {
      const row = node.row.nextSibling;
      row.node.row = row.more ? row.node.row : null;
      row.node.shown = 0;
      row.node.more = null;
      row.remove();
      --this.rowCount;
    }
    node.shown = 0;
    node.more = null;
    this.setOpen(node, false);
  }

  setOpen(node, open) {
    if (!node.row) return;
    node.row.classList.toggle("open", open);
    node.row.setAttribute("aria-expanded", String(open));
  }

  toggleAt(target) {
    const row = target.closest(".row");
    if (!row || (!row.more && String(window.getSelection()))) return;
    if (row.more) this.open(row.more);
    else if (row.node.shown) this.close(row.node);
    else this.open(row.node);
  }

  reveal(node) {
    const path = [];
    for (let above = node; above.parent; above = above.parent) path.push(above);
    for (const step of path.reverse()) {
      while (step.parent.shown <= step.index) this.open(step.parent);
    }
  }
}

// Buttons that go from one of the nodes to the next.
function stepper(label, nodes, viewOf) {
  const output = make("output", "", label);
  let current = -1;
  const go = step => {
    if (!nodes.length) return;
    current = (current + step + nodes.length) % nodes.length;
    const node = nodes[current];
    viewOf(node).reveal(node);
    for (const former of document.querySelectorAll(".here")) former.classList.remove("here");
    node.row.classList.add("here");
    node.row.scrollIntoView({ block: "center" });
    output.textContent = label + " (" + (current + 1) + ")";
  };
  const button = (text, title, step) => {
    const element = make("button", "", text);
    element.title = title;
    element.disabled = !nodes.length;
    element.addEventListener("click", () => go(step));
    return element;
  };
  return make("span", "", output, " ", button("\u2190", "previous", -1), button("\u2192", "next", 1));
}

function counted(count, one, many) {
  return count.toLocaleString("en") + " " + (count === 1 ? one : many);
}

function main() {
  const data = JSON.parse(document.getElementById("data").textContent);
  const ours = treeOfRows(data.nodes);
  const theirs = treeOfBrowser(data.source);
  const differences = compare(ours, theirs);
  const matches = ours.nodes.filter(node => node.matches);
  const matchCount = matches.reduce((sum, node) => sum + node.matches, 0);

  const columns = [
    ["As the tags nest", ours, { only: "not in the browser", moved: "elsewhere in the browser",
      attributes: "other attributes in the browser" }],
    ["As this browser repairs it", theirs, { only: "only in the browser", moved: "moved",
      attributes: "other attributes" }]];
  const views = columns.map(([title, tree, badges]) => {
    const element = make("div", "tree");
    element.setAttribute("role", "tree");
    element.setAttribute("aria-label", title);
    const view = new TreeView(tree, element, badges);
    const count = make("small", "", counted(tree.nodes.length, "node", "nodes"));
    view.section = make("section", "", make("h2", "", title + " ", count), element);
    return view;
  });
  const isOurs = new Set(ours.nodes);
  const viewOf = node => views[isOurs.has(node) ? 0 : 1];

  const blanks = make("input");
  blanks.type = "checkbox";
  blanks.checked = true;
  blanks.addEventListener("change", () =>
    document.body.classList.toggle("hide-blanks", !blanks.checked));

  const header = make("header", "", make("h1", "", data.name));
  if (data.selector) {
    header.append(make("span", "", make("code", "", data.selector), " ",
      stepper(counted(matchCount, "match", "matches"), matches, viewOf)));
  }
  header.append(stepper(counted(differences.length, "difference", "differences"), differences, viewOf),
    make("label", "", blanks, " white space"));

  document.title = data.name + " \u2013 tree";
  document.body.append(header, make("main", "", ...views.map(view => view.section)));
  matches.slice(0, rowsAtOnce).forEach(node => viewOf(node).reveal(node));
  Object.assign(document.body.dataset,
    { nodes: ours.nodes.length, matches: matchCount, differences: differences.length });
}

main();
