"""Option-store blocks: the optional parameters of a solver family, declared once.

```
options e04uc
  purpose One line.
  input n int "Variables.............."     # a problem size the solver supplies at start
  keyword BEGIN begin                        # begin end list nolist defaults, subscript int|real
  alias ITERS ITERATIONS                     # a synonym, in every table that holds its target
  second NUMBER TOLERANCE                    # second keywords accepted where they are optional
  int major_iterations 1                     # IWSAV(1); 31..60 is the second block, IPRMLS(1..30)
    key ITERATIONS                           # any second token
    key MAJOR ITERATIONS (LIMIT)             # second keyword required; words in parentheses document
    key VERIFY blank = 3                     # nothing follows / `number` follows; a constant is stored
    default max(50, 3*(n + nl)) if major_iterations < 0     # or `unless COND`, or no condition
    label "Major iterations limit."
    words COLD WARM HOT                      # an integer listed as a word
  listing Parameters
    row major_iterations n                   # one or two labelled names [if|unless COND]
    blank
    text "Some sentence." if COND
  end
end
```

Start rules are applied in the order the parameters are declared, and a rule may use only the inputs, the
parameters declared above it and parameters without a rule; expressions are described in option_expr.py.
When the block's `end` is read, it is checked and its tables, cases, start rules and listing are built here;
option_emit.py writes them out as C++ (`vek::optim::<name>` in the chapter's layers header and source) and as
a section of the chapter's reference page. The guide is docs/options.md.
"""
from __future__ import annotations

import re
import shlex
from dataclasses import dataclass, field

from .model import DeclError
from .option_expr import Expr, convert, cpp_real, cpp_string

KEY_LENGTH = 16          # the lookup compares at most this many characters
LABEL_WIDTH = 23
BLOCK = 30
AREA = 2 * BLOCK
WORD_RE = re.compile(r"^[A-Z][A-Z0-9._]*$")
NAME_RE = re.compile(r"^[a-z][a-z0-9_]*$")
ACTIONS = ("begin", "end", "list", "nolist", "defaults", "subscript")
# Names a parameter or input may not take: the expression words and the members of the store view.
RESERVED = {"eps", "max", "min", "pow", "unset", "in", "if", "unless", "blank", "number", "first_call",
            "set_first_call", "reset_pending", "set_reset_pending", "listing", "set_listing", "advisory_unit",
            "iwsav", "rwsav", "iprmls", "rprmls", "reset", "s"}
SECOND_ORDER = {"named": 0, "number": 1, "blank": 2, "any": 3}


@dataclass
class Key:
    main: str
    second: str | None      # None: anything; "blank"; "number"; or a second keyword
    doc: str                # the parenthesised words, for the reference
    constant: str | None    # the literal stored instead of the number read
    where: str


@dataclass
class Rule:
    value: str
    cond: str | None
    negate: bool
    where: str


@dataclass
class Param:
    name: str
    type: str               # "int" or "real"
    element: int            # of IWSAV or RWSAV, 1..60
    comment: str
    where: str
    keys: list[Key] = field(default_factory=list)
    rule: Rule | None = None
    label: str | None = None
    words: list[str] = field(default_factory=list)

    @property
    def area(self) -> str:
        return "IWSAV" if self.type == "int" else "RWSAV"

    @property
    def place(self) -> str:
        """IWSAV(31), shown with its subscript name when in the second block."""
        second = "IPRMLS" if self.type == "int" else "RPRMLS"
        extra = f" = {second}({self.element - BLOCK})" if self.element > BLOCK else ""
        return f"{self.area}({self.element}){extra}"


@dataclass
class Input:
    name: str
    type: str
    label: str | None
    comment: str
    where: str


@dataclass
class Action:
    word: str
    kind: str
    block: str | None       # "int" or "real" for a subscript
    comment: str
    where: str


@dataclass
class Row:
    kind: str               # "row", "blank" or "text"
    names: list[str]
    text: str
    cond: str | None
    negate: bool
    where: str


@dataclass
class Case:
    keyword: str
    second: str             # a second keyword, or "*any", "*blank", "*number"
    action: str
    param: Param | None = None
    constant: str | None = None
    doc: str = ""


