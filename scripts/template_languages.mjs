// How the compilers of template languages read a source, told alike for all: for compare_edits.mjs.
//
// `read` gives a tree of {kind: 'element', name, start, end, attributes, children}, {kind: 'text', text} and
// {kind: 'other', label, children}, the last for blocks, expressions and comments. Offsets are those of JavaScript's
// strings, or of bytes; an end that the compiler does not tell is undefined. It may give a promise.
//
// `nodes` is for languages whose compilers know no elements: the nodes of the code, each with a type or kind, without
// texts and positions.
//
// Beforehand: npm install --prefix build/compare svelte @vue/compiler-sfc @angular/compiler @astrojs/compiler
//             @babel/parser nunjucks handlebars ejs twig php-parser

import { createRequire } from 'node:module';

const require = createRequire(new URL('../build/compare/node_modules/', import.meta.url));
const { parse: parseSvelte } = require('svelte/compiler');
const vue = require('@vue/compiler-dom');
const { HtmlParser, parseTemplate } = await import(new URL(
  '../build/compare/node_modules/@angular/compiler/fesm2022/compiler.mjs', import.meta.url));
const { parse: parseAstro, transform: compileAstro } = await import(new URL(
  '../build/compare/node_modules/@astrojs/compiler/dist/node/sync.js', import.meta.url));
const { parse: parseScript } = require('@babel/parser');
const nunjucks = require('nunjucks');
const handlebars = require('handlebars');
const ejs = require('ejs');
const { twig } = require('twig');
const PhpParser = require('php-parser');

// --- Trees by positions: what is between the children of a node is a piece of its own code ---

const other = (label, children = []) => ({ kind: 'other', label, children });
const text = (written) => ({ kind: 'text', text: written });

function attribute(source) {
  const [, name, value] = /^([^=]*?)(?:\s*=\s*([^]*))?$/.exec(source);
  return { name, value, source };
}

// The nodes of the children, and the source between them.
function withGaps(source, { start, end }, children) {
  const nodes = [];
  let at = start;
  for (const [child, range] of children) {
    if (range.start > at) nodes.push(other(source.slice(at, range.start)));
    nodes.push(child);
    at = range.end;
  }
  if (end > at) nodes.push(other(source.slice(at, end)));
  return nodes;
}

// --- Svelte ---

const svelteParts = ['fragment', 'consequent', 'alternate', 'body', 'fallback', 'pending', 'then', 'catch'];

const svelteNames = { Script: 'script', StyleSheet: 'style' };

function svelteChildren(node) {
  const nodes = svelteParts.flatMap((part) => node[part]?.nodes ?? []);
  return nodes.sort((a, b) => a.start - b.start);
}

function svelteNode(source, node) {
  const written = ({ start, end }) => source.slice(start, end);
  if (node.type === 'Text') return text(written(node));
  const children = svelteChildren(node).map((child) => [svelteNode(source, child), child]);
  if (!Array.isArray(node.attributes)) return other(node.type, withGaps(source, node, children));
  const content = node.content ?? { start: 0, end: 0 };
  const code = [node.tag, node.expression].filter((part) => part?.start !== undefined);
  return {
    kind: 'element',
    name: node.name ?? svelteNames[node.type] ?? 'svelte:options',
    start: node.start,
    end: node.end,
    attributes: node.attributes.map((part) => attribute(written(part))),
    children: [
      ...code.map((part) => other(written(part))),
      ...children.map(([child]) => child),
      ...(content.end > content.start ? [text(written(content))] : []),
    ],
  };
}

function readSvelte(source) {
  const root = parseSvelte(source, { modern: true });
  const special = [root.options, root.module, root.instance, root.css].filter(Boolean);
  const nodes = [...special, ...root.fragment.nodes].sort((a, b) => a.start - b.start);
  return nodes.map((node) => svelteNode(source, node));
}

// --- Vue ---

const vueElement = 1;
const vueText = 2;

function vueNode(node) {
  if (node.type === vueText) return text(node.loc.source);
  if (node.type !== vueElement) return other(node.loc.source);
  return {
    kind: 'element',
    name: node.tag,
    start: node.loc.start.offset,
    end: node.loc.end.offset,
    attributes: node.props.map(({ loc }) => attribute(loc.source)),
    children: node.children.map(vueNode),
  };
}

// All blanks are told of as in a <pre>. The parser has a state that an error thrown within would leave as it is.
const vueOptions = { parseMode: 'sfc', comments: true, isPreTag: () => true, isIgnoreNewlineTag: () => false };

// Rules of what may be in an element: whoever puts a thing there has asked for it.
const { ErrorCodes: vueCodes, DOMErrorCodes: vueDomCodes } = vue;
const vueContentErrors = [
  vueDomCodes.X_V_HTML_WITH_CHILDREN, vueDomCodes.X_V_TEXT_WITH_CHILDREN, vueDomCodes.X_TRANSITION_INVALID_CHILDREN,
  vueCodes.X_V_SLOT_EXTRANEOUS_DEFAULT_SLOT_CHILDREN, vueCodes.X_KEEP_ALIVE_INVALID_CHILDREN,
];

const isHtml = ({ tag, props }) => tag === 'template' && !props.some(({ name }) => name === 'lang');

function readVue(source) {
  const errors = [];
  const onError = (error) => vueContentErrors.includes(error.code) || errors.push(error);
  const onWarn = () => {};
  const { children } = vue.parse(source, { ...vueOptions, onError });
  for (const { innerLoc } of children.filter(isHtml)) vue.compile(innerLoc.source, { onError, onWarn });
  if (errors.length > 0) throw errors[0];
  return children.map(vueNode);
}

// --- Angular ---

