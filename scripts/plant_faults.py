#!/usr/bin/env python3
"""Plants small faults in a copy of the sources, one at a time, and tells which of them the tests see.

usage: plant_faults.py [--folder FOLDER] [--work FOLDER] [PART...]   (PART: part of a file's name; default: all)

A fault is one exact text of a source put in the place of another. It is "killed" when a test fails, crashes or hangs,
"survived" when all pass, and "equivalent" when a row says why nobody can notice it; a row whose text is not in the
source just once is an error, and so is a fault that does not compile. Takes some ten seconds a fault: run it by hand,
or weekly. Ends with 1 when a fault survived.
"""

import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# What is built and run for the faults of a folder.
SUITES = {
    "qo_html": (["unit_tests", "allocation_tests"], "unit_tests|allocation_tests"),
    "qo_page": (["page_tests", "qo_html_tool", "qo_html_completions", "fuzz_pages", "fuzz_css_selectors"], "page_tests|cli_test|docs_test|fuzz_pages|fuzz_css_selectors|edit_browser_test|form_browser_test"),
    "cli": (["qo_html_tool", "qo_html_completions", "tool_parts_tests"], "tool_parts_tests|cli_test|cli_jobs_test|docs_test"),
}

# Folder: file: (what is there, what is put in its place, why it changes nothing, if it does not).
FAULTS = {
    "qo_html": {
        "qo_html.cpp": [
            ("apply_simple(step);\n        reach_ = Reach::members;", "apply_simple(step);\n        if (reach_ != Reach::children) reach_ = Reach::members;"),
            ("if (reach_ == Reach::members) reach_ = Reach::subtrees;", "reach_ = Reach::subtrees;"),
            ("value.find(' '));", "value.find_first_of(\" \\n\"));"),
            ("if (!token.empty()) tokens.push_back", "tokens.push_back"),
            ("node.classes.resize(former);", ""),
            ("classes.pop_back();\n    throw;", "throw;"),
            ("depth < ahead_.depth() && ahead_.path(depth) == walk_.node()", "ahead_.path(depth) == walk_.node()"),
            ("while (ahead_index_ <= index_ || !at_option())", "while (!at_option())"),
            ("while (node != top && place_in(node->parent, node).parent != nullptr) node = node->parent;\n  return node == top;", "return true;"),
            ("const Place place = place_in(top->parent, top);\n    if (place.parent != nullptr) return place;", "return {top->parent, find_child(top->parent, top)};"),
            ("if (has_ancestor(ref, top)) {", "if (false) {", "a short cut: the walk finds the same"),
            ("link(ref->prevSibling, node);\n  link(node, ref);", "link(node, ref);\n  link(ref->prevSibling, node);"),
            ("if (sibling->parent == nullptr) std::swap", "std::swap"),
            ("std::reverse(node->children.begin(), node->children.end());\n  for", "for"),
            ("child->parent = node;", ""),
            ("existing->hasValue = has_value;", ""),
            ("if (!joined.empty()) joined += ' ';", "joined += ' ';"),
            ("return any ? !node.isText : tag_name(node) == name;", "return any || tag_name(node) == name;"),
            ("attribute != nullptr && attribute->value == id;", "attribute == nullptr ? id.empty() : attribute->value == id;"),
            ("(!match_value || attribute->value == value)", "attribute->value == value"),
            ("node->parent == parent && test(*node)", "test(*node)", "the parent of a listed child is the one that lists it"),
            ("name != nullptr && node != form_", "name != nullptr"),
            ("find_attribute(control, \"disabled\") != nullptr", "!attribute_value(control, \"disabled\").empty()"),
            ("close == name.npos) return", "open == name.npos) return"),
            ("name.find(']', open)", "name.find(']')"),
            ("c == '@' || c == '_'", "c == '@'"),
            ("checkable ? \"1\" : \"\"", "\"\""),
            ("if (!result.isObject()) result", "result"),
            ("children.reserve(1);\n", "", "a node that has children to lose has room for one"),
            ("check.prepare();\n", ""),
            ("for (_qo_html* child : children) child->parent = this;", ""),
            ("prevSibling = nullptr;\n}\n\nbool _qo_html::insert_after", "}\n\nbool _qo_html::insert_after"),
            ("i < count && visit(i, nodes[i])", "visit(i, nodes[i]) && i + 1 < count"),
            ("if (index < nodes.size()) context = nodes[index];", "context = nodes[index];"),
            ("if (context != nullptr) nodes.push_back(context);", "nodes.push_back(context);"),
            ("if (children.capacity() == 0) children.reserve(3);\n", "", "only the size of the first block"),
        ],
        "qo_html_parser.cpp": [
            ("ends_name = c == ' ' || c == '\\t' || c == '\\r'", "ends_name = c == ' ' || c == '\\t'"),
            ("\"base\", \"col\",    \"embed\", \"keygen\"", "\"base\", \"col\",    \"embed\", \"keygem\""),
            ("\"meta\", \"source\", \"track\", \"wbr\"", "\"meta\", \"source\", \"track\", \"param\""),
            ("\"!doctype\", \"?xml\"", "\"?xml\", \"!doctype\""),
            ("c == ':' || c == '_'", "c == ':' || c == '_' || c == '-'"),
            ("html[i] == '!' ? 1 : 0", "0"),
            ("name.saw_slash && !leading_slash ? i - 1 : i", "name.saw_slash ? i - 1 : i"),
            ("case '\\r':\n      case '\\n':\n        break;\n      case '\\t':", "case '\\n':\n        break;\n      case '\\r':\n      case '\\t':"),
            ("quote_closed_ = false;\n        break;\n      case '>':", "break;\n      case '>':"),
            ("if (quote_closed_ || !value_.empty()) {", "if (!value_.empty()) {"),
            ("if (finished_ && self_closing_)", "if (self_closing_)"),
            ("if (name_.is_copy() || value_.is_copy()) adder_.flush();", ""),
            ("if (!collected.empty()) adder_.flush();", ""),
            ("if (count_ == batch) flush();", "if (count_ == batch) count_ = 0;"),
            ("if (attributes.size() < most_without_index)", "if (true)"),
            ("for (; indexed_ < attributes.size(); ++indexed_)", "for (; indexed_ < 16; ++indexed_)"),
            ("std::cout << \"exception in parse attribute\"", "std::cerr << \"exception in parse attribute\""),
            ("std::cerr << \"exception in getElementTagName\"", "std::cout << \"exception in getElementTagName\""),
            ("node->closed = true;\n    node->isCdata = true;", "node->closed = true;"),
            ("html[bracket] == '>'", "true"),
            ("if (c == '\\'' || c == '\"') {", "if (c == '\"') {"),
            ("position = std::max(position, html.size());", "position = html.size();"),
            ("if (end == not_found) {\n      move_to_end(html, position);\n      return nullptr;", "if (end == not_found) {\n      return nullptr;"),
            ("if (!root_->isRoot) {\n      parent_check_", "{\n      parent_check_"),
            ("name_check_.report(!name.empty());", "name_check_.report(true);"),
            ("if (drop_comments_) return Outcome::go_on;", ""),
            ("return name == tag_name(*root_) ?", "return equals_lowered(name, tag_name(*root_)) ?"),
            ("root_->isRoot ? Outcome::finished : Outcome::failed", "Outcome::failed"),
            ("if (has_attributes_) parse_attribute", "parse_attribute"),
            ("document->closed = false;", ""),
        ],
        "qo_html_writer.cpp": [
            ("node.isDeclaration ? \">\" : \"/>\"", "\"/>\""),
            ("if (attribute.hasValue == 0) continue;", ""),
            ("if (node.isVoid) return Markup::void_element;\n  if (node.isCdata) return Markup::cdata;",
             "if (node.isCdata) return Markup::cdata;\n  if (node.isVoid) return Markup::void_element;"),
            ("attribute.name.size() + attribute.value.size() + marks", "attribute.name.size() + marks"),
            ("open.size() + name.size() + close.size()", "name.size()", "the room for a whole block is enough for the marks"),
            ("out.make_room(mark.size());\n", ""),
            ("out.make_room(node.text.size());\n", ""),
        ],
        "qo_html_selector.cpp": [
            ("if (last() == nullptr || last()->type != SEL_DESCENDANT) add", "add"),
            ("if (last() != nullptr) add_descendant();", "add_descendant();"),
            ("char previous = ' '", "char previous = '\\\\'"),
            ("if (c == ':' && previous != '\\\\') break;", "if (c == ':') break;"),
            ("if (c != '\\\\') name += c;", "name += c;"),
            ("'=' && !split && !in_single_quotes", "'=' && !split"),
            ("previous->nextSelector = last();", "previous = nullptr;"),
        ],
        "qo_html_entities.cpp": [
            ("if (entity->value[0] == '&') continue;", ""),
            ("stop != end && *stop == ';'", "stop != end"),
            ("entity.name[name.size()] == '\\0'", "true"),
            ("if (static_cast<std::size_t>(end - name) > longest_name) end = name + longest_name;", "",
             "longer names would read beyond a row, which a sanitizer alone notices"),
        ],
        "qo_html_checks.h": [
            ("kept.size() != text.size() || !begins_with", "!begins_with"),
            ("kept.resize(text.size() + subject.size());", "if (kept.size() < text.size() + subject.size()) kept.resize(text.size() + subject.size());"),
        ],
        "qo_html_walk.h": [
            ("if (node_ == nullptr) continue;", ""),
            ("capacity_ *= 2;", "capacity_ *= 1;"),
        ],
    },
    "qo_page": {
        "tokenizer.cpp": [
            ("if (end > found) found = source_.find('<', end);", ""),
            ("before.empty() || before == \"-\"", "before.empty()"),
            ("ends_with(\"--\") ? 2 : 3", "2"),
            ("if (c == '/') return i + 2 < source_.size();", "if (c == '/') return true;", "the tree joins texts"),
            ("cdata_ && rest.substr", "rest.substr"),
        ],
        "tag_reader.cpp": [
            ("(c == '=' && position_ != begin)", "c == '='"),
            ("token_.self_closing = !at_end() && source_[position_] == '>';", "token_.self_closing = true;"),
            ("role == CodeRole::closing && !has_block && !is_first", "role == CodeRole::closing && !is_first"),
            ("position_ = after_name;", ""),
        ],
        "raw_content.cpp": [
            ("(is_blank(after) || after == '/' || after == '>')", "true"),
            ("comment_ends.find(source, at + 2)", "comment_ends.find(source, at + 4)"),
            ("in_inner = true;", ""),
        ],
        "tree_builder.cpp": [
            ("if (!is_quirky_) end_paragraph(at);", "end_paragraph(at);"),
            ("has(tag, heading) && open_.top_has(heading)", "false"),
            ("if (tag == Tag::col_ && open_.top_is(Tag::colgroup_)) return;", ""),
            ("while (open_.ends_now()) close_top({tag.end, tag.end});", ""),
        ],
        "open_elements.cpp": [
            ("case Tag::desc_:\n", ""),
            ("case Tag::mtext_:\n", ""),
            ("return holds_html(type) ? foreign_bounds : 0;", "return 0;"),
        ],
        "template_code.cpp": [
            ("close + (is_triple_end ? 3 : 2)", "close + 2"),
            ("close != npos && find(opener, at + opener_length) > close", "close != npos"),
        ],
        "decode.cpp": [
            ("mode == DecodeMode::attribute && goes_on", "goes_on"),
            ("size < letters.size() || next == '='", "size < letters.size()"),
        ],
        "node_text.cpp": [
            ("if (text.substr(0, 2) == \"\\r\\n\") return 2;\n", ""),
            ("text == parent + 1 && drops_line_break", "drops_line_break"),
            ("content_model(tree[tree.parent(text)]) == ContentModel::rawtext;", "has(tree[tree.parent(text)].tag, tag_flags::raw_text);"),
            ("is_hidden(found) && below != node", "is_hidden(found)"),
        ],
        "records.cpp": [
            ("if (goes_on) last.content_begin = last.content_end = last.end = narrow(token.extent.end);", "if (goes_on) last.end = narrow(token.extent.end);"),
            ("last.kind == NodeKind::text && last.end == token.extent.begin &&", "last.kind == NodeKind::text &&"),
            ("std::min<std::size_t>(gap, AttributeRecord::long_gap)", "gap"),
            ("std::min<std::size_t>(name.size(), NodeRecord::long_name)", "name.size()"),
            ("if (end == 0 && !is_blank(source[i])) return false;", "if (end == 0) return false;"),
            ("is_doctype && open_.empty()", "is_doctype"),
        ],
        "tag_edit.cpp": [
            ("if (!is_new && decode(slot.value, DecodeMode::attribute) == value) return;", ""),
            ("if (slot.value.find(slot.quote) != std::string::npos)", "if (false)"),
            ("return decode(there.range.in(slot.value), DecodeMode::attribute) == token;", "return there.range.in(slot.value) == token;"),
            ("return needs_blank ? attribute.name.begin : begin;", "return begin;"),
            ("if (!is_cut_off()) return token_.items_end;", "return token_.items_end;"),
        ],
        "edit_writer.cpp": [
            ("if (newest_first) std::reverse(parts.begin(), parts.end());", ""),
            ("auto at = edits.operations.rbegin(); at != edits.operations.rend(); ++at", "auto at = edits.operations.begin(); at != edits.operations.end(); ++at"),
            ("return loses_line_break ? \"\\n\" + text : text;", "return text;"),
            ("const auto kind = is_literal(tree_, node) ? WrittenText::Kind::literal : WrittenText::Kind::text;", "const auto kind = WrittenText::Kind::text;"),
            ("if (!write_content(node, edits)) return;\n  walk_.skip_children();", "if (!write_content(node, edits)) return;"),
            ("if (!is_open || position_ != record.end) return;", "return;"),
            ("|| record.kind == NodeKind::comment;", ";"),
            ("if (count > 1) {", "if (false) {"),
            ("guard_.check_uncut(range, substituted, range.begin);\n    return", "return"),
            ("text = spliced(text, splices);", ""),
            ("written_.gone.push_back({node, tree_[node].subtree_end});", "written_.gone.push_back({node, node + 1});"),
            ("levels += halves_of(operation).levels;", "levels = halves_of(operation).levels;"),
            ("written_.seams.push_back({new_end, end, true});", ""),
        ],
        "edit_guard.cpp": [
            ("is_open && has(name, tag_flags::formatting)", "has(name, tag_flags::formatting)"),
            ("!has(node.tag, tag_flags::formatting)", "true"),
            ("Kind::remove_attribute, Kind::add_class, Kind::remove_class, Kind::substitute_value});", "Kind::remove_attribute, Kind::add_class, Kind::remove_class});"),
            ("Kind::prepend, Kind::append}) != nullptr;\n}", "Kind::append}) != nullptr;\n}"),
            ("(is_open && edits.find({Kind::append, Kind::insert_after}) != nullptr)", "false"),
            ("Kind::remove, Kind::replace, Kind::rename, Kind::unwrap,", "Kind::remove, Kind::rename, Kind::unwrap,"),
            ("if (is_closed_twice(author, node, *authors)) return true;", ""),
            ("if (authors != nullptr && is_only_in_front(edits)) return;", ""),
        ],
        "odd_attributes.cpp": [
            ("(in_doubt && has_outside_code", "(has_outside_code"),
            ("begins_with(value, \"<\") && has_outside_code(value, \"<\", templates)", "false"),
            ("in_doubt = in_doubt || may_open_code(name, templates) || may_open_code(value, templates);", ""),
        ],
        "encoding.cpp": [
            ("if (!beyond_ascii(tree.source).empty()) return;", ""),
            ("if (added.empty()) continue;", "if (added.empty()) return;"),
            ("if (added != beyond_ascii(taken)) return check", "return check"),
            ("rest.find(';') - 1", "rest.size()"),
        ],
        "tag_blocks.cpp": [
            ("end->second >= offset;", "true;"),
            ("|| (step.by_end && has_end(any_end, offset))", ""),
        ],
        "edit_check.cpp": [
            ("if (wrappers_[i] == insertion.wrappers) continue;", "continue;"),
            ("if (insertion.is_text && record.kind != NodeKind::code)", "if (false)", "a second look: markup in texts is escaped"),
            ("const bool needs_end = content_model(record) != ContentModel::data || is_formatting;", "const bool needs_end = content_model(record) != ContentModel::data;"),
            ("if (record.is_cut_off) check_cut_off(node);", ""),
            ("if (is_wrapper) ++wrappers_", "if (false) ++wrappers_"),
            ("(end > insertion.end && !is_wrapper) || is_open", "is_open"),
            ("is_same_extent(new_.extent(node), wanted.extent) &&", ""),
            ("(wanted.is_renamed || new_.name(node) == old_.name(old_node))", "true",
             "a second look: the edit of a tag has read the name back"),
            ("if (next != no_node) fail_at", "if (false) fail_at",
             "a second look: a node that is gone lies within one that has another extent"),
        ],
        "new_places.cpp": [
            ("next_ = std::max(next_, gone[next_gone_++].end);", "next_ = gone[next_gone_++].end;",
             "stretches do not overlap: nothing is done below what is gone"),
            ("return wanted < change.old_end; }", "return wanted <= change.old_end; }"),
            ("return change.old_end < wanted; }", "return change.old_end <= wanted; }"),
            ("return last.new_end + (offset - last.old_end);", "return last.new_end;"),
            ("record.has_content ? moved_end(record.end) : begin + (record.end - record.begin)", "moved_end(record.end)",
             "a node without content whose tag changes is known"),
            ("if (tree_[node].kind != NodeKind::text) return node;", "return node;"),
        ],
        "seam_check.cpp": [
            ("if (!is_followed_at_once(seam)) code_after(*seam);", "code_after(*seam);"),
            ("if (model != ContentModel::rawtext) references", "references"),
            ("if (model != ContentModel::data) return;", ""),
            ("if (length == old_length) return;", "return;"),
            ("if (within != next_) fail(\"a tag\", *within);", ""),
            ("if (!drops_line_break(tree_[holder])) return;", "return;"),
        ],
        "operations.cpp": [
            ("is_first = is_first && first->kind != operation.kind;", "is_first = is_first && first == nullptr;"),
            ("if (a == inside && b == content) return true;", ""),
            ("second.kind == Kind::rename && first.name != second.name;", "second.kind == Kind::rename;"),
            ("if (!is_used(value_field) && !operation.value.empty()) fail(\" takes no value\");", ""),
            ("operation.substitution ? operation.substitution->replacement() : operation.value;", "operation.value;"),
            ("(row_of(operation.kind).fields & text_field) == text_field;", "operation.kind == Kind::set_text;"),
        ],
        "edits/edits.cpp": [
            ("std::stable_sort(uses.begin(), uses.end(), is_before);", "std::sort(uses.begin(), uses.end(), [](const Use& a, const Use& b) { return std::make_pair(a.node, ~a.batch) < std::make_pair(b.node, ~b.batch); });"),
            ("set = OperationSet();\n      checked = 0;", "checked = 0;"),
            ("while (checked < operations.size()) set.add(*operations[checked++], 0);", ""),
            ("if (is_text(below) || is_own) texts.push_back(next);", "if (is_text(below)) texts.push_back(next);"),
            ("next = std::max(next, node);", "next = node;"),
            ("state_->uses.resize(before);", ""),
            ("if (use.node != wanted) continue;", ""),
            ("if (is_changed || needs_index) TreeBuilder", "if (is_changed) TreeBuilder"),
            ("if (state_->code == CodeInText::refuse) check_has_no_code", "if (false) check_has_no_code"),
        ],
        "author_reading.cpp": [
            ("const bool is_closed = tag.self_closing &&", "const bool is_closed = false &&"),
            ("tag.extent.end + (is_unclosed ? 1 : 0)", "tag.extent.end"),
            ("if (is_inside && !is_own) return next->in(source_);", ""),
            ("offset < found->tag.end ? found : nullptr", "true ? found : nullptr"),
            ("if (is_element && record.content_end < record.end) end_tags_", "if (is_element) end_tags_"),
        ],
        "edits/substitution.cpp": [
            ("i_ += 2;", "i_ += 1;"),
            ("name.size() > 6 ? no_group : std::stoul(name)", "std::stoul(name)"),
            ("|| match[part.group].first == std::string::npos", ""),
            ("(braced && text_[i_] != '}')", "braced"),
        ],
        "substituter.cpp": [
            ("if (code != last && is_within(here, *code)) continue;", ""),
            ("if (in(text, here) == replacement) continue;", ""),
            ("&& code->end <= here.begin) ++code;", "&& code->end < here.begin) ++code;"),
            ("if (next != end && in(read.text(), code) == in(old_text, *next)) ++next;", "if (next != end) ++next;"),
            ("{Ampersands::where_needed, Ampersands::all}", "{Ampersands::where_needed}"),
            ("if (!begin || !end) throw", "if (!begin && !end) throw"),
        ],
        "class_tokens.cpp": [
            ("if (item != begin && block.is_loop) lead(item, begin);", ""),
            ("if (!block.has_default) lead(begin, end + 1);", ""),
            ("if (item != end) lead(begin, item + 1);", "if (item == begin) lead(begin, item + 1);"),
            ("token->is_whole = !in_front[i] && !after[i];", "token->is_whole = !in_front[i];"),
            ("!ways.blocks().branch_at(token->range.begin - value.begin)", "true"),
            ("is_block_[i] ? writes(code) : may_write(code)", "may_write(code)"),
        ],
        "block_stack.cpp": [
            ("if (!is_middle) drop(entry);", ""),
            ("block.has_default = block.has_default || entry.step.is_default;", "block.has_default = entry.step.is_default;"),
            ("if (open_.empty()) return;", "", "a middle in no block is left out when it ends"),
            ("if (step.by_end) ++by_end_;", "++by_end_;"),
        ],
        "form_controls.cpp": [
            ("path_.back().has_legend = false;", ""),
            ("inside.is_disabled_outside = inside.is_disabled;", ""),
            ("if (outside.has_legend) return;", ""),
            ("id == nullptr || control.root != no_node", "id == nullptr"),
            ("node = tree_.is_html(node, Tag::template_) ? tree_[node].subtree_end : node + 1;", "++node;"),
            ("const bool is_in_range = is_in_page && tree_", "const bool is_in_range = tree_"),
            ("ids_.try_emplace(std::string(decoded_value(tree_, *id, buffer)), node);", "ids_[std::string(decoded_value(tree_, *id, buffer))] = node;"),
            ("begin(node).is_offered = true;", ""),
        ],
        "control_index.cpp": [
            ("std::make_tuple(control.root, control.form, name(number))", "std::make_tuple(no_node, control.form, name(number))"),
            ("if (group.last_checked != none) is_checked_[group.last_checked] = false;", ""),
        ],
        "form_fill.cpp": [
            ("if (index_[number].is_disabled) {", "if (false) {"),
            ("if (is_checkable && !index_.is_checked(number)) continue;", ""),
            ("if (has_attribute(tree_, node, name) == is_set) return;", ""),
            ("if (before.size() == 1 && before[0] == value) return;", ""),
            ("wanted[value] = 0;", ""),
            ("if (left > of_value.size() + hidden[value])", "if (left > of_value.size())"),
            ("if (chosen != no_node) fail(\"another", "if (false) fail(\"another"),
            ("if (!is_left_alone) set_flag", "set_flag"),
            ("before.insert(before.end(), field.values.begin(), field.values.end());", ""),
            ("if (!option.is_disabled) return option.node;", "return option.node;"),
        ],
        "tables.cpp": [
            ("if (row.group != group) growing_.clear();", ""),
            ("growing_.insert(growing_.end(), begun.begin(), begun.end());", "growing_ = begun;"),
            ("if (row[i] == 0) row[i] = cell.cell;", "row[i] = cell.cell;"),
            ("while (is_taken(column)) ++column;", ""),
            ("return std::min(number, most);", "return number;"),
            ("if (row == no_node) row = here.parent;", ""),
            ("++table_.cells_[cell.cell].rows;", "table_.cells_[cell.cell].rows = 1;"),
        ],
        "escape.cpp": [
            ("c == '&' && reference_length(text, i, mode) != 0", "c == '&' && false"),
            ("if (text.empty()) return false;", ""),
            ("if (has_double == has_single) return preferred;\n  return has_double", "return has_double"),
        ],
        "quirks.cpp": [
            ("(!has_system && begins_with_any", "(begins_with_any"),
            ("if (system_name == quirky_system) return true;", ""),
        ],
        "selectors/attribute_match.cpp": [
            ("return !wanted.empty() && begins", "return begins"),
            ("value[wanted.size()] == '-'", "true"),
            ("test.ignores_case_in_html && tree[node].space == Namespace::html", "test.ignores_case_in_html"),
        ],
        "selectors/walker.cpp": [
            ("if (!tree_.is_element(here.node)) return;", ""),
            ("tree_.is_element(here.node) ? here.slots : around.neighbour | here.slots", "here.slots"),
            ("counts_[(here.depth - 1) * program_.counters + step.counter]", "counts_[step.counter]"),
            ("around.below |= here.slots | own.below;", "around.below |= here.slots;"),
            ("const Slots above = around.above | here.slots;", "const Slots above = here.slots;"),
        ],
        "selectors/sibling_positions.cpp": [
            ("counts_[types_[i]] - position.from_start + 1", "counts_[types_[i]] - position.from_start"),
            ("if (family.parent != parent) {", "if (families_.size() == depth + 1) {"),
            ("for (const Type type : types_) counts_[type] = 0;", ""),
        ],
        "selectors/nth.cpp": [
            ("reader.go_to(end);\n    return 0;", "return 0;"),
            ("number = std::min(number * 10 + (reader.peek() - '0'), most);", "number = number * 10 + (reader.peek() - '0');"),
        ],
        "selectors/languages.cpp": [
            ("if (subtag.size() == 1) return false;", ""),
        ],
        "selectors/page_text.cpp": [
            ("*first + wanted.size() <= range.end", "*first < range.end"),
        ],
    },
    "cli": {
        "unified_diff.cpp": [
            ("lines > 2 * context_lines", "lines >= 2 * context_lines"),
            ("count == 0 ? line - 1 : line", "line"),
            ("on_last_line ? out.back().old_end :", "false ? out.back().old_end :", "only saves time on a line with many changes"),
        ],
        "json_text.cpp": [
            ("static_cast<unsigned char>(c) < 0x20", "static_cast<unsigned char>(c) < 0x10"),
            ("std::to_string(++counts_[valid])", "std::to_string(counts_[valid])"),
        ],
        "session.cpp": [
            ("report(shown_path(files_[next->first]), next->second);\n    early_.erase(next);\n  }\n  reported_more_.notify_all();", "report(shown_path(files_[next->first]), next->second);\n    early_.erase(next);\n  }\n  reported_more_.notify_one();"),
            ("if (failure_ == nullptr) failure_ = std::current_exception();\n    reported_more_.notify_all();", "if (failure_ == nullptr) failure_ = std::current_exception();"),
            ("claimed_ < reported_ + most_early || failure_ != nullptr || must_stop()", "claimed_ < reported_ + most_early || failure_ != nullptr",
             "what stops the run is reported, which makes room as well"),
            ("claimed_ < reported_ + most_early || failure_", "true || failure_", "only keeps few results waiting"),
            ("next != early_.end() && found_ != Found::enough;", "next != early_.end();"),
            ("(signals_ != nullptr && signals_->is_pending())", "false"),
            ("if (options_.in_place) signals_ = &signals.emplace();", "if (options_.in_place) signals.emplace();"),
            ("++failed_;\n  }\n  found_", "}\n  found_"),
            ("if (found_ == Found::enough) return status_found;", ""),
        ],
        "signals.cpp": [
            ("&& sigismember(&former_, number) == 0", ""),
            ("pthread_sigmask(SIG_SETMASK, &former_, nullptr);", "pthread_sigmask(SIG_UNBLOCK, &held_, nullptr);"),
            ("{SIGINT, SIGTERM, SIGHUP, SIGQUIT}", "{SIGTERM, SIGHUP, SIGQUIT}"),
        ],
        "folders.cpp": [
            ("top.empty() && path == \"-\" ? \"./-\" : top + path", "top + path"),
            ("if (fnmatch(glob.c_str(), subject.c_str(), 0) == 0) return true;", "if (fnmatch(glob.c_str(), name.c_str(), 0) == 0) return true;"),
            ("name[0] != '.' && name != \"node_modules\" &&", "name[0] != '.' &&"),
            ("entries.rbegin(); entry != entries.rend()", "entries.begin(); entry != entries.end()"),
        ],
        "commands/edit.cpp": [
            ("if (pages_.at(target) != input.index) throw", "if (false) throw"),
            ("if (pages_.count(resolved(backup)) != 0)", "if (false)"),
            ("if (step.changes.empty()) continue;", ""),
            ("composed(all.changes, step.changes)", "step.changes"),
            ("has_place ? error.offset() : matches.front().extent().begin", "error.offset()"),
        ],
        "commands/fields.cpp": [
            ("writer.matches_.range(match).end;", "writer.matches_.range(match).begin;"),
            ("return writer.matches_.position(match).column;", "return writer.matches_.position(match).line;"),
            ("{\"file\", true,", "{\"file\", false,"),
        ],
        "node_path.cpp": [
            ("name.substr(name.substr(0, 1) == \"-\" ? 1 : 0)", "name"),
            ("ids_.at(lower(id)) == 1", "true"),
            ("names_.at(name) == 1 && is_plain(name)", "names_.at(name) == 1"),
            ("const bool may_be_elsewhere = !has_name ||", "const bool may_be_elsewhere ="),
            ("if (position.count > 1) step", "if (position.index > 1) step"),
            ("positions_[child].count = counts[lower(child.name())];", "positions_[child].count = 2;", "a longer path finds the same"),
        ],
        "commands/table.cpp": [
            ("container_end = std::max(container_end, match->extent().end);", "container_end = match->extent().end;"),
            ("if (!is_match) container_end", "container_end"),
            ("text.empty() || (last != nullptr && *last == text)", "text.empty()"),
            ("!taken.insert(unique).second; ++i", "taken.count(name) > 0 && i < 3 && !taken.insert(unique).second; ++i"),
        ],
        "files.cpp": [
            ("if (!path_.empty()) ::unlink(path_.c_str());", ""),
            ("0666 & ~mask", "0666"),
        ],
    },
}


