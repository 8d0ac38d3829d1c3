"""Finds the places of a source that can be mutated, with libclang."""

import bisect
import ctypes
import re

from clang import cindex
from clang.cindex import CursorKind, TypeKind

import operators
from mutation import Mutation, short
from source_text import OPAQUE, STRING, SourceText

FUNCTIONS = {
    CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR,
    CursorKind.DESTRUCTOR, CursorKind.CONVERSION_FUNCTION, CursorKind.FUNCTION_TEMPLATE,
}
SCOPES = {
    CursorKind.NAMESPACE, CursorKind.CLASS_DECL, CursorKind.STRUCT_DECL, CursorKind.CLASS_TEMPLATE,
    CursorKind.LINKAGE_SPEC, CursorKind.UNEXPOSED_DECL,
}
NUMBERS = {
    TypeKind.CHAR_U, TypeKind.UCHAR, TypeKind.USHORT, TypeKind.UINT, TypeKind.ULONG,
    TypeKind.ULONGLONG, TypeKind.CHAR_S, TypeKind.SCHAR, TypeKind.SHORT, TypeKind.INT,
    TypeKind.LONG, TypeKind.LONGLONG, TypeKind.FLOAT, TypeKind.DOUBLE,
}
INTEGERS = NUMBERS - {TypeKind.FLOAT, TypeKind.DOUBLE}
JUMPS = {CursorKind.RETURN_STMT, CursorKind.BREAK_STMT, CursorKind.CONTINUE_STMT}
LOOPS = {CursorKind.FOR_STMT, CursorKind.WHILE_STMT, CursorKind.DO_STMT,
         CursorKind.CXX_FOR_RANGE_STMT}
LABELS = {CursorKind.CASE_STMT, CursorKind.DEFAULT_STMT, CursorKind.LABEL_STMT}
LOG_MACRO = re.compile(r"LOG4CPLUS_(TRACE|DEBUG|INFO|WARN|ERROR|FATAL)$")
TRACE_MACRO = re.compile(r"[A-Z_]*TRACE$")
# Statements without an effect at run time.
SILENT_MACROS = {"Q_UNUSED", "Q_FALLTHROUGH", "Q_UNREACHABLE", "Q_ASSERT"}


def mutations_of(path, name, arguments, unsaved):
    """The mutations of the file at path; name is what the project calls it.

    unsaved has the contents of all files that may be mutated, whatever is on the disk.
    """
    is_header = path.endswith(".h")
    options = cindex.TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD
    index = cindex.Index.create()
    flags = arguments + (["-x", "c++-header"] if is_header else [])
    unit = index.parse(path, flags, unsaved_files=list(unsaved.items()), options=options)
    errors = [str(item) for item in unit.diagnostics if item.severity >= cindex.Diagnostic.Error]
    if errors:
        raise ValueError(f"{name} cannot be parsed: {errors[0]}")
    return Finder(name, path, SourceText(unsaved[path].encode())).find(unit)


