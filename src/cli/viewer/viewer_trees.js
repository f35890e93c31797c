"use strict";
// The readings of a page as trees, and what they differ in. This comes in front of viewer.js.

const lookAhead = 40;  // nodes, when two trees differ

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
    case Node.PROCESSING_INSTRUCTION_NODE:
      return ["code", "<?" + dom.target + " " + dom.data + ">", []];
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

// --- Readings ---

// Each with what it is called, alone and as the place where a node of another one is not. What is
// `written` has its references undecoded.
const kinds = {
  page: { title: "As its author wrote it", there: "for qo", written: true },
  host: { title: "As a host reads it", there: "for a host", written: true },
  browser: { title: "As this browser repairs it", there: "in the browser", written: false },
};

// With a tree, or with a message why there is none.
function makeReadings(data) {
  const made = {
    page: { tree: treeOfRows(data.page) },
    host: typeof data.host === "string" ? { message: data.host } : { tree: treeOfRows(data.host) },
    browser: { tree: treeOfBrowser(data.source) },
  };
  for (const name of Object.keys(kinds)) Object.assign(made[name], kinds[name], { name });
  return made;
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

// What two nodes have in common that are the same thing. To most browsers, <?...> is a comment.
function keyOf(node, written) {
  const collapse = text => text.replace(/[ \t\n\v\f\r]+/g, " ").replace(/^ | $/g, "");
  switch (node.kind) {
    case "text":
      return "text " + collapse(written && !rawElements.test(node.parent.text) ? decodedText(node.text)
        : withBrowserLineEnds(node.text));
    case "comment":
    case "cdata":
      return node.kind + " " + withBrowserLineEnds(node.text);
    case "code":
      return "comment " + withBrowserLineEnds(node.text.slice(1, -1));
    case "doctype":
      return "!doctype";
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

// Of several of one name, the first.
function attributesOf(node, written) {
  const found = new Map();
  for (const [name, value] of node.attributes) {
    const key = name.toLowerCase();
    if (!found.has(key)) found.set(key, written ? decodedAttribute(value || "") : value || "");
  }
  return found;
}

function sameAttributes(a, b) {
  return a.size === b.size && Array.from(a).every(([name, value]) => b.get(name) === value);
}

function isElement(node) {
  return node.kind === "element" || node.kind === "void";
}

// Marks the nodes that differ, and returns them; null when there is a tree missing. White space is
// not compared: a browser drops and moves much of it.
function compare(left, right) {
  const both = [left, right].filter(reading => reading.tree);
  for (const { tree } of both) {
    for (const node of tree.nodes) node.mark = "";
    for (const node of tree.nodes) node.partner = null;
  }
  if (both.length < 2) return null;
  const lists = both.map(({ tree }) => tree.nodes.filter(node => node.kind !== "blank"));
  lists.forEach((list, side) => list.forEach(node => { node.key = keyOf(node, both[side].written); }));
  left.tree.root.partner = right.tree.root;
  right.tree.root.partner = left.tree.root;
  pairUp(...lists);
  for (const node of lists.flat()) {
    if (!node.partner) node.mark = "only";
    else if (pairedAncestor(node).partner !== pairedAncestor(node.partner)) node.mark = "moved";
  }
  for (const node of lists[0]) {
    if (node.mark || !isElement(node) || !isElement(node.partner)) continue;
    const same = sameAttributes(attributesOf(node, left.written),
      attributesOf(node.partner, right.written));
    if (!same) node.mark = node.partner.mark = "attributes";
  }
  return lists[0].filter(node => node.mark).concat(lists[1].filter(node => node.mark === "only"));
}
