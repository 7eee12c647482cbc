"""Array lengths of the LAPACK routines, read from the reference LAPACK manual pages (Debian's liblapack-doc).

Every array argument of a routine is documented there as "A is DOUBLE PRECISION array, dimension (LDA,N)",
sometimes with alternatives on the following lines ("(LDA,M) if SIDE = 'L', (LDA,N) if SIDE = 'R'"). The
dimension becomes a length in the declaration language: the product of its extents, each an expression over
the routine's scalar arguments; alternatives chosen by an option letter become a choice (0 when no case
applies: the routine then rejects the option and touches nothing), unconditional alternatives their max().
A few dimensions name a quantity that is not an argument, or an output; LENGTHS gives those by hand.
"""
import gzip
import re
import subprocess
from pathlib import Path

# The drivers computing selected eigenvectors into Z (their count M is an output).
SELECTED = ("stemr", "stevx", "stevr", "syevx", "heevx", "syevr", "heevr", "spevx", "hpevx", "sbevx", "hbevx",
            "sygvx", "hegvx", "spgvx", "hpgvx", "sbgvx", "hbgvx")
# Lengths given by hand (routine name without its precision letter, argument): the manual's dimension
# names a quantity that is not an argument (UCOL, LDWORK) or is not given at all.
LENGTHS = {
    # UCOL = M if JOBZ = 'A', or JOBZ = 'O' and M < N; UCOL = min(M,N) if JOBZ = 'S'; else U is not used.
    ("gesdd", "U"): "JOBZ in {'A', 'O'} ? LDU*M : JOBZ in {'S'} ? LDU*min(M,N) : 0",
    # VT is N-by-N for JOBZ = 'A', or 'O' with M >= N; min(M,N)-by-N for 'S'.
    ("gesdd", "VT"): "JOBZ in {'A', 'O', 'S'} ? LDVT*N : 0",
    # gesvdx: U is LDU by NS (at most min(M,N)) when JOBU = 'V'; VT is LDVT by N.
    ("gesvdx", "U"): "JOBU in {'V'} ? LDU*min(M,N) : 0",
    ("gesvdx", "VT"): "JOBVT in {'V'} ? LDVT*N : 0",
    # S receives the eigenvalues of the order 2*min(M,N) Golub-Kahan matrix that ?bdsvdx finds in its
    # interval: for a zero matrix (all of them zero) more than min(M,N) of them.
    ("gesvdx", "S"): "2*min(M,N)",
    # the eigenvector count M is an output: at most IU-IL+1 when RANGE = 'I', else at most N.
    **{(r, "Z"): "JOBZ in {'N'} ? 0 : RANGE in {'I'} ? LDZ*max(1,IU-IL+1) : LDZ*max(1,N)" for r in SELECTED},
    **{(r, "ISUPPZ"): "RANGE in {'I'} ? 2*max(1,IU-IL+1) : 2*max(1,N)" for r in ("syevr", "heevr", "stevr", "stemr")},
    ("sbgvx", "IFAIL"): "JOBZ in {'N'} ? 0 : N",
    # the count M of vectors used is an output, at most MM.
    ("trsna", "VL"): "JOB in {'V'} ? 0 : LDVL*MM", ("trsna", "VR"): "JOB in {'V'} ? 0 : LDVR*MM",
    ("tgsna", "VL"): "JOB in {'V'} ? 0 : LDVL*MM", ("tgsna", "VR"): "JOB in {'V'} ? 0 : LDVR*MM",
    # the norms' workspace: LWORK >= M (or N) for the norms that use it, else WORK is not referenced.
    ("lange", "WORK"): "NORM in {'I'} ? M : 0", ("langb", "WORK"): "NORM in {'I'} ? N : 0",
    ("lantr", "WORK"): "NORM in {'I'} ? M : 0", ("lantp", "WORK"): "NORM in {'I'} ? N : 0",
    ("lantb", "WORK"): "NORM in {'I'} ? N : 0", ("lanhs", "WORK"): "NORM in {'I'} ? N : 0",
    ("lansy", "WORK"): "NORM in {'I', '1', 'O'} ? N : 0", ("lansp", "WORK"): "NORM in {'I', '1', 'O'} ? N : 0",
    ("lansb", "WORK"): "NORM in {'I', '1', 'O'} ? N : 0", ("lanhe", "WORK"): "NORM in {'I', '1', 'O'} ? N : 0",
    ("lanhp", "WORK"): "NORM in {'I', '1', 'O'} ? N : 0", ("lanhb", "WORK"): "NORM in {'I', '1', 'O'} ? N : 0",
    # workspace whose documented size is a formula in the text, not an argument
    ("ggbal", "WORK"): "JOB in {'S', 'B'} ? max(1,6*N) : 1",
    ("ggevx", "RWORK"): "BALANC in {'S', 'B'} ? max(1,6*N) : max(1,2*N)",
    ("gesdd", "RWORK"): "JOBZ in {'N'} ? max(1,7*min(M,N)) : max(1, max(5*min(M,N)*min(M,N) + 5*min(M,N), "
                        "2*max(M,N)*min(M,N) + 2*min(M,N)*min(M,N) + min(M,N)))",
    ("gesvdx", "RWORK"): "max(1, 17*min(M,N)*min(M,N))",
    ("gejsv", "IWORK"): "max(4, M+3*N)",
    ("gejsv", "RWORK"): "max(7,LRWORK)",
    # bdsdc: LWORK is 4*N (COMPQ = 'N'), 6*N ('P') or 3*N**2 + 4*N ('I').
    ("bdsdc", "WORK"): "max(1, COMPQ in {'I'} ? 3*N*N + 4*N : COMPQ in {'P'} ? 6*N : 4*N)",
    # Sizes of the divide-and-conquer trees: the tree depth NLVL = INT(LOG_2(MIN(M,N)/(SMLSIZ+1))) + 1 is at
    # most 63 and SMLSIZ (ILAENV) is 25, so these bound the documented LDQ, LDIQ, LIWORK and LRWORK.
    ("bdsdc", "Q"): "COMPQ in {'P'} ? N*(11 + 2*25 + 8*63) : 0",
    ("bdsdc", "IQ"): "COMPQ in {'P'} ? N*(3 + 3*63) : 0",
    ("gelsd", "IWORK"): "max(1, 3*min(M,N)*63 + 11*min(M,N))",
    ("gelsd", "RWORK"): "max(1, 10*min(M,N) + 2*min(M,N)*25 + 8*min(M,N)*63 + 3*25*NRHS + max(26*26, "
                        "min(M,N)*(1+NRHS) + 2*NRHS))",
}
# Arrays that OpenBLAS's routine touches beyond the manual's dimension in valid calls, by full routine name:
# the expert drivers store the reciprocal pivot growth in element 1 of WORK (RWORK) even for N = 0, and with
# NRHS = 0 the mixed-precision drivers still use WORK as the norm's N-element workspace while dgtsv (its
# back substitution runs once before testing the column count) and ?gelss touch the first column of B.
BEYOND_MANUAL = {
    ("dgesvx", "WORK"): "max(1,4*N)", ("dgbsvx", "WORK"): "max(1,3*N)",
    ("zgesvx", "RWORK"): "max(1,2*N)", ("zgbsvx", "RWORK"): "max(1,N)",
    ("dsgesv", "WORK"): "N*max(1,NRHS)", ("dsposv", "WORK"): "N*max(1,NRHS)",
    ("dgtsv", "B"): "LDB*max(1,NRHS)", ("dgelss", "B"): "LDB*max(1,NRHS)", ("zgelss", "B"): "LDB*max(1,NRHS)",
}
# A workspace dimensioned by its length argument alone ("dimension (LWORK)") holds at least one element: a
# workspace query (LWORK = -1) returns the optimal length in its element 1, and the routines store it there
# before testing LWORK.
WORKSPACE_LENGTH_RE = re.compile(r"L\w*WORK")
# Names of the manual that stand for an expression over the arguments, in every routine that uses them.
AUXILIARY = {"NQ": "(SIDE in {'L'} ? M : N)"}