def run(command, **options):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **options)


def build(work, targets):
    return run(["cmake", "--build", str(work / "build"), "-j", os.environ.get("JOBS", "1"), "--target", *targets])


def prepare(work):
    """A copy of the sources, to be built without optimisation; what has not changed keeps its time."""
    for name in run(["git", "ls-files"], cwd=ROOT).stdout.splitlines():
        target = work / "source" / name
        target.parent.mkdir(parents=True, exist_ok=True)
        if not target.exists() or target.read_bytes() != (ROOT / name).read_bytes():
            shutil.copyfile(ROOT / name, target)
            shutil.copymode(ROOT / name, target)
    configured = run(["cmake", "-S", str(work / "source"), "-B", str(work / "build"), "-DCMAKE_BUILD_TYPE=Debug",
                      "-DCMAKE_CXX_FLAGS=-O0 -g0"])
    if configured.returncode != 0:
        sys.exit(configured.stdout)


def verdict(work, targets, tests):
    if build(work, targets).returncode != 0:
        return "does not compile", ""
    found = run(["ctest", "--test-dir", str(work / "build"), "-R", f"^({tests})$", "--timeout", "120",
                 "--stop-on-failure", "--output-on-failure"])
    if found.returncode == 0:
        return "survived", ""
    for first in (r"^\[  FAILED  \] (\S+) \(", r"^FAIL: (\S+)", r"(\w+) \.*\*\*\*"):
        if named := re.search(first, found.stdout, re.M):
            return "killed", named[1]
    return "killed", ""