@dataclass
class OptionSet:
    name: str
    where: str
    purpose: str = ""
    inputs: list[Input] = field(default_factory=list)
    actions: list[Action] = field(default_factory=list)
    aliases: list[tuple[str, str, str]] = field(default_factory=list)  # alias, target, where
    extra_seconds: list[tuple[str, str]] = field(default_factory=list)  # word, where
    params: list[Param] = field(default_factory=list)
    title: str | None = None
    rows: list[Row] = field(default_factory=list)
    # Filled when the block closes:
    keywords: list[tuple[str, str]] = field(default_factory=list)  # (name, target or "") sorted
    seconds: list[tuple[str, str]] = field(default_factory=list)
    cases: list[Case] = field(default_factory=list)
    defaults_cpp: list[str] = field(default_factory=list)
    listing_cpp: list[str] = field(default_factory=list)


def split_comment(raw: str) -> tuple[str, str]:
    """The text before the first '#' outside double quotes, and the comment after it."""
    quoted = False
    for i, c in enumerate(raw):
        if c == '"':
            quoted = not quoted
        elif c == "#" and not quoted:
            return raw[:i], raw[i + 1:].strip()
    return raw, ""


def split_condition(text: str) -> tuple[str, str | None, bool]:
    """'EXPR if COND' / 'EXPR unless COND' / 'EXPR'."""
    m = re.match(r"^(.*?)\s+(if|unless)\s+(.*)$", text.strip())
    if not m:
        return text.strip(), None, False
    return m.group(1).strip(), m.group(3).strip(), m.group(2) == "unless"