function angularNode(source, node) {
  const range = { start: node.sourceSpan.start.offset, end: node.sourceSpan.end.offset };
  const written = ({ sourceSpan }) => source.slice(sourceSpan.start.offset, sourceSpan.end.offset);
  if (node.tokens && node.value !== undefined) return text(written(node));
  const inside = [...(node.cases ?? []), ...(node.expression?.length ? node.expression : []), ...(node.children ?? [])];
  const children = inside.map((child) => {
    const { start, end } = child.sourceSpan;
    return [angularNode(source, child), { start: start.offset, end: end.offset }];
  });
  if (!node.attrs) return other(node.constructor.name, withGaps(source, range, children));
  return {
    kind: 'element',
    name: node.name.replace(/^:\w+:/, ''),  // as svg's
    start: range.start,
    end: node.endSourceSpan ? range.end : undefined,
    attributes: node.attrs.map((part) => attribute(written(part))),
    children: children.map(([child]) => child),
  };
}

const angularOptions = { tokenizeExpansionForms: true, tokenizeBlocks: true, tokenizeLet: true, canSelfClose: true };

function readAngular(source) {
  const { rootNodes, errors } = new HtmlParser().parse(source, '', angularOptions);
  const all = [...errors, ...(parseTemplate(source, '', { preserveWhitespaces: true }).errors ?? [])];
  if (all.length > 0) throw new Error(all[0].msg);
  return rootNodes.map((node) => angularNode(source, node));
}

// --- Astro: offsets are bytes; starts are told inexactly, ends not of all elements, and none of attributes ---

const astroAttributes = {
  quoted: ({ name, raw }) => `${name}=${raw}`,
  empty: ({ name }) => name,
  expression: ({ name, value }) => `${name}={${value}}`,
  spread: ({ name }) => `{...${name}}`,
  shorthand: ({ name }) => `{${name}}`,
  'template-literal': ({ name, raw }) => `${name}=${raw}`,
};

const astroElements = ['element', 'component', 'custom-element'];

function astroNode(bytes, node) {
  if (node.type === 'text') return text(node.value);
  const children = (node.children ?? []).map((child) => astroNode(bytes, child));
  if (!astroElements.includes(node.type)) return other(`${node.type} ${node.value ?? ''}`, children);
  const { start, end } = node.position;
  const isEnd = end !== undefined && bytes[end.offset - 1] === '>'.charCodeAt(0);
  return {
    kind: 'element',
    name: node.name,
    start: bytes.lastIndexOf(`<${node.name}`, start.offset),
    end: isEnd ? end.offset : undefined,
    attributes: node.attributes.map((part) => attribute(astroAttributes[part.kind](part))),
    children,
  };
}

// The compiler takes any expression; what it makes of the page is read as the program that it is.
const scriptOptions = { sourceType: 'module', plugins: ['typescript'], allowReturnOutsideFunction: true };

async function readAstro(source) {
  const { ast, diagnostics } = parseAstro(source, { position: true });
  const error = diagnostics.find(({ severity }) => severity === 1);
  if (error) throw new Error(error.text);
  parseScript((await compileAstro(source, {})).code, scriptOptions);
  return ast.children.map((child) => astroNode(Buffer.from(source), child));
}

// --- Languages without elements ---

function nunjucksNodes(node) {
  if (Array.isArray(node)) return node.map(nunjucksNodes).filter((child) => child !== undefined);
  if (!(node instanceof nunjucks.nodes.Node)) return node;
  const onlyText = node.children?.every((child) => child instanceof nunjucks.nodes.TemplateData);
  if (node.typename === 'Output' && onlyText) return undefined;
  const inside = node.body ? new Set([...node.fields, 'body']) : node.fields;  // the body of a "set" is no field
  const fields = [...inside].map((field) => [field, nunjucksNodes(node[field])]);
  return { type: node.typename, ...Object.fromEntries(fields) };
}

// A copy without what `isLeftOut` tells of a key and its value.
function pruned(node, isLeftOut) {
  const kept = JSON.stringify(node, (key, value) => {
    if (isLeftOut(key, value)) return undefined;
    return Array.isArray(value) ? value.filter((item) => !isLeftOut('', item)) : value;
  });
  return JSON.parse(kept);
}

const handlebarsText = (key, value) => ['loc', 'strip', 'openStrip', 'closeStrip', 'inverseStrip'].includes(key)
  || value?.type === 'ContentStatement';

const twigText = (key, value) => key === 'position' || value?.type === 'raw';

const php = new PhpParser({ parser: { extractDoc: false }, ast: { withPositions: false } });

const phpText = (key, value) => value?.kind === 'inline';

function ejsNodes(source) {
  ejs.compile(source, { client: true });
  const pieces = new ejs.Template(source).parseTemplateText();
  return pieces.flatMap((piece, at) => (/^<%(?!%)/.test(piece) ? [{ type: `${piece}${pieces[at + 1]}` }] : []));
}

// --- The languages ---

export const languages = {
  svelte: { read: readSvelte, quotesKeepCode: true },
  vue: { read: readVue, isOuter: (depth) => depth === 0 },
  angular: { read: readAngular, options: ['--dialect', 'angular'] },  // out of compiled modules: no ending tells
  astro: { read: readAstro, inBytes: true },
  nunjucks: { nodes: (source) => nunjucksNodes(nunjucks.parser.parse(source)).children },
  handlebars: { nodes: (source) => pruned(handlebars.parse(source).body, handlebarsText) },
  ejs: { nodes: ejsNodes },
  php: { nodes: (source) => pruned(php.parseCode(source, '').children, phpText) },
  twig: { nodes: (source) => pruned(twig({ data: source, rethrow: true }).tokens, twigText) },
};