TROFF = [("\\&", ""), ("\\-", "-"), ("\\fB", ""), ("\\fP", ""), ("\\fI", ""), ("\\(aq", "'"), ("\\e", "\\")]


def clean(text: str) -> str:
    for a, b in TROFF:
        text = text.replace(a, b)
    return text


def package_file(package: str, suffix: str, option: str) -> Path:
    """The file of an installed Debian package whose name ends in SUFFIX."""
    listing = subprocess.run(["dpkg", "-L", package], capture_output=True, text=True)
    found = next((f for f in listing.stdout.split() if f.endswith(suffix)), None)
    if listing.returncode != 0 or found is None:
        raise SystemExit(f"linalg_import: {suffix.lstrip('/')} of {package} not found (tools/deps.sh installs "
                         f"it), or give {option}")
    return Path(found)


def default_doc_folder() -> Path:
    return package_file("liblapack-doc", "/dgetrf.3.gz", "--lapack-doc FOLDER").parent


SECTION_RE = re.compile(r'^"[^"\n]*?(?:subroutine|function) (\w+) ?\(')
PARAM_RE = re.compile(r"^\\fI(\w+)\\fP *$", re.M)
TYPE_LINE_RE = re.compile(r"^\s*(\w+) is ([^\n]*)")


class Page:
    """What the manual says of one routine's arguments: the dimension text of each array, and the names it
    documents as scalars."""

    def __init__(self):
        self.dims: dict[str, str] = {}
        self.blocks: dict[str, str] = {}  # each array's whole description
        self.scalars: set[str] = set()

    def length(self, routine: str, name: str, scalars: set[str], options: set[str]) -> str | None:
        """The declared length of the array NAME of ROUTINE (a manual page's name), or None."""
        by_hand = BEYOND_MANUAL.get((routine, name), LENGTHS.get((routine[1:], name)))
        if by_hand is not None:
            return by_hand
        if name not in self.dims:
            return None
        e = length(self.dims[name], scalars)
        if e is not None and WORKSPACE_LENGTH_RE.fullmatch(e):
            e = f"max(1,{e})"
        unused = unused_when(self.blocks[name], name, options)
        return f"{unused} ? 0 : {e}" if e is not None and unused else e


