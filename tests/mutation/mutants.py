"""The mutants of a C++ source: copies of it with one small change each.

The same source always has the same mutants, in the same order. Two mutants with one key
(file, text of the line, operator, old, new) differ by a number, so that the keys of
tests/mutation/survivors.txt hold when lines are added elsewhere in the file.

Compiling and linking each copy takes most of the time, so there is also a copy with many mutants
at once: Source.together. The data of a program that contains it say which of them runs.
"""

import re
import struct
from dataclasses import dataclass

TOKEN = re.compile(r"""
    (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<pp>^[ \t]*\#(?:[^\n\\]|\\.|\\\n)*)
  | (?P<raw>R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)")
  | (?P<str>"(?:[^"\\\n]|\\.)*")
  | (?P<char>'(?:[^'\\\n]|\\.)+')
  | (?P<num>(?:0[xX][0-9a-fA-F']+|(?:\d[\d']*\.?\d*|\.\d+)(?:[eE][-+]?\d+)?)[uUlLfF]*)
  | (?P<id>[A-Za-z_]\w*)
  | (?P<op>\.\.\.|<<=|>>=|->|::|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|\S)
  | (?P<ws>\s+)
""", re.X | re.S | re.M)

RELATIONAL = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
NEGATED = {"<": ">=", "<=": ">", ">": "<=", ">=": "<"}
ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "+=": "-=", "-=": "+="}
STEPS = {"++": "--", "--": "++"}
LOGICAL = {"&&": "||", "||": "&&"}
# Enumerators and constants that stand for each other.
NAMES = {"kV1": "kV2", "kV2": "kV1", "kOn": "kOff", "kOff": "kOn", "kTimes": "kMemory",
         "kMemory": "kTimes", "Success": "Failure", "NoDevices": "Failure",
         "DeviceQueryFailed": "Failure", "hipSuccess": "hipErrorUnknown"}
OPEN, CLOSE = "([{", ")]}"
COMPARISONS = {"==", "!=", "<", ">", "<=", ">=", "&&", "||", "=", ";"}
DECLARATORS = ("const", "constexpr", "static", "auto", "struct", "thread_local", "alignas", "using",
               "}")
# Values of `return` that have a mutant of their own or that no other value could replace.
PLAIN_VALUES = ("{}", "*this", "std::nullopt", "true", "false", "nullptr", "0")
NUMERIC = re.compile(r"^(static |constexpr |inline )*(std::u?int\d+_t|std::size_t|int|long long|"
                     r"double|float|std::uintptr_t) ")
# Of the rows of a table, one in this many has mutants. So many lines of one shape are a table.
TABLE_STEP = 12
# The data of a copy with many mutants: a mark to find them by, and the number of the one that runs.
# They are not constant for the compiler, and no code has to run before they are right.
MARK = b"kestrel mutants\0"
DATA = 'static struct { char mark[16]; volatile int number; } kestrel_mutants = {"%s", 0};\n' % (
    MARK[:-1].decode())


class Token:
    def __init__(self, kind, text, start):
        self.kind, self.text, self.start, self.end = kind, text, start, start + len(text)


@dataclass
class Mutant:
    file: str
    line: int
    line_text: str
    operator: str
    start: int
    end: int
    old: str
    new: str
    number: int = 1  # among the mutants of the file with the same key

    def change(self):
        """The operator, the old and the new text on one line."""
        old, new = (" ".join(text.split()) or "(removed)" for text in (self.old, self.new))
        number = "" if self.number == 1 else " #%d" % self.number
        return "%s%s: %s -> %s" % (self.operator, number, old, new)

    def key(self):
        return self.file, self.line_text, self.change()

    def applied(self, source):
        return source[:self.start] + self.new + source[self.end:]


def with_number(program, number):
    """The bytes of a program in which that mutant runs; with 0 it is the original that runs."""
    return re.sub(re.escape(MARK) + b"....", lambda _: MARK + struct.pack("<i", number), program,
                  flags=re.S)


def tokenize(source):
    tokens, at = [], 0
    while at < len(source):
        match = TOKEN.match(source, at)
        kind = match.lastgroup if match.lastgroup != "mark" else "raw"
        if kind not in ("comment", "pp", "ws"):
            tokens.append(Token(kind, match.group(), at))
        at = match.end()
    return tokens


def pair_brackets(tokens):
    pairs, stack = {}, []
    for i, token in enumerate(tokens):
        if token.kind == "op" and token.text in OPEN:
            stack.append(i)
        elif token.kind == "op" and token.text in CLOSE:
            opening = stack.pop()
            pairs[opening], pairs[i] = i, opening
    return pairs