class Finder:
    def __init__(self, name, path, source):
        self.name = name
        self.path = path
        self.source = source
        self.found = {}
        self.function = ""
        # Of the function that is being read.
        self.is_void = False
        self.last_statement = 0
        # Of the statement: a break and a continue may stand for each other in loops only.
        self.in_loop = False
        self.in_switch = False
        self.lambdas = 0

    def find(self, unit):
        cursors = in_main_file(unit)
        self.macros = sorted(
            (cursor.extent.start.offset, cursor.extent.end.offset, cursor.spelling)
            for cursor in cursors if cursor.kind == CursorKind.MACRO_INSTANTIATION)
        for cursor in cursors:
            self.declaration(cursor)
        return sorted(self.found.values(), key=lambda item: (item.start, -item.end))

    # What is remembered.

    def add(self, kind, how, start, end, after, target=0, before=None):
        key = (how, start, end, after, target)
        if key in self.found:
            return
        before = before or self.source.on_one_line(start, end)
        if before is None or after is None:
            return
        self.found[key] = Mutation(
            file=self.name, function=self.function, kind=kind, how=how, start=start, end=end,
            line=self.source.line(start), before=short(before), after=after, target=target)

    def expression(self, kind, cursor, after):
        self.add(kind, "expression", cursor.extent.start.offset, cursor.extent.end.offset, after)

    def code(self, cursor):
        return self.source.on_one_line(cursor.extent.start.offset, cursor.extent.end.offset) or ""

    def macro_at(self, offset):
        """The macro that the code at offset belongs to: (start, end, name)."""
        place = bisect.bisect_right(self.macros, (offset, 1 << 60, "")) - 1
        # Macros in a macro's arguments come after it, so look back to the outermost one.
        best = None
        while place >= 0 and self.macros[place][0] > offset - 4000:
            if self.macros[place][0] <= offset < self.macros[place][1]:
                best = self.macros[place]
            place -= 1
        return best

    # Declarations.

    def declaration(self, cursor):
        # What Qt's macros declare is not in this file.
        if self.macro_at(cursor.extent.start.offset):
            return
        if cursor.kind in FUNCTIONS:
            self.function_definition(cursor)
        elif cursor.kind in SCOPES:
            for child in cursor.get_children():
                self.declaration(child)
        elif cursor.kind in (CursorKind.VAR_DECL, CursorKind.FIELD_DECL):
            self.function = qualified(cursor)
            self.variable(cursor)

    def function_definition(self, cursor):
        outer, self.function = self.function, qualified(cursor)
        words = self.source.text(cursor.extent.start.offset, self.name_end(cursor)).split()
        for child in cursor.get_children():
            if child.kind == CursorKind.PARM_DECL:
                self.variable(child)
            elif child.kind == CursorKind.COMPOUND_STMT and "constexpr" not in words:
                self.is_void = cursor.result_type.kind == TypeKind.VOID
                self.last_statement = last_offset(child)
                self.compound(child)
            elif child.kind.is_expression() and "constexpr" not in words:
                self.visit(child)
        self.function = outer

    def name_end(self, cursor):
        return max(cursor.location.offset, cursor.extent.start.offset)

    def variable(self, cursor):
        if cursor.is_bitfield():
            return
        words = self.source.text(cursor.extent.start.offset, self.name_end(cursor)).split()
        if "constexpr" in words:
            return
        begin = cursor.location.offset
        if cursor.type.kind == TypeKind.CONSTANTARRAY:
            # The size comes before the initialiser and has to be a constant.
            equals = self.source.data.find(b"=", begin, cursor.extent.end.offset)
            if equals < 0:
                return
            begin = equals
        for child in cursor.get_children():
            if child.kind.is_expression() and child.extent.start.offset >= begin:
                self.visit(child)

    # Statements.

    def compound(self, cursor):
        children = list(cursor.get_children())
        for child in children:
            self.statement(child)
        self.delays(children)

    def statement_end(self, cursor):
        if cursor.kind == CursorKind.COMPOUND_STMT or cursor.kind == CursorKind.SWITCH_STMT:
            return cursor.extent.end.offset
        if cursor.kind in (CursorKind.IF_STMT, CursorKind.FOR_STMT, CursorKind.WHILE_STMT,
                           CursorKind.CXX_FOR_RANGE_STMT, *LABELS):
            return self.statement_end(list(cursor.get_children())[-1])
        return self.source.after_semicolon(cursor.extent.end.offset)

    def statement(self, cursor):
        kind = cursor.kind
        if kind == CursorKind.COMPOUND_STMT:
            self.compound(cursor)
        elif kind == CursorKind.DECL_STMT:
            for child in cursor.get_children():
                if child.kind == CursorKind.VAR_DECL:
                    self.variable(child)
        elif self.macro_statement(cursor):
            pass
        elif kind == CursorKind.IF_STMT:
            self.branch(cursor)
        elif kind in LOOPS:
            self.loop(cursor)
        elif kind == CursorKind.SWITCH_STMT:
            outer, self.in_switch = self.in_switch, True
            children = list(cursor.get_children())
            for child in children[:-1]:
                self.visit(child)
            self.statement(children[-1])
            self.in_switch = outer
        elif kind in LABELS:
            self.statement(list(cursor.get_children())[-1])
        elif kind == CursorKind.RETURN_STMT:
            self.returns(cursor)
        elif kind in (CursorKind.BREAK_STMT, CursorKind.CONTINUE_STMT):
            self.jump(cursor)
        elif kind.is_expression():
            self.remove("statement removed", cursor)
            self.visit(cursor)

    def remove(self, kind, cursor):
        start = cursor.extent.start.offset
        if self.source.text(start, start + 6) == "(void)":
            return
        self.add(kind, "remove", start, self.statement_end(cursor), "")

    def macro_statement(self, cursor):
        """Handles a statement that is a macro as a whole; whether it is one."""
        macro = self.macro_at(cursor.extent.start.offset)
        if not macro or macro[0] != cursor.extent.start.offset:
            return False
        start, end, name = macro
        log = LOG_MACRO.match(name)
        if not log and not TRACE_MACRO.match(name):
            # A call whose function is a macro is code like any other.
            return cursor.extent.end.offset <= end
        arguments = self.source.on_one_line(start, end)
        whole = self.source.after_semicolon(end)
        self.add("log line removed", "remove", start, whole, "", before=arguments)
        if log and arguments:
            for level in operators.neighbouring_levels(log.group(1)):
                other = f"LOG4CPLUS_{level}" + arguments[len(name):]
                self.add("log level", "statement", start, whole, other + ";", before=arguments)
        self.strings_within(start, end)
        return True

    def strings_within(self, start, end):
        """Strings in the arguments of a macro, which the compiler does not tell about."""
        for match in OPAQUE.finditer(self.source.data, start, end):
            if not STRING.fullmatch(match.group()):
                continue
            before = self.source.data[start:match.start()].rstrip()
            after = self.source.data[match.end():end].lstrip()
            joined = before.endswith((b'"', b"QStringLiteral(", b"extern", b"TEXT("))
            if not joined and not after.startswith(b'"'):
                text = match.group().decode()
                self.add("string", "inline", match.start(), match.end(), operators.string(text))

    def branch(self, cursor):
        children = list(cursor.get_children())
        opening = self.source.data.find(b"(", cursor.extent.start.offset)
        head = self.source.text(cursor.extent.start.offset, opening)
        closing = self.source.closing(opening)
        within = [child for child in children if child.extent.start.offset < closing]
        declares = any(child.kind in (CursorKind.VAR_DECL, CursorKind.DECL_STMT)
                       for child in within)
        if "constexpr" not in head:
            for child in within:
                if child.kind == CursorKind.VAR_DECL:
                    self.variable(child)
                elif child.kind == CursorKind.DECL_STMT:
                    self.statement(child)
            condition = within[-1]
            if condition.kind.is_expression():
                # What is declared as the condition is not an expression of its own.
                if not declares or b";" in self.source.data[opening:closing]:
                    self.condition(condition)
                    self.visit(condition)
        for child in children[len(within):]:
            self.statement(child)

    def condition(self, cursor):
        for value in ("true", "false"):
            self.expression("condition", cursor, value)

    def loop(self, cursor):
        outer, self.in_loop = self.in_loop, True
        children = list(cursor.get_children())
        body = children[-1]
        if cursor.kind == CursorKind.FOR_STMT:
            self.for_head(cursor, children[:-1])
        elif cursor.kind == CursorKind.WHILE_STMT:
            condition = children[-2]
            if len(children) == 2 and condition.kind.is_expression():
                self.expression("condition", condition, "false")
            self.visit(condition)
        elif cursor.kind == CursorKind.DO_STMT:
            body = children[0]
            self.visit(children[-1])
        else:
            for child in children[:-1]:
                if child.kind.is_expression():
                    self.visit(child)
        self.statement(body)
        self.in_loop = outer

    def for_head(self, cursor, children):
        opening = self.source.data.find(b"(", cursor.extent.start.offset)
        first = self.semicolon(opening + 1)
        second = self.semicolon(first + 1)
        for child in children:
            start = child.extent.start.offset
            if start < first:
                if child.kind == CursorKind.DECL_STMT:
                    self.statement(child)
            elif start < second and child.kind.is_expression():
                self.expression("condition", child, "false")
                self.visit(child)

    def semicolon(self, offset):
        depth = 0
        while depth > 0 or self.source.data[offset:offset + 1] != b";":
            character = self.source.data[offset:offset + 1]
            depth += (character in b"([{") - (character in b")]}")
            offset += 1
        return offset

    def returns(self, cursor):
        start, end = cursor.extent.start.offset, self.statement_end(cursor)
        is_last = start >= self.last_statement
        if self.lambdas == 0 and not is_last and (
                self.is_void or self.last_is_return(start)):
            self.add("return removed", "remove", start, end, "")
        for child in cursor.get_children():
            kind = child.type.get_canonical().kind
            if kind == TypeKind.BOOL:
                self.expression("value returned", child, f"!({self.code(child)})")
            elif kind in INTEGERS:
                self.expression("value returned", child, f"{self.code(child)} + 1")
            elif kind == TypeKind.POINTER:
                self.expression("value returned", child, "nullptr")
            elif self.lambdas == 0 and self.code(child) != "{}":
                self.add("value returned", "statement", start, end, "return {};")
            self.visit(child)

    def last_is_return(self, start):
        return self.source.data[self.last_statement:self.last_statement + 6] == b"return"

    def jump(self, cursor):
        start, end = cursor.extent.start.offset, self.statement_end(cursor)
        self.add("jump removed", "remove", start, end, "")
        if self.in_loop and not self.in_switch:
            is_break = cursor.kind == CursorKind.BREAK_STMT
            self.add("jump exchanged", "statement", start, end,
                     "continue;" if is_break else "break;")

    def delays(self, children):
        """Statements exchanged with the next one, in spite of declarations between them."""
        for place, child in enumerate(children):
            if not self.can_move(child):
                continue
            following = next((other for other in children[place + 1:]
                              if other.kind != CursorKind.DECL_STMT), None)
            if following is None or not self.can_move(following):
                continue
            if not (self.calls(child) or self.calls(following)):
                continue
            start, end = child.extent.start.offset, self.statement_end(child)
            target = self.statement_end(following)
            shown = short(self.source.on_one_line(following.extent.start.offset, target) or "")
            self.add("order", "delay", start, end, shown, target)

    def can_move(self, cursor):
        if cursor.kind in JUMPS or cursor.kind in LABELS or cursor.kind == CursorKind.DECL_STMT:
            return False
        macro = self.macro_at(cursor.extent.start.offset)
        return not (macro and macro[2] in SILENT_MACROS)

    def calls(self, cursor):
        code = self.code(cursor)
        return "(" in code.split("=", 1)[-1] or code.startswith("delete ")

    # Expressions.

    def visit(self, cursor):
        macro = self.macro_at(cursor.extent.start.offset)
        if macro and macro[0] == cursor.extent.start.offset \
                and cursor.extent.end.offset <= macro[1]:
            self.macro_expression(cursor, macro)
            return
        if macro and macro[0] < cursor.extent.start.offset:
            return
        handler = HANDLERS.get(cursor.kind)
        if handler:
            handler(self, cursor)
        for child in cursor.get_children():
            if child.kind == CursorKind.COMPOUND_STMT:
                self.lambda_body(child)
            elif child.kind == CursorKind.PARM_DECL:
                pass
            elif child.kind.is_expression():
                self.visit(child)

    def lambda_body(self, body):
        outer = self.in_loop, self.in_switch, self.last_statement
        self.in_loop = self.in_switch = False
        self.lambdas += 1
        self.compound(body)
        self.lambdas -= 1
        self.in_loop, self.in_switch, self.last_statement = outer

    def macro_expression(self, cursor, macro):
        start, end, name = macro
        if name == "QStringLiteral":
            text = self.source.on_one_line(start, end)
            if text and text.count('"') == 2:
                self.add("string", "expression", start, end, operators.string(text))
        elif end - start == len(name) and not name.startswith("__") and self.is_integer(cursor):
            self.add("constant", "expression", start, end, f"{name} + 1")

    def is_integer(self, cursor):
        return cursor.type.get_canonical().kind in INTEGERS

    def boolean(self, cursor):
        self.expression("constant", cursor, "false" if self.code(cursor) == "true" else "true")

    def integer(self, cursor):
        for other in operators.integer(self.code(cursor)):
            self.expression("constant", cursor, other)

    def string(self, cursor):
        text = self.code(cursor)
        if text.startswith('"'):
            self.expression("string", cursor, operators.string(text))

    def character(self, cursor):
        text = self.code(cursor)
        if text.startswith("'"):
            self.expression("constant", cursor, f"static_cast<char>({text} + 1)")

    def reference(self, cursor):
        target = cursor.referenced
        if target is None:
            return
        text = self.code(cursor)
        if target.kind == CursorKind.ENUM_CONSTANT_DECL:
            names = [item.spelling for item in target.semantic_parent.get_children()
                     if item.kind == CursorKind.ENUM_CONSTANT_DECL]
            other = names[(names.index(target.spelling) + 1) % len(names)]
            if len(names) > 1 and text.endswith(target.spelling):
                self.expression("enumerator", cursor, text[:-len(target.spelling)] + other)
        elif target.kind == CursorKind.VAR_DECL and target.type.is_const_qualified():
            level = re.fullmatch(r"(.*?)([A-Z]+)_LOG_LEVEL", text)
            if level and level.group(2) in operators.LOG_LEVELS:
                for other in operators.neighbouring_levels(level.group(2)):
                    self.expression("log level", cursor, f"{level.group(1)}{other}_LOG_LEVEL")
            elif self.is_integer(cursor) and is_global(target):
                self.expression("constant", cursor, f"{text} + 1")
                self.expression("constant", cursor, f"{text} - 1")

    def unary(self, cursor):
        child = next(cursor.get_children(), None)
        if child is None:
            return
        text, operand = self.code(cursor), self.code(child)
        if text.startswith("!"):
            self.expression("negation", cursor, f"static_cast<bool>({operand})")
        elif text.startswith("-") and not text.startswith("--"):
            self.expression("negation", cursor, operand)
        elif text[:2] in ("++", "--"):
            self.expression("step", cursor, ("--" if text[:2] == "++" else "++") + operand)
        elif text[-2:] in ("++", "--"):
            self.expression("step", cursor, operand + ("--" if text[-2:] == "++" else "++"))

    def binary(self, cursor):
        operands = list(cursor.get_children())
        if len(operands) == 2:
            self.binary_of(cursor, operands[0], operands[1])

    def binary_of(self, cursor, left, right):
        between = self.source.on_one_line(left.extent.end.offset, right.extent.start.offset)
        operator = (between or "").strip()
        numbers = all(item.type.get_canonical().kind in NUMBERS for item in (left, right))
        for kind, code in operators.binary(operator, self.code(left), self.code(right), numbers):
            self.expression(kind, cursor, code)
        for other in operators.ASSIGNMENTS.get(operator, []):
            self.expression("arithmetic", cursor,
                            f"{self.code(left)} {other} {self.code(right)}")

    def ternary(self, cursor):
        children = list(cursor.get_children())
        if len(children) == 3:
            self.condition(children[0])

    def call(self, cursor):
        name = cursor.spelling
        children = list(cursor.get_children())
        if name.startswith("operator"):
            # The operator itself is a child, between or after its operands.
            operands = [child for child in children if child.spelling != name]
            if len(operands) == 2 and name != "operator<<" and name != "operator[]":
                self.binary_of(cursor, operands[0], operands[1])
            return
        if name in operators.COUNTERPARTS and children:
            self.counterpart(cursor, name)
        arguments = [item for item in cursor.get_arguments() if item is not None]
        for first, second in zip(arguments, arguments[1:]):
            self.swapped(cursor, first, second)

    def counterpart(self, cursor, name):
        start = cursor.extent.start.offset
        arguments = [item for item in cursor.get_arguments() if item is not None]
        end = arguments[0].extent.start.offset if arguments else cursor.extent.end.offset
        matches = list(re.finditer(rb"\b" + name.encode() + rb"(?=\s*[(<])",
                                   self.source.data[start:end]))
        if matches:
            place = start + matches[-1].start()
            head = self.source.on_one_line(start, place)
            tail = self.source.on_one_line(place + len(name), cursor.extent.end.offset)
            if head is not None and tail is not None:
                self.expression("counterpart", cursor, head + operators.COUNTERPARTS[name] + tail)

    def swapped(self, cursor, first, second):
        types = [item.type.get_canonical() for item in (first, second)]
        if types[0].spelling.replace("const ", "") != types[1].spelling.replace("const ", ""):
            return
        places = [(item.extent.start.offset, item.extent.end.offset) for item in (first, second)]
        start, end = cursor.extent.start.offset, cursor.extent.end.offset
        if not start <= places[0][0] < places[0][1] <= places[1][0] < places[1][1] <= end:
            return
        texts = [self.code(first), self.code(second)]
        if texts[0] == texts[1]:
            return
        pieces = [self.source.on_one_line(start, places[0][0]), texts[1],
                  self.source.on_one_line(places[0][1], places[1][0]), texts[0],
                  self.source.on_one_line(places[1][1], end)]
        if None not in pieces:
            self.expression("arguments swapped", cursor, "".join(pieces))


