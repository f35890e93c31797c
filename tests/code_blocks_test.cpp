// Which pieces of template code belong to one block.

#include <qo_page/template/code_blocks.h>

#include <string>

#include <gtest/gtest.h>

namespace {

// The blocks, each as the numbers of its pieces; "*" after a loop, "!" where one branch is always taken.
std::string blocks(const std::string& source) {
  const qo::CodeBlocks found(source);
  std::string out;
  for (const qo::CodeBlock& block : found.blocks()) {
    if (!out.empty()) out += ' ';
    for (const std::size_t piece : block.pieces) out += std::to_string(piece);
    out += block.is_loop ? "*" : "";
    out += block.has_default ? "!" : "";
  }
  return out;
}

// Pieces that neither begin nor end anything have no number.
TEST(CodeBlocks, AreJoinedByTheRulesOfTheirLanguage) {
  struct {
    const char* source;
    const char* blocks;
  } const cases[] = {
      // Statements with names: those without an end are no blocks.
      {"{% if a %}{% include b %}{% elif c %}{% else %}{% endif %}", "0234!"},
      {"{%- for a in b -%}{% if c %}{% else %}{% endif %}{% empty %}{%+ endfor %}", "123! 045*!"},
      {"{% set a = 1 %}{% set b %}{% set c = 2 %}{% endset %}", "01"},
      {"{% block a %}{% block b 'c' %}{% endblock %}{% endif %}", "01"},
      {"{% comment %}{% if %}{% endcomment %}{% if a %}{% end_if %}", "02 34"},
      {"{% if a %}{% for b in c %}{% end %}{% end %}", "12* 03"},
      {"{% case a %}{% when 1 %}{% else if b %}{% endcase %}", "0123"},
      // Sections and actions.
      {"{{#a}}{{^b.c}}{{x}}{{/b.c}}{{/a}}", "12 03"},
      {"{{#if a}}{{else if b}}{{else}}{{/if}}{{~#each x~}}{{^}}{{~/each~}}", "0123! 456*!"},
      {"{{- range .A -}}{{ if eq .B 1 }}{{ else }}{{ end }}{{ end }}{{ end }}", "123! 04*"},
      // PHP.
      {"<?php if ($a): ?><?php foreach ($b as $c): ?><?php endforeach ?><?php else: ?><?php endif ?>", "12* 034!"},
      {"<?php if ($a) { ?><? } elseif ($b) { ?><?php } else { x(); } ?>", "012!"},
      {"<?php foreach ($a as $b) { if ($c) { ?><?php } } ?>", "01 01*"},
      {"<?php } if ($a) { ?><?php } ?>", "01"},
      {"<?php if ($a) { echo \"}'\"; /* } */ } // }\n# }\n if ($b): echo '{'; // :\nelse: ?><?php endif;", "01!"},
      {"<?php $a = <<<X\n don't }\n  X;\nwhile (f(')')) : ?><?php endwhile ?>", "01*"},
      {"<?php $x->if = $endif; foo(function () { ?><?php }) ?>", "01"},
      // Words of Ruby, braces of others.
      {"<% if a %><% x if b %><% elsif c %><% else %><% end %>", "0123!"},
      {"<%= form_for a do |f| %><% f.each { |x| %><% } %><%- end -%>", "12 03*"},
      {"<% while a do %><% end %><% case a\n when 1 %><% when 2 %><% end %>", "01* 234"},
      {"<% a.end; b = :if; c(if: 1) %><% unless a # if\n %><% end %>", "01"},
      {"<% if (a) { %><% } else if (b) { %><% } %><%# } %><%-- { --%>", "012"},
      {"<%= link begin %><% if (a) { %><% } %><% end %>", "12 03"},
      {"<?lsmb IF a ?><?lsmb ELSE ?><?lsmb END ?>", "012!"},
      {"<% For Each a In b %><% If c Then d %><% Exit For %><% Next %>", "01*"},
      {"<% if a then %><% If b Then %><% End If %><% else %><% end if %>", "12 034!"},
      {"<% do while a %><% loop %><% Select Case a %><% Case Else %><% End Select %>", "01* 234!"},
      {"<% a.each do |b| %><% next if b %><% next %><% loop do %><% end %><% end %>", "23* 04*"},
      {"<% if (/[{\\/]/.test(a / b)) { %><% } %>", "01"},
      // Marks that are plain text to the reader.
      {"{if $a}{include b}{else}{/if} {b} {/c}", "023!"},
      {"{#each a as b}{:else if c}{:else}{/each}", "0123*!"},
      {"a { color: red } {x} {y", ""},
      {"@if ($a)\n @guest\n@endguest\n@else @section('b', c)@endif a@if.b", "12 035!"},
      {" * @code\n * @endcode @media (a) {}", ""},
      {"#foreach ($a in $b)#if($c)#else#{end}#set($d = 1)#end #if (X) a.html#end", "123! 04*"},
      {"<#list a as b><@c d/><@e></@><#else></#list></#if>", "12 034!"},
      {"[% FOREACH a IN b %][% c IF d %][% IF e; f; END %][% END %]%][%|g%][%END%]", "02* 34"},
      {"<!-- IF a -->{B}<!-- ELSE --><!-- BEGIN c --><!-- END c --><!-- ENDIF -->", "23* 014!"},
      {"<!-- IF a --><!-- ENDIF --><!-- BEGIN c --><!-- END c -->", ""},
      {"<c:if a='b > c'><c:out d/></c:if><TMPL_IF a><TMPL_ELSE></TMPL_IF>", "01 234!"},
      // Brackets of several kinds do not see each other.
      {"<% if a %>{{#a}}{% if b %}<% end %>{{/a}}{% endif %}", "03 14 25"},
  };
  for (const auto& test : cases) EXPECT_EQ(blocks(test.source), test.blocks) << test.source;
}

TEST(CodeBlocks, AreCutByRangesThatHoldAPart) {
  const std::string source = "{%if a%}bc{%else%}d{%for e%}f{%endfor%}g{%endif%}h";
  const qo::CodeBlocks found(source);
  const auto begin = [&](std::size_t piece) { return found.pieces()[piece].begin; };
  for (std::size_t from = 0; from <= source.size(); ++from) {
    for (std::size_t to = from; to <= source.size(); ++to) {
      const auto holds = [&](std::size_t piece) { return begin(piece) >= from && begin(piece) < to; };
      const bool is_cut = holds(0) != holds(1) || holds(1) != holds(4) || holds(2) != holds(3);
      const auto cut = found.cut(from, to);
      ASSERT_EQ(cut.has_value(), is_cut) << from << ' ' << to;
      if (!cut) continue;
      EXPECT_TRUE(cut->within.begin >= from && cut->within.begin < to);
      ASSERT_TRUE(cut->outside);
      EXPECT_TRUE(cut->outside->begin < from || cut->outside->begin >= to);
    }
  }
}

}  // namespace