def successors(text):
    """The integers next to that literal, in its form."""
    digits = text.replace("'", "")
    suffix = re.search(r"[uUlL]*$", digits).group()
    number = digits[:len(digits) - len(suffix)]
    value = int(number, 8) if re.fullmatch(r"0\d+", number) else int(number, 0)
    form = "0x%X" if number.lower().startswith("0x") else "%d"
    return [form % near + suffix for near in (value + 1, value - 1) if near >= 0]


class Source:
    """A source file, and `mutants` of it."""

    def __init__(self, path, source):
        self.path, self.source = path, source
        self.tokens = tokenize(source)
        self.pairs = pair_brackets(self.tokens)
        self.line_starts = [0] + [m.end() for m in re.finditer("\n", source)]
        self.mutants, self.seen, self.kinds = [], set(), {}
        for i, token in enumerate(self.tokens):
            if token.text == "{" and token.kind == "op":
                self.kinds[i] = self.block_kind(i)
        self.generate()
        self.number()

    # Where a token stands.

    def line(self, offset):
        low, high = 0, len(self.line_starts)
        while high - low > 1:
            middle = (low + high) // 2
            low, high = (middle, high) if self.line_starts[middle] <= offset else (low, middle)
        return low + 1

    def text(self, i):
        return self.tokens[i].text if 0 <= i < len(self.tokens) else ""

    def spaced(self, i):
        token = self.tokens[i]
        return self.source[token.start - 1].isspace() and self.source[token.end].isspace()

    def block_kind(self, i):
        """What the brace i opens: 'space', 'type', 'function', 'control' or 'init'."""
        before = self.text(i - 1)
        first = self.statement_start(i)
        head = self.text(first) if first < i else ""
        if head in ("namespace", "extern"):
            return "space"
        if head in ("struct", "class", "enum") and before != ")":
            return "type"
        if before in ("else", "do", "try"):
            return "control"
        if before == ")":
            word = self.text(self.pairs[i - 1] - 1)
            return "control" if word in ("if", "for", "while", "switch", "catch") else "function"
        if before in ("noexcept", "const", "override", "mutable", "]"):
            return "function"
        return "control" if before in ("{", "}", ";", ":") and not head else "init"

    def statement_start(self, i):
        """The index of the first token of the statement that token i belongs to."""
        j = i - 1
        while j >= 0:
            token = self.tokens[j]
            if token.kind == "op" and token.text in CLOSE:
                if token.text == "}" and self.kinds.get(self.pairs[j], "init") != "init":
                    break
                j = self.pairs[j] - 1
                continue
            if token.kind == "op" and token.text in ("{", "(", "[", ";"):
                break
            j -= 1
        return j + 1

    def enclosing_blocks(self, i):
        """Indices of the braces around token i, innermost first."""
        return [o for o in sorted(self.kinds, reverse=True) if o < i < self.pairs[o]]

    def in_code(self, i):
        return any(self.kinds[o] in ("function", "control") for o in self.enclosing_blocks(i))

    def function_head(self, i):
        for brace in self.enclosing_blocks(i):
            if self.kinds[brace] == "function":
                start = self.tokens[self.statement_start(brace)].start
                return re.sub(r"\s+", " ", self.source[start:self.tokens[brace].start])
        return ""

    def operand(self, i, step, stops):
        """Where the operand of operator i in that direction starts and ends: up to what binds less."""
        j = i + step
        last = i
        entering, leaving = (CLOSE, OPEN) if step < 0 else (OPEN, CLOSE)
        while 0 <= j < len(self.tokens):
            text, kind = self.tokens[j].text, self.tokens[j].kind
            if kind == "op" and text in entering:
                last, j = self.pairs[j], self.pairs[j] + step
                continue
            if (kind == "op" and (text in leaving or text in stops)) or text == "return":
                break
            last, j = j, j + step
        first, final = (last, i - 1) if step < 0 else (i + 1, last)
        return self.tokens[first].start, self.tokens[final].end

    def rows_of_tables(self):
        """For the lines of tables: 'kept' or 'thinned'."""
        shapes = {}
        for token in self.tokens:
            shapes.setdefault(self.line(token.start), []).append(
                token.kind if token.kind != "op" else token.text)
        rows, run = {}, []
        for line in range(1, len(self.line_starts) + 2):
            shape = shapes.get(line)
            if run and shape == shapes.get(run[-1]) and line == run[-1] + 1:
                run.append(line)
                continue
            if len(run) > TABLE_STEP:
                for n, member in enumerate(run):
                    rows[member] = "kept" if n % TABLE_STEP == 5 else "thinned"
            run = [line] if shape else []
        return rows

    def skipped_tokens(self):
        """Those of using-declarations, namespaces, static assertions, attributes, template heads."""
        skipped = set()
        for i, token in enumerate(self.tokens):
            if token.kind == "id" and token.text in ("using", "namespace", "static_assert", "template"):
                j = i
                ends = (">",) if token.text == "template" else ("{", ";")
                while self.text(j) not in ends:
                    skipped.add(j)
                    j += 1
                skipped.add(j)
            if token.text == "[" and self.text(i + 1) == "[":
                skipped.update(range(i, self.pairs[i] + 1))
        return skipped

    # Many mutants at once.

    def bodies(self):
        """Where the bodies of the functions start and end that may read a number at run time."""
        found = []
        for brace, kind in self.kinds.items():
            head = self.source[self.tokens[self.statement_start(brace)].start:self.tokens[brace].start]
            outside = {self.kinds[outer] for outer in self.enclosing_blocks(brace)}
            if kind == "function" and outside <= {"space", "type"} and "constexpr" not in head:
                found.append((self.tokens[brace].end, self.tokens[self.pairs[brace]].start))
        return found

    def together(self, mutants):
        """A copy with these {number: mutant}, of which the data of the program select one. A function
        has its body once for each of its mutants. The compiler takes "mutant7" for the file of the body
        with mutant 7. Returns the copy and the numbers in it; mutants outside of functions are not."""
        pieces, numbers, at = [DATA, '#line 1 "original"\n'], set(), 0
        for start, end in self.bodies():
            inside = {number: mutant for number, mutant in mutants.items()
                      if start <= mutant.start and mutant.end <= end}
            if not inside:
                continue
            pieces += [self.source[at:start], "\nswitch (kestrel_mutants.number) {\n"]
            for number, mutant in inside.items():
                body = self.source[start:mutant.start] + mutant.new + self.source[mutant.end:end]
                pieces.append('case %d: {\n#line 1 "mutant%d"\n%s\n} break;\n' % (number, number, body))
            pieces.append('default: {\n#line 1 "original"\n%s\n}\n}\n' % self.source[start:end])
            numbers.update(inside)
            at = end
        return "".join(pieces + [self.source[at:]]), numbers

    # Changes.

    def add(self, operator, start, end, replacement):
        key = (start, end, replacement)
        if self.source[start:end] == replacement or key in self.seen:
            return
        self.seen.add(key)
        line = self.line(start)
        text = self.source[self.line_starts[line - 1]:].split("\n", 1)[0]
        self.mutants.append(Mutant(self.path, line, " ".join(text.split()), operator, start, end,
                                   self.source[start:end], replacement))

    def generate(self):
        rows, skipped = self.rows_of_tables(), self.skipped_tokens()
        for i, token in enumerate(self.tokens):
            line = self.line(token.start)
            if i in skipped or rows.get(line) == "thinned":
                continue
            if rows.get(line) == "kept":
                self.mutate_row(i, line)
            elif token.kind in ("str", "char", "num"):
                self.mutate_literal(i)
            elif token.kind == "op":
                self.mutate_operator(i)
            elif token.kind == "id":
                self.mutate_word(i)
            if token.text == ";" and rows.get(line) != "kept":
                self.delete_statement(i)
        self.mutants.sort(key=lambda m: (m.start, m.end))

    def number(self):
        count = {}
        for mutant in self.mutants:
            key = mutant.key()
            count[key] = count.get(key, 0) + 1
            mutant.number = count[key]

    def mutate_row(self, i, line):
        start = self.line_starts[line - 1]
        if self.line(self.tokens[i - 1].start) != line:
            self.add("table row deleted", start, self.line_starts[line] - 1, "")
        if self.tokens[i].kind == "str":
            self.mutate_literal(i)

    def mutate_literal(self, i):
        token = self.tokens[i]
        if token.kind == "str" and self.text(i - 1) != "extern":
            new = '"X"' if token.text == '""' else '"X' + token.text[1:]
            self.add("string", token.start, token.end, new)
        elif token.kind == "char":
            self.add("character", token.start, token.end, "'X'")
        elif token.kind == "num" and re.search(r"[.eEfF]", token.text) and not token.text.lower().startswith("0x"):
            zero = float(token.text.rstrip("fFlL")) == 0
            new = "(1 + %s)" if zero else "(2 * %s)"
            self.add("constant", token.start, token.end, new % token.text)
        elif token.kind == "num":
            for new in successors(token.text):
                self.add("constant", token.start, token.end, new)

    def mutate_operator(self, i):
        token = self.tokens[i]
        text, start, end = token.text, token.start, token.end
        if text in STEPS:
            self.add("step", start, end, STEPS[text])
        elif text == "!":
            self.add("! removed", start, end, "")
        elif text == "-" and not self.source[end].isspace():
            self.add("sign removed", start, end, "")
        elif self.spaced(i):
            self.mutate_binary_operator(i, text, start, end)

    def mutate_binary_operator(self, i, text, start, end):
        if text in RELATIONAL:
            self.add("relational", start, end, RELATIONAL[text])
            self.add("relational", start, end, NEGATED.get(text, RELATIONAL[text]))
        elif text in ARITHMETIC:
            self.add("arithmetic", start, end, ARITHMETIC[text])
        elif text in LOGICAL:
            self.add("logical", start, end, LOGICAL[text])
            stops = {",", ";", "?", ":", "=", "||"} | ({"&&"} if text == "&&" else set())
            neutral = "true" if text == "&&" else "false"
            for step in (-1, 1):
                first, last = self.operand(i, step, stops)
                self.add("operand dropped", first, last, neutral)
        elif text == "?":
            first, last = self.operand(i, -1, {",", ";", "?", ":", "="})
            self.add("condition negated", first, last, "!(" + self.source[first:last] + ")")
        elif text == "&":
            self.add("bitwise", start, end, "|")
        elif text == "|":
            _, last = self.operand(i, 1, {",", ";", "?", ":"})
            self.add("operand dropped", start, last, "")

    def mutate_word(self, i):
        token = self.tokens[i]
        text, start, end = token.text, token.start, token.end
        before, after = self.text(i - 1), self.text(i + 1)
        if text in ("true", "false"):
            self.add("true/false", start, end, "false" if text == "true" else "true")
        elif text in ("min", "max") and before == "::" and after in ("(", "{", "<"):
            self.add("min/max", start, end, "max" if text == "min" else "min")
        elif text == "move" and before == "::" and after == "(":
            self.add("move dropped", self.tokens[i - 2].start, end, "")
        elif text == "thread_local":
            self.add("storage", start, end, "static")
        elif text == "static" and self.in_code(i):
            self.add("storage", start, end, "")
        elif text in NAMES and before in ("::", "return", "?", ":", "==", "!=", "=", "("):
            self.add("name", start, end, NAMES[text])
        elif text.startswith("hipError") and text != "hipErrorUnknown" and (
                before in ("return", "?", ":", ",") and after in (";", ":", "}")):
            self.add("name", start, end, "hipErrorUnknown")
        elif text in ("if", "while") and after == "(" and self.in_code(i):
            self.negate_condition(i)
        elif text == "return":
            self.mutate_return(i)

    def negate_condition(self, i):
        """Negates conditions that have no operator with mutants of its own."""
        first, last = i + 2, self.pairs[i + 1] - 1
        inside = [token.text for token in self.tokens[first:last + 1]]
        if COMPARISONS & set(inside) or inside[0] == "!":
            return
        start, end = self.tokens[first].start, self.tokens[last].end
        self.add("condition negated", start, end, "!(" + self.source[start:end] + ")")

    def mutate_return(self, i):
        j = i + 1
        while self.text(j) != ";":
            j = self.pairs[j] + 1 if self.text(j) in OPEN else j + 1
        if j == i + 1:
            return
        start, end = self.tokens[i + 1].start, self.tokens[j - 1].end
        value = self.source[start:end]
        if value in PLAIN_VALUES or re.fullmatch(r'"[^"]*"|hip\w+|\{\w+::\w+, .*\}', value, re.S):
            return
        self.add("return", start, end, "{}")
        head = self.function_head(i)
        if " bool " in " " + head.split("(")[0]:
            self.add("return", start, end, "true")
        elif NUMERIC.match(head):
            self.add("return", start, end, "(" + value + ") + 1")

    def delete_statement(self, i):
        blocks = self.enclosing_blocks(i)
        if not blocks or self.kinds[blocks[0]] not in ("function", "control"):
            return
        first = self.skip_control(self.statement_start(i), i)
        if first >= i or self.text(first) in DECLARATORS:
            return
        text = self.source[self.tokens[first].start:self.tokens[i].start]
        if self.text(first) in ("return", "throw"):
            # The last statement of a function that returns a value has to stay.
            if i + 1 == self.pairs[blocks[0]] and self.kinds[blocks[0]] == "function":
                return
        elif re.match(r"[\w:]+(<[^;]*?>)?\s*[&*]*\s+[&*]*\w+\s*(=|\{|\(|$)", text):
            return  # a declaration
        self.add("statement deleted", self.tokens[first].start, self.tokens[i].start, "")

    def skip_control(self, first, i):
        """The first token of the statement that the control words at `first` govern."""
        while first < i:
            word = self.text(first)
            if word in ("if", "for", "while", "switch") and self.text(first + 1) == "(":
                first = self.pairs[first + 1] + 1
            elif word in ("else", "do"):
                first += 1
            elif word in ("case", "default"):
                while self.text(first) != ":":
                    first += 1
                first += 1
            else:
                break
        return first