HANDLERS = {
    CursorKind.CXX_BOOL_LITERAL_EXPR: Finder.boolean,
    CursorKind.INTEGER_LITERAL: Finder.integer,
    CursorKind.STRING_LITERAL: Finder.string,
    CursorKind.CHARACTER_LITERAL: Finder.character,
    CursorKind.DECL_REF_EXPR: Finder.reference,
    CursorKind.MEMBER_REF_EXPR: Finder.reference,
    CursorKind.UNARY_OPERATOR: Finder.unary,
    CursorKind.BINARY_OPERATOR: Finder.binary,
    CursorKind.COMPOUND_ASSIGNMENT_OPERATOR: Finder.binary,
    CursorKind.CONDITIONAL_OPERATOR: Finder.ternary,
    CursorKind.CALL_EXPR: Finder.call,
}


def in_main_file(unit):
    """What is declared in the file itself: far less than with all that it includes."""
    library = cindex.conf.lib
    library.clang_Location_isFromMainFile.argtypes = [cindex.SourceLocation]
    library.clang_Location_isFromMainFile.restype = ctypes.c_int
    found = []

    def visit(cursor, parent, data):
        if library.clang_Location_isFromMainFile(library.clang_getCursorLocation(cursor)):
            cursor._tu = unit
            found.append(cursor)
        return 1  # CXChildVisit_Continue

    library.clang_visitChildren(unit.cursor, cindex.callbacks["cursor_visit"](visit), found)
    return found


def qualified(cursor):
    """Scope and name of a function or variable, without parameters."""
    parts = [cursor.spelling]
    parent = cursor.semantic_parent
    while parent is not None and parent.kind != CursorKind.TRANSLATION_UNIT:
        if parent.spelling and parent.kind != CursorKind.LINKAGE_SPEC:
            parts.insert(0, parent.spelling)
        parent = parent.semantic_parent
    return "::".join(parts)


def last_offset(compound):
    """Where the last statement of a function's body starts."""
    children = list(compound.get_children())
    return children[-1].extent.start.offset if children else compound.extent.end.offset


def is_global(cursor):
    return cursor.semantic_parent.kind in (CursorKind.NAMESPACE, CursorKind.TRANSLATION_UNIT)