def read_pages(folder: Path, names: set[str]) -> dict[str, Page]:
    """The manual's page of each routine of NAMES."""
    found: dict[str, Page] = {}
    # A routine's own page first (most have one); the others are found in the pages of their groups.
    own = [folder / f"{name}.3.gz" for name in sorted(names) if (folder / f"{name}.3.gz").exists()]
    for page in own + sorted(folder.glob("*.3.gz")):
        if names <= found.keys():
            break
        with gzip.open(page, "rt", errors="replace") as f:
            text = f.read()
        for section in text.split("\n.SS ")[1:]:
            m = SECTION_RE.match(section)
            if not m or m.group(1).lower() not in names or m.group(1).lower() in found:
                continue
            found[m.group(1).lower()] = read_section(section)
    missing = sorted(names - found.keys())
    if missing:
        raise SystemExit(f"linalg_import: no manual page for {', '.join(missing)}")
    return found


def read_section(body: str) -> Page:
    out = Page()
    marks = list(PARAM_RE.finditer(body))
    for i, mark in enumerate(marks):
        end = marks[i + 1].start() if i + 1 < len(marks) else len(body)
        block = clean(body[mark.end():end]).replace(".nf", "").replace(".PP", "")
        t = TYPE_LINE_RE.search(block)
        if not t or t.group(1).upper() != mark.group(1).upper():
            continue
        name = mark.group(1).upper()
        if not re.search(r"\barray\b", t.group(2), re.I):
            out.scalars.add(name)
            continue
        d = re.search(r"\bdimensions?\b(.*)", block[t.start(2):t.end(2)] + "\n" + block[t.end(2):].split("\n", 2)[1]
                      if "dimension" not in t.group(2) else block[t.start(2):], re.S | re.I)
        if d:
            out.dims[name] = dimension_lines(d.group(1))
            out.blocks[name] = block
    return out


def dimension_lines(text: str) -> str:
    """The dimension: the rest of its line and the following lines that give alternatives '(...) if ...'."""
    lines = text.split("\n")
    keep = [lines[0]]
    for line in lines[1:]:
        s = re.sub(r"^or\s+(?=\()", "", line.strip())  # "(M-1) if SIDE = 'L'" / "or (N-1) if SIDE = 'R'"
        if s.startswith("(") and (not keep[-1].strip() or " if " in s or keep[-1].rstrip().endswith(",")
                                  or not keep[0].strip()):
            keep.append(s)
        elif not keep[0].strip() and len(keep) == 1:
            continue
        else:
            break
    return " ".join(k.strip() for k in keep)