# -- the block ------------------------------------------------------------------------------------------------
class OptionsParser:
    """The lines of one `options` block, up to its `end`."""

    def __init__(self, rest: list[str], where: str):
        if len(rest) != 1 or not NAME_RE.match(rest[0]):
            raise DeclError(f"{where}: 'options NAME' with a lower-case name")
        self.set = OptionSet(rest[0], where)
        self.param: Param | None = None
        self.in_listing = False

    def line(self, raw: str, where: str) -> bool:
        """Reads one line; True when the block has ended."""
        text, comment = split_comment(raw)
        head = text.split(None, 1)
        if not head:
            return False
        key, rest = head[0], (head[1] if len(head) > 1 else "")
        if self.in_listing:
            return self.listing_line(key, rest, where)
        if key == "purpose":
            self.set.purpose = rest.strip()
            return False
        if key == "default":
            self.current(key, where).rule = self.rule(rest, where)
            return False
        try:
            words = shlex.split(text)
        except ValueError as e:
            raise DeclError(f"{where}: {e}") from None
        handler = getattr(self, "kw_" + key, None)
        if handler is None:
            raise DeclError(f"{where}: '{key}' is not a line of an options block")
        return bool(handler(words[1:], comment, where))

    def current(self, key: str, where: str) -> Param:
        if self.param is None:
            raise DeclError(f"{where}: '{key}' belongs to a parameter (after an 'int' or 'real' line)")
        return self.param

    def rule(self, rest: str, where: str) -> Rule:
        if self.param.rule is not None:
            raise DeclError(f"{where}: {self.param.name} has a default already")
        value, cond, negate = split_condition(rest)
        if not value:
            raise DeclError(f"{where}: 'default EXPR [if COND | unless COND]'")
        return Rule(value, cond, negate, where)

    def kw_end(self, rest, comment, where):
        if rest:
            raise DeclError(f"{where}: 'end' takes nothing")
        finish(self.set)
        return True

    def kw_input(self, rest, comment, where):
        if len(rest) not in (2, 3) or rest[1] not in ("int", "real"):
            raise DeclError(f"{where}: 'input NAME int|real [\"LABEL\"]'")
        if len(rest) == 3 and len(rest[2]) > LABEL_WIDTH:
            raise DeclError(f"{where}: the label of {rest[0]} is longer than {LABEL_WIDTH} characters")
        self.set.inputs.append(Input(rest[0], rest[1], rest[2] if len(rest) == 3 else None, comment, where))
        self.param = None

    def kw_keyword(self, rest, comment, where):
        if len(rest) < 2 or rest[1] not in ACTIONS:
            raise DeclError(f"{where}: 'keyword WORD ACTION' with ACTION one of {', '.join(ACTIONS)}")
        block = None
        if rest[1] == "subscript":
            if len(rest) != 3 or rest[2] not in ("int", "real"):
                raise DeclError(f"{where}: 'keyword WORD subscript int|real'")
            block = rest[2]
        elif len(rest) != 2:
            raise DeclError(f"{where}: unexpected '{rest[2]}'")
        self.set.actions.append(Action(rest[0], rest[1], block, comment, where))
        self.param = None

    def kw_alias(self, rest, comment, where):
        if len(rest) != 2:
            raise DeclError(f"{where}: 'alias WORD TARGET'")
        self.set.aliases.append((rest[0], rest[1], where))
        self.param = None

    def kw_second(self, rest, comment, where):
        if not rest:
            raise DeclError(f"{where}: 'second WORD ...'")
        self.set.extra_seconds += [(w, where) for w in rest]
        self.param = None

    def parameter(self, type_, rest, comment, where):
        if len(rest) != 2 or not rest[1].isdigit():
            raise DeclError(f"{where}: '{type_} NAME ELEMENT' (ELEMENT of {'IWSAV' if type_ == 'int' else 'RWSAV'}, "
                            f"1..{AREA})")
        self.param = Param(rest[0], type_, int(rest[1]), comment, where)
        self.set.params.append(self.param)

    def kw_int(self, rest, comment, where):
        self.parameter("int", rest, comment, where)

    def kw_real(self, rest, comment, where):
        self.parameter("real", rest, comment, where)

    def kw_key(self, rest, comment, where):
        p = self.current("key", where)
        words = list(rest)
        constant = None
        if "=" in words:
            at = words.index("=")
            if at != len(words) - 2:
                raise DeclError(f"{where}: 'key MAIN [SECOND] [(WORDS)] [= CONSTANT]'")
            constant = words[-1]
            words = words[:at]
        if not words:
            raise DeclError(f"{where}: 'key' needs a keyword")
        main, second, doc = words[0], None, []
        for w in words[1:]:
            if doc or w.startswith("("):
                doc.append(w)
            elif second is None:
                second = w
            else:
                raise DeclError(f"{where}: a key has one second keyword; put optional words in parentheses")
        text = " ".join(doc)
        if doc and not (text.startswith("(") and text.endswith(")")):
            raise DeclError(f"{where}: unbalanced parentheses in '{text}'")
        p.keys.append(Key(main, second, text, constant, where))

    def kw_label(self, rest, comment, where):
        p = self.current("label", where)
        if len(rest) != 1:
            raise DeclError(f'{where}: \'label "TEXT"\'')
        if len(rest[0]) > LABEL_WIDTH:
            raise DeclError(f"{where}: the label of {p.name} is longer than {LABEL_WIDTH} characters")
        p.label = rest[0]

    def kw_words(self, rest, comment, where):
        p = self.current("words", where)
        if not rest or p.type != "int":
            raise DeclError(f"{where}: 'words W0 W1 ...' lists the words of an integer parameter's values 0, 1, ...")
        p.words = rest

    def kw_listing(self, rest, comment, where):
        if self.set.title is not None:
            raise DeclError(f"{where}: one listing per options block")
        if not rest:
            raise DeclError(f"{where}: 'listing TITLE'")
        self.set.title = " ".join(rest)
        self.in_listing = True
        self.param = None

    def listing_line(self, key, rest, where) -> bool:
        if key == "end":
            if rest.strip():
                raise DeclError(f"{where}: 'end' takes nothing")
            self.in_listing = False
        elif key == "blank":
            if rest.strip():
                raise DeclError(f"{where}: 'blank' takes nothing")
            self.set.rows.append(Row("blank", [], "", None, False, where))
        elif key == "row":
            names, cond, negate = split_condition(rest)
            if not 1 <= len(names.split()) <= 2:
                raise DeclError(f"{where}: a row shows one or two parameters")
            self.set.rows.append(Row("row", names.split(), "", cond, negate, where))
        elif key == "text":
            m = re.match(r'^"([^"]*)"\s*(?:(if|unless)\s+(.+))?$', rest.strip())
            if not m:
                raise DeclError(f'{where}: \'text "SENTENCE" [if COND | unless COND]\'')
            self.set.rows.append(Row("text", [], m.group(1), m.group(3), m.group(2) == "unless", where))
        else:
            raise DeclError(f"{where}: a listing holds 'row', 'blank' and 'text' lines up to 'end'")
        return False


