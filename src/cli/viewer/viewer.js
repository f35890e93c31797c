// Shows two of three readings of a page side by side: those of qo and of a host, which
// `qo tree --html` put into the page, and what this browser makes of the same source. All content
// reaches the document as text nodes; the source itself is only ever parsed into an inert document,
// in which nothing runs and nothing is loaded.

const rowsAtFirst = 1500;   // opened without being asked
const rowsAtOnce = 500;     // children that one click shows
const deepestIndent = 60;   // levels

// --- Rows ---

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
    case "code":
    case "doctype":
      return [node.text];
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

const badges = { only: "missing", moved: "elsewhere", attributes: "other attributes" };

// The rows of one tree; `there` tells what it was compared with.
class TreeView {
  constructor(tree, element, there) {
    this.element = element;
    this.there = there;
    for (const node of tree.nodes) Object.assign(node, { row: null, shown: 0, more: null });
    Object.assign(tree.root, { shown: 0, more: null });
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
    if (node.mark) row.append(make("span", "badge", badges[node.mark] + " " + this.there));
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

// The two readings that are shown, and what they have in common.
class Viewer {
  constructor(data) {
    this.data = data;
    this.readings = makeReadings(data);
    this.marked = this.readings[data.selected];
    this.matches = (this.marked.tree ? this.marked.tree.nodes : []).filter(node => node.matches);
    this.matchCount = this.matches.reduce((sum, node) => sum + node.matches, 0);
    this.blanks = make("input");
    this.blanks.type = "checkbox";
    this.blanks.checked = true;
    this.blanks.addEventListener("change", () =>
      document.body.classList.toggle("hide-blanks", !this.blanks.checked));
    this.header = make("header");
    this.main = make("main");
    document.title = data.name + " \u2013 tree";
    document.body.append(this.header, this.main);
  }

  show(left, right) {
    const shown = [this.readings[left], this.readings[right]];
    const differences = compare(...shown);
    const sections = shown.map((reading, side) => this.section(reading, shown[1 - side], side));
    this.main.replaceChildren(...sections.map(({ section }) => section));
    const isLeft = new Set(shown[0].tree ? shown[0].tree.nodes : []);
    const viewOf = node => sections[isLeft.has(node) ? 0 : 1].view;
    const matches = shown.includes(this.marked) ? this.matches : [];
    this.header.replaceChildren(...this.headerParts(matches, differences, viewOf));
    matches.slice(0, rowsAtOnce).forEach(node => viewOf(node).reveal(node));
    Object.assign(document.body.dataset, { left, right, nodes: isLeft.size,
      matches: this.matchCount, differences: differences ? differences.length : "" });
  }

  headerParts(matches, differences, viewOf) {
    const parts = [make("h1", "", this.data.name)];
    if (this.data.selector) {
      parts.push(make("span", "", make("code", "", this.data.selector), " ",
        stepper(counted(this.matchCount, "match", "matches"), matches, viewOf)));
    }
    if (differences) {
      parts.push(stepper(counted(differences.length, "difference", "differences"), differences,
        viewOf));
    }
    return [...parts, make("label", "", this.blanks, " white space")];
  }

  section(reading, other, side) {
    const title = make("h2", "", this.chooser(reading, other, side));
    if (!reading.tree) {
      return { section: make("section", "", title, make("p", "message", reading.message)) };
    }
    title.append(" ", make("small", "", counted(reading.tree.nodes.length, "node", "nodes")));
    const element = make("div", "tree");
    element.setAttribute("role", "tree");
    element.setAttribute("aria-label", reading.title);
    const view = new TreeView(reading.tree, element, other.there);
    return { section: make("section", "", title, element), view };
  }

  // Choosing what the other side shows swaps the two.
  chooser(reading, other, side) {
    const select = make("select");
    select.setAttribute("aria-label", side === 0 ? "the reading on the left" : "the reading on the right");
    for (const { name, title } of Object.values(this.readings)) {
      const option = make("option", "", title);
      option.value = name;
      option.selected = name === reading.name;
      select.append(option);
    }
    select.addEventListener("change", () => {
      const pair = [select.value, select.value === other.name ? reading.name : other.name];
      const [left, right] = side === 0 ? pair : pair.reverse();
      this.show(left, right);
      location.replace("#" + left + "," + right);
      this.main.children[side].querySelector("select").focus();
    });
    return select;
  }
}

function main() {
  const data = JSON.parse(document.getElementById("data").textContent);
  const asked = location.hash.slice(1).split(",");
  const isPair = asked.length === 2 && asked[0] !== asked[1] &&
    asked.every(name => Object.hasOwn(kinds, name));
  new Viewer(data).show(...(isPair ? asked : [data.selected, "browser"]));
}

main();
