"""Finds what can be changed in a file: the mutants, each as a few insertions into its text."""

import dataclasses
import re

from . import syntax
from .mutants import (
    COMPILE_TIME, FUNCTIONS, TRANSPARENT, CALLS, CONSTRUCTIONS, LITERALS, REMOVABLE, WITHOUT_EFFECT,
    ONLY_FOR_ROOM, WITHOUT_WORDS, SYMMETRIC, OPERATORS, ASSIGNMENTS, NEVER_EMPTY, Context, Insertion,
    Mutant, on_one_line,
)


class Finder:
    def __init__(self, source, tree_list):
        self.source = source
        self.text = source.text
        self.others = syntax.enumerators(tree_list)
        self.found = {}
        for tree in tree_list:
            self.visit(tree, Context())

    def mutants(self):
        return sorted(self.found.values(), key=lambda each: (each.begin, each.kind, each.mutated))

    # Places.

    def offset(self, location):
        location = location.get("expansionLoc", location)
        if "offset" not in location or not location.get("in"):
            return None
        path = self.source.path
        same = location["in"] == str(path) or path.match(location["in"].lstrip("./"))
        return location if same else None

    def span(self, node):
        """Where a node begins and ends in the file; nothing for one of another file or a macro's part."""
        given = node.get("range", {})
        begin, end = self.offset(given.get("begin", {})), self.offset(given.get("end", {}))
        if begin is None or end is None:
            return None
        first, last = begin["offset"], end["offset"] + end["tokLen"]
        if any("expansionLoc" in given[side] for side in ("begin", "end")):
            if first != end["offset"] or self.text[last:last + 1] == "(":
                return None
        return (first, last) if first < last else None

    def code(self, span):
        return self.text[span[0]:span[1]]

    # What is found.

    def add(self, kind, context, span, mutated, insertions):
        if span is None:
            return
        insertions = tuple(insertions)
        original = on_one_line(self.code(span))
        if original != mutated:
            mutant = Mutant(kind, span[0], original, mutated, insertions, context.constant,
                            context.table)
            self.found.setdefault((kind, insertions), mutant)

    def choice(self, kind, context, span, mutated):
        """The mutated expression where the mutant is chosen, else the original one."""
        if span is not None:
            mutated = on_one_line(mutated)
            self.add(kind, context, span, mutated,
                     [Insertion(*span, f"(@ ? ({mutated}) : ", ")")])

    # The walk.

    def visit(self, node, context):
        kind = node.get("kind")
        if kind is None or kind in COMPILE_TIME or node.get("isImplicit"):
            return
        handler = getattr(self, "at" + kind, None)
        if kind in FUNCTIONS:
            context = self.in_function(node)
        elif kind in CALLS:
            context = self.at_call(node, context)
        elif kind in CONSTRUCTIONS:
            self.arguments(node.get("inner", ()), node, context)
        elif handler:
            context = handler(node, context)
        if context is not None:
            for child in node.get("inner", ()):
                self.visit(child, context)

    def in_function(self, node):
        if "explicitlyDefaulted" in node or (self.source.path.stem, node.get("name")) in ONLY_FOR_ROOM:
            return None
        result = node.get("type", {}).get("qualType", "").split("(")[0]
        return Context(constant=bool(node.get("constexpr")), returns_reference="&" in result)

    def only_first(self, node, context):
        """A template is read once, as it was written, and not as it was filled in."""
        for child in node.get("inner", ()):
            if child.get("kind") in FUNCTIONS | {"CXXRecordDecl", "VarDecl"}:
                self.visit(child, context)
                return

    atFunctionTemplateDecl = atClassTemplateDecl = atVarTemplateDecl = only_first

    def atLambdaExpr(self, node, context):
        inner = dataclasses.replace(context, returns_reference=False, deduced=True)
        for child in node.get("inner", ()):
            if child.get("kind") != "CXXRecordDecl":
                self.visit(child, inner)

    def atFieldDecl(self, node, context):
        return dataclasses.replace(context, constant=True)

    def atVarDecl(self, node, context):
        if not node.get("constexpr"):
            return context
        span = self.span(node)
        if span is None or context.constant:
            return None
        place = re.compile(r"\bconstexpr\b").search(self.text, *span)
        return dataclasses.replace(context, table=place.start()) if place else None

    def bare(self, node):
        """What a person wrote, without what the compiler has put around it."""
        while True:
            inner = [each for each in node.get("inner", ()) if each.get("kind")]
            wrapped = node.get("kind") in TRANSPARENT and inner
            if not wrapped and node.get("kind") == "CXXConstructExpr" and inner:
                others = [each for each in inner[1:] if each["kind"] != "CXXDefaultArgExpr"]
                wrapped = not others and self.span(inner[0]) == self.span(node)
            if not wrapped:
                return node
            node = inner[0]

    # Operators.

    def operator_between(self, left, right):
        left, right = self.span(left), self.span(right)
        if left is None or right is None or left[1] > right[0]:
            return None
        return on_one_line(self.text[left[1]:right[0]])

    def operation(self, node, left, right, context):
        span, operator = self.span(node), self.operator_between(left, right)
        if span is None or operator is None:
            return
        first, second = self.code(self.span(left)), self.code(self.span(right))
        joins = operator == "/" or "string" in self.type_of(node)
        for other in () if joins and node["kind"] != "BinaryOperator" else OPERATORS.get(operator, ()):
            self.choice("operator", context, span, f"{first} {other} {second}")
        if operator in ("&&", "||"):
            for side in (first, second):
                self.choice("operand", context, span, f"static_cast<bool>({side})")
        elif node["kind"] != "BinaryOperator" and operator in ("+", "/"):
            for side in (first, second):
                self.choice("operand", context, span, side)
        if operator in ASSIGNMENTS:
            self.choice("operator", context, span, f"{first} {ASSIGNMENTS[operator]} {second}")

    def atBinaryOperator(self, node, context):
        self.operation(node, *node["inner"], context)
        return context

    atCompoundAssignOperator = atBinaryOperator

    def atCXXOperatorCallExpr(self, node, context):
        callee, *operands = node["inner"]
        name = self.bare(callee).get("referencedDecl", {}).get("name", "")
        if len(operands) == 2 and name not in ("operator()", "operator[]", "operator="):
            self.operation(node, *operands, context)
        elif len(operands) == 1 and name == "operator!":
            self.atUnaryOperator({**node, "opcode": "!", "inner": operands}, context)
        elif name == "operator()":
            self.arguments(operands[1:], node, context)
        for operand in operands:
            self.visit(operand, context)

    def atCXXRewrittenBinaryOperator(self, node, context):
        call = node
        while call.get("inner") and call["kind"] != "CXXOperatorCallExpr":
            call = call["inner"][0]
        if call["kind"] == "CXXOperatorCallExpr" and len(call["inner"]) == 3:
            sides = sorted(call["inner"][1:], key=lambda each: self.span(each) or (0, 0))
            self.operation(node, *sides, context)
            for side in sides:
                self.visit(side, context)

    def atUnaryOperator(self, node, context):
        span, operand = self.span(node), self.span(node["inner"][0])
        if span and operand:
            code = self.code(operand)
            if node["opcode"] == "!":
                self.choice("negation", context, span, f"!!({code})")
            elif node["opcode"] in ("-", "~"):
                self.choice("operator", context, span, code)
        return context

    # Conditions.

    def condition(self, node, context, otherwise="!({})"):
        bare = self.bare(node)
        span = self.span(bare)
        known = (bare["kind"] == "UnaryOperator" and bare.get("opcode") == "!") or (
            len(bare.get("inner", ())) >= 2 and bare["kind"] != "CXXMemberCallExpr" and
            bare["kind"] != "CallExpr")
        if span is None or known or bare["kind"] in LITERALS:
            return
        mutated = otherwise.format(on_one_line(self.code(span)))
        self.add("condition", context, span, mutated,
                 [Insertion(*span, f"(@ ? {mutated} : static_cast<bool>(", "))")])

    def atIfStmt(self, node, context):
        if not node.get("isConstexpr") and not node.get("hasVar"):
            self.condition(node["inner"][1 if node.get("hasInit") else 0], context)
        if node.get("isConstexpr"):
            for child in node["inner"][1:]:
                self.visit(child, context)
            return None
        return context

    def atConditionalOperator(self, node, context):
        self.condition(node["inner"][0], context)
        return context

    def atWhileStmt(self, node, context):
        if not node.get("hasVar"):
            self.condition(node["inner"][0], context, "false")
        return context

    # Constants.

    def atIntegerLiteral(self, node, context):
        span = self.span(node)
        code = self.code(span) if span else ""
        # A comparison by <=> has a zero of its own, which nobody has written.
        if code and (code[0].isalnum() or code[0] == "."):
            self.choice("constant", context, span, f"{code} + 1")
            if code.rstrip("uUlL") == "1":
                self.choice("constant", context, span, f"{code} - 1")

    atFloatingLiteral = atIntegerLiteral

    def atCharacterLiteral(self, node, context):
        span = self.span(node)
        if span:
            code = self.code(span)
            self.choice("constant", context, span, f"static_cast<decltype({code})>({code} + 1)")

    def atCXXBoolLiteralExpr(self, node, context):
        span = self.span(node)
        if span:
            self.choice("constant", context, span,
                        "false" if self.code(span) == "true" else "true")

    def atStringLiteral(self, node, context):
        span = self.span(node)
        if span is None or context.wordless:
            return
        code = self.code(span)
        if code == '""':
            self.choice("text", context, span, '"x"')
        elif '"' in code:
            # Without its last character, which is harder to notice than no text at all; but that may be
            # written as several.
            shorter = re.search(r'[^"\\][^"\\]"$', code) and not code.startswith("R") and "\\x" not in code
            self.choice("text", context, span, code[:-2] + '"' if shorter else '""')

    def atUserDefinedLiteral(self, node, context):
        span = self.span(node)
        if span and not context.wordless:
            found = re.fullmatch(r'"[^"]+"(\w+)', self.code(span))
            if found:
                self.choice("text", context, span, f'""{found[1]}')

    def atDeclRefExpr(self, node, context):
        named = node.get("referencedDecl", {})
        span = self.span(node)
        if span and named.get("kind") == "EnumConstantDecl" and named["id"] in self.others:
            code = self.code(span)
            if code.endswith(named["name"]):
                self.choice("constant", context, span,
                            code[:len(code) - len(named["name"])] + self.others[named["id"]])
        return context

    # Statements.

    def atCompoundStmt(self, node, context):
        children = node.get("inner", ())
        for index, child in enumerate(children):
            bare = self.bare(child)
            kind, span = bare.get("kind"), self.span(child)
            name = self.called(bare)
            ends = kind == "CXXThrowExpr" and index + 1 == len(children)
            steps = kind == "UnaryOperator" and bare.get("opcode") in ("++", "--")
            assigns = kind == "BinaryOperator" and bare.get("opcode") == "="
            room = name in WITHOUT_EFFECT or (self.source.path.stem, name) in ONLY_FOR_ROOM
            if (kind in REMOVABLE and not ends and not room) or steps or assigns:
                self.add("removed", context, span, "", [Insertion(*span, "if (!@) ")] if span else [])
        return context

    def atReturnStmt(self, node, context):
        inner = node.get("inner", ())
        span = self.span(node)
        if not inner or span is None or context.returns_reference:
            return context
        value = self.bare(inner[0])
        plain = value["kind"] in LITERALS or (value["kind"] == "InitListExpr" and not value.get("inner"))
        if not plain and "nullopt" not in self.code(span)[:24] and "{}" != self.code(span)[7:]:
            deduced = context.deduced and value["kind"] != "InitListExpr"
            empty = f"std::remove_cvref_t<decltype({on_one_line(self.code(span)[6:])})>{{}}"
            self.add("result", context, span, "return {}",
                     [Insertion(*span, f"if (@) return {empty if deduced else '{}'}; else ")])
        return context

    # Calls.

    def called(self, node):
        callee = self.bare(node["inner"][0]) if node.get("inner") else {}
        return callee.get("referencedDecl", {}).get("name") or callee.get("name", "").lstrip("->.")

    def at_call(self, node, context):
        name = self.called(node)
        if name in WITHOUT_EFFECT or (self.source.path.stem, name) in ONLY_FOR_ROOM:
            return None
        if name in WITHOUT_WORDS:
            context = dataclasses.replace(context, wordless=True)
        if name not in ("move", "forward") and not context.wordless:
            self.arguments(node["inner"][1:], node, context, name not in SYMMETRIC)
        return context

    def atCXXCtorInitializer(self, node, context):
        for child in node.get("inner", ()):
            bare = self.bare(child)
            span = self.span(bare)
            # What a person wrote stands in parentheses or braces.
            written = span and self.text[:span[0]].rstrip()[-1:] in ("(", "{")
            if written and bare.get("kind") not in CONSTRUCTIONS:
                self.arguments([child], node, context)
        return context

    def arguments(self, given, node, context, ordered=True):
        parts = []
        for each in given:
            bare = self.bare(each) if each.get("kind") else {}
            span = self.span(bare)
            usable = span and self.code(span)[0] not in "{}" and span != self.span(node) and bare["kind"] not in (
                "CXXDefaultArgExpr", "InitListExpr", "LambdaExpr", "PackExpansionExpr",
                "CXXStdInitializerListExpr", "ImplicitValueInitExpr")
            parts.append((bare, span, self.type_of(each)) if usable else None)
        for part in parts:
            if part:
                self.dropped(*part, context)
        is_table = node["kind"] == "InitListExpr" and "[" in self.type_of(node)
        for left, right in zip(parts, parts[1:]):
            if left and right and ordered and not is_table:
                self.swapped(left, right, context)

    def dropped(self, bare, span, _, context):
        """An argument that does not arrive: an empty value of its type takes its place."""
        kind = bare["kind"]
        named = bare.get("referencedDecl", {}).get("kind", "")
        # What is worked out on the spot is changed where it is worked out.
        if kind in LITERALS or bare.get("valueCategory") == "prvalue" or (
                named in ("EnumConstantDecl", "FunctionDecl", "CXXMethodDecl")):
            return
        # Iterators, and what is an empty value already.
        if NEVER_EMPTY.search(self.type_of(bare)) or re.search(
                r"\b(begin|end)\(\)$|\{\}$|::zero$", self.code(span)):
            return
        code = on_one_line(self.code(span))
        if code in ("*this", "this"):
            return
        empty = "emptyLike" if bare.get("valueCategory") == "lvalue" else "emptyOf"
        argument = f"({code})" if empty == "emptyLike" else f"<decltype({code})>()"
        value = f"browsersweep::mutation::{empty}{argument}"
        self.add("argument", context, span, "(empty)", [Insertion(*span, f"(@ ? {value} : ", ")")])

    def swapped(self, left, right, context):
        (one_node, first, type_of_first), (other_node, second, type_of_second) = left, right
        one, other = on_one_line(self.code(first)), on_one_line(self.code(second))
        if type_of_first != type_of_second or "dependent" in type_of_first or one == other:
            return
        # A choice between two types would be of a third one, for the original too.
        if NEVER_EMPTY.search(type_of_first) or self.type_of(one_node) != self.type_of(other_node):
            return
        self.add("swapped", context, (first[0], second[1]), f"{other}, {one}",
                 [Insertion(*first, f"(@ ? ({other}) : ", ")"),
                  Insertion(*second, f"(@ ? ({one}) : ", ")")])

    @staticmethod
    def type_of(node):
        given = node.get("type", {})
        name = given.get("desugaredQualType") or given.get("qualType", "")
        return re.sub(r"^const | ?(const)? ?&{0,2}$", "", name)


def points_of(path, root, options):
    """The mutants of a file, in its order."""
    source = syntax.Source(path)
    return Finder(source, syntax.trees(source, root, options)).mutants()