# -- checks and tables ----------------------------------------------------------------------------------------
def check_word(word: str, what: str, where: str):
    if not WORD_RE.match(word):
        raise DeclError(f"{where}: {what} '{word}' is not an upper-case word (letters, digits, '.', '_')")
    if len(word) > KEY_LENGTH:
        raise DeclError(f"{where}: {what} '{word}' is longer than the {KEY_LENGTH} characters a lookup compares")


def check_names(s: OptionSet):
    seen = {}
    for item in s.inputs + s.params:
        if not NAME_RE.match(item.name) or item.name in RESERVED:
            raise DeclError(f"{item.where}: '{item.name}' cannot name a parameter or input")
        if item.name in seen:
            raise DeclError(f"{item.where}: {item.name} declared twice (first at {seen[item.name]})")
        seen[item.name] = item.where
    taken = {}
    for p in s.params:
        if not 1 <= p.element <= AREA:
            raise DeclError(f"{p.where}: {p.name} at {p.area}({p.element}): elements run from 1 to {AREA}")
        slot = (p.area, p.element)
        if slot in taken:
            raise DeclError(f"{p.where}: {p.name} takes {p.area}({p.element}), already {taken[slot]}'s")
        taken[slot] = p.name
        if not p.keys:
            raise DeclError(f"{p.where}: {p.name} has no key")


def read_constant(key: Key, p: Param) -> str:
    try:
        value = int(key.constant) if p.type == "int" else float(key.constant)
    except ValueError:
        kind = "an integer" if p.type == "int" else "a number"
        raise DeclError(f"{key.where}: the constant '{key.constant}' of {p.name} is not {kind}") from None
    return str(value) if p.type == "int" else cpp_real(key.constant)


def build_tables(s: OptionSet):
    mains, seconds = {}, {}
    for a in s.actions:
        check_word(a.word, "keyword", a.where)
        if a.word in mains:
            raise DeclError(f"{a.where}: keyword {a.word} declared twice")
        mains[a.word] = a.where
    action_words = set(mains)
    for p in s.params:
        for k in p.keys:
            check_word(k.main, "keyword", k.where)
            if k.main in action_words:
                raise DeclError(f"{k.where}: {k.main} is the keyword of '{next(a.kind for a in s.actions if a.word == k.main)}', "
                                f"not a parameter's")
            mains.setdefault(k.main, k.where)
            if k.second not in (None, "blank", "number"):
                check_word(k.second, "second keyword", k.where)
                seconds.setdefault(k.second, k.where)
    for w, where in s.extra_seconds:
        check_word(w, "second keyword", where)
        if w in seconds:
            raise DeclError(f"{where}: second keyword {w} is declared already")
        seconds[w] = where
    main_aliases, second_aliases = {}, {}
    for alias, target, where in s.aliases:
        check_word(alias, "alias", where)
        if alias in mains or alias in seconds or alias in main_aliases or alias in second_aliases:
            raise DeclError(f"{where}: alias {alias} is a keyword or alias already")
        if target not in mains and target not in seconds:
            raise DeclError(f"{where}: alias {alias} stands for {target}, which is no keyword of {s.name}")
        if target in mains:
            main_aliases[alias] = target
        if target in seconds:
            second_aliases[alias] = target
    s.keywords = sorted([(w, "") for w in mains] + list(main_aliases.items()))
    s.seconds = sorted([(w, "") for w in seconds] + list(second_aliases.items()))