def groups(text: str):
    """The balanced parenthesised groups of TEXT with the text that follows each up to the next group."""
    out, depth, start = [], 0, None
    for i, ch in enumerate(text):
        if ch == "(":
            if depth == 0:
                start = i
            depth += 1
        elif ch == ")" and depth:
            depth -= 1
            if depth == 0:
                out.append([text[start + 1:i], i + 1])
    return [(g, text[end:out[k + 1][1] - len(out[k + 1][0]) - 2] if k + 1 < len(out) else text[end:])
            for k, (g, end) in enumerate(out)]


COND_RE = re.compile(r"^\s*,?\s*(?:if|when)\s+(\w+)\s*=\s*('\w'(?:\s*(?:or|,)\s*'\w')*)")


def extent(text: str, scalars: set[str]) -> str | None:
    """One dimension '(LDA, N)' as a product over the scalar arguments; None when it names anything else."""
    parts, depth, cur = [], 0, ""
    for ch in text:
        if ch == "," and depth == 0:
            parts.append(cur)
            cur = ""
            continue
        depth += ch == "("
        depth -= ch == ")"
        cur += ch
    parts.append(cur)
    out = []
    for p in parts:
        p = re.sub(r"\s+", "", p)
        if not p or p == "*":
            return None
        p = re.sub(r"[A-Za-z_]\w*", lambda m: m.group(0).upper(), p)
        p = re.sub(r"\b(MAX|MIN|ABS)\(", lambda m: m.group(1).lower() + "(", p)
        p = re.sub(r"\b[A-Z]\w*\b", lambda m: AUXILIARY.get(m.group(0), m.group(0)), p)
        names = set(re.findall(r"\b[A-Z]\w*\b", re.sub(r"'\w'", "", p)))
        if not names <= scalars or not re.fullmatch(r"[\w+\-*/(),{}' ?:]+", p) or re.search(r"\d[A-Z]", p):
            return None
        out.append(f"({p})" if len(parts) > 1 and re.search(r"[+\-?]", strip_calls(p)) else p)
    return "*".join(out)


def strip_calls(p: str) -> str:
    """P without its parenthesised parts, to see whether a sum stands at its top level."""
    while re.search(r"\([^()]*\)", p):
        p = re.sub(r"\([^()]*\)", "", p)
    return p


def unused_when(block: str, name: str, options: set[str]) -> str | None:
    """The condition under which the manual says the array NAME is not referenced ("If JOBU = 'N', U is not
    referenced"), or None."""
    for m in re.finditer(r"\b[Ii]f\s+(\w+)\s*=\s*('\w'(?:\s*(?:or|,)\s*'\w')*)\s*,?\s*(?:then\s+)?(\w+)\s+is\s+not"
                         r"\s+referenced", block):
        if m.group(3).upper() == name and m.group(1).upper() in options:
            letters = ", ".join(re.findall(r"'\w'", m.group(2).upper()))
            return f"{m.group(1).upper()} in {{{letters}}}"
    return None


def length(dim: str, scalars: set[str]) -> str | None:
    """The declared length of one array from its dimension text, or None."""
    cases, plain = [], []
    for g, after in groups(dim):
        e = extent(g, scalars)
        cond = COND_RE.match(after)
        if cond and cond.group(1).upper() in scalars:
            letters = ", ".join(re.findall(r"'\w'", cond.group(2).upper()))
            if e is None:
                return None
            cases.append((f"{cond.group(1).upper()} in {{{letters}}}", e))
        elif e is not None:
            plain.append(e)
    if cases:
        if plain and plain[0] in [e for _, e in cases]:
            plain = []  # the general form (LDA,*) restated by its cases
        if plain:
            return None
        out = "0"
        for c, e in reversed(cases):
            out = f"{c} ? {e} : {out}"
        return out
    if not plain:
        return None
    out = plain[0]
    for e in plain[1:]:
        out = f"max({out}, {e})"
    return out