def plant(path, old, new):
    text = path.read_text()
    if text.count(old) != 1:
        return None
    path.write_text(text.replace(old, new))
    return text


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--folder", choices=sorted(SUITES), help="only the faults of this folder of src/")
    parser.add_argument("--work", type=pathlib.Path, default=ROOT / "build" / "faults")
    parser.add_argument("parts", nargs="*", help="only files that have one of these in their names")
    arguments = parser.parse_args()
    work = arguments.work.resolve()
    prepare(work)
    counts = {}
    for folder, files in FAULTS.items():
        targets, tests = SUITES[folder]
        if arguments.folder not in (None, folder):
            continue
        found, by = verdict(work, targets, tests)
        if found != "survived":
            sys.exit(f"src/{folder}, without any fault: {found} {by}")
        for file, rows in files.items():
            if arguments.parts and not any(part in file for part in arguments.parts):
                continue
            for old, new, *reason in rows:
                path = next((work / "source" / "src" / folder).rglob(file))
                original = plant(path, old, new)
                if original is None:
                    found, by = "is not there once", ""
                else:
                    found, by = verdict(work, targets, tests)
                    path.write_text(original)
                if reason and found == "survived":
                    found = "equivalent"
                counts[found] = counts.get(found, 0) + 1
                notes = "; ".join(filter(None, [by, *reason]))
                print(f"{found:10} {folder}/{file}: {old!r} -> {new!r}" + (f" ({notes})" if notes else ""), flush=True)
    print(", ".join(f"{count} {found}" for found, count in sorted(counts.items())))
    return 0 if set(counts) <= {"killed", "equivalent"} else 1


if __name__ == "__main__":
    sys.exit(main())