def build_cases(s: OptionSet):
    cases = [Case(a.word, "*any", a.kind if a.kind != "subscript" else f"{a.block}_subscript") for a in s.actions]
    for p in s.params:
        seen = {}
        for k in p.keys:
            second = "*" + k.second if k.second in ("blank", "number") else (k.second or "*any")
            if (k.main, second) in seen:
                words = " ".join(w for w in (k.main, k.second) if w)
                raise DeclError(f"{k.where}: {p.name} has the key {words} twice (first at {seen[(k.main, second)]})")
            seen[(k.main, second)] = k.where
            constant = read_constant(k, p) if k.constant is not None else None
            cases.append(Case(k.main, second, f"store_{p.type}", p, constant, k.doc))
    index = {w: i for i, (w, _) in enumerate(s.seconds, 1)}

    def order(c: Case):
        group = "named" if not c.second.startswith("*") else c.second[1:]
        return (c.keyword, SECOND_ORDER[group], index.get(c.second, 0))
    s.cases = sorted(cases, key=order)  # stable: declaration order within a group


def build_rules(s: OptionSet):
    """The start rules as C++, in declaration order, each using only settled values."""
    names = {i.name: (f"in.{i.name}", i.type) for i in s.inputs}
    names.update({p.name: (f"s.{p.name}()", p.type) for p in s.params})
    settled = {i.name for i in s.inputs} | {p.name for p in s.params if p.rule is None}
    for p in s.params:
        r = p.rule
        if r is None:
            continue
        value = Expr(r.value, names, r.where)
        v = value.parse()
        if v[1] == "bool":
            raise DeclError(f"{r.where}: the default of {p.name} is a condition, not a value")
        if p.type == "int" and v[1] == "real":
            raise DeclError(f"{r.where}: {p.name} is an integer and its default '{r.value}' is real")
        used = set(value.used)
        assign = (f"vek::optim::saturate({v[0]})" if v[2] else v[0]) if p.type == "int" else convert(v, "real")
        line = f"s.{p.name}() = {assign};"
        if r.cond is not None:
            cond = Expr(r.cond, names, r.where)
            c = cond.parse()
            if c[1] != "bool":
                raise DeclError(f"{r.where}: '{r.cond}' is not a condition")
            used |= cond.used
            line = f"if ({'!' if r.negate else ''}{c[0]}) {line}"
        late = sorted(used - settled - {p.name})
        if late:
            raise DeclError(f"{r.where}: the default of {p.name} uses {', '.join(late)}, whose start value is "
                            f"settled later: declare {'them' if len(late) > 1 else 'it'} above {p.name}")
        s.defaults_cpp.append(f"  {line}  // {r.value}" + (f" {'unless' if r.negate else 'if'} {r.cond}"
                                                            if r.cond else ""))
        settled.add(p.name)


def build_listing(s: OptionSet):
    names = {i.name: (f"in.{i.name}", i.type) for i in s.inputs}
    names.update({p.name: (f"s.{p.name}()", p.type) for p in s.params})
    labelled = {i.name: i for i in s.inputs if i.label} | {p.name: p for p in s.params if p.label}
    if s.title is None:
        return
    out = [f"  sink({cpp_string(' ' + s.title)});", f"  sink({cpp_string(' ' + '-' * len(s.title))});"]
    for row in s.rows:
        if row.kind == "blank":
            record = "sink(\"\");"
        elif row.kind == "text":
            record = f"sink({cpp_string(' ' + row.text)});"
        else:
            pairs = []
            for n in row.names:
                item = labelled.get(n)
                if item is None:
                    raise DeclError(f"{row.where}: {n} is no parameter or input with a label")
                label = cpp_string(item.label)
                value = f"in.{n}" if isinstance(item, Input) else f"s.{n}()"
                if isinstance(item, Param) and item.words:
                    words = ", ".join(cpp_string(w) for w in item.words)
                    pairs.append(f"vek::optim::word_pair({label}, {{{words}}}, {value})")
                else:
                    pairs.append(f"vek::optim::{item.type}_pair({label}, {value})")
            record = f"sink(vek::optim::listing_row({', '.join(pairs)}));"
        if row.cond is not None:
            c = Expr(row.cond, names, row.where).parse()
            if c[1] != "bool":
                raise DeclError(f"{row.where}: '{row.cond}' is not a condition")
            record = f"if ({'!' if row.negate else ''}{c[0]}) {record}"
        out.append("  " + record)
    s.listing_cpp = out


def finish(s: OptionSet):
    check_names(s)
    build_tables(s)
    build_cases(s)
    build_rules(s)
    build_listing(s)
