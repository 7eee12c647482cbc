#!/usr/bin/env python3
"""Build step: copies the OpenBLAS static archive with every defined global symbol renamed PREFIX + name, so
that the library's own exported dgemm_, dgetrf_ ... never meet OpenBLAS's, and removes the members named
by --drop (the archive's xerbla, replaced by the library's argument-error hook under the renamed name).
A symbol named by --own keeps PREFIX + name for every caller, the archive's members included, and is defined
by the library; the archive's own definition is renamed PREFIX + "openblas_" + name, for the library's to call.

--redirect OLD=NEW renames a symbol the archive uses but does not define (the OpenMP runtime's thread
queries, answered by the library). --calls NAME sends the archive's calls of its own routine NAME (the
level-3 BLAS inside its LAPACK) to CALL_PREFIX + NAME instead of PREFIX + NAME; the routine itself keeps
the name PREFIX + NAME."""
import argparse
import shutil
import subprocess
import tempfile
from pathlib import Path


def own_definitions(args, archive):
    """Renames each --own symbol's definition PREFIX + name to PREFIX + "openblas_" + name, in the one member
    that defines it; the other members' references keep PREFIX + name."""
    listing = subprocess.run([args.nm, "-A", "--defined-only", "-g", str(archive)], capture_output=True,
                             text=True, check=True).stdout
    wanted = {args.prefix + name: args.prefix + "openblas_" + name for name in args.own}
    defining = {}  # member -> its symbols to rename
    for line in listing.splitlines():
        symbol = line.split()[-1]
        if symbol in wanted:
            defining.setdefault(line.split(":")[1], []).append(symbol)
    missing = wanted.keys() - {s for symbols in defining.values() for s in symbols}
    if missing:
        raise SystemExit(f"not defined by the archive: {sorted(missing)}")
    with tempfile.TemporaryDirectory() as tmp:
        subprocess.run([args.ar, "x", str(archive.resolve()), *defining], cwd=tmp, check=True)
        for member, symbols in defining.items():
            subprocess.run([args.objcopy, *(f"--redefine-sym={s}={wanted[s]}" for s in symbols), member], cwd=tmp,
                           check=True)
        subprocess.run([args.ar, "r", str(archive.resolve()), *defining], cwd=tmp, check=True)


def undefined_by_member(nm: str, archive: Path) -> dict[str, set[str]]:
    """The undefined symbols of each member of the archive."""
    listing = subprocess.run([nm, "-A", "--undefined-only", str(archive)], capture_output=True, text=True,
                             check=True).stdout
    members: dict[str, set[str]] = {}
    for line in listing.splitlines():
        # "archive:member:                 U symbol"
        where, _, symbol = line.rpartition(" U ")
        if where:
            members.setdefault(where.rsplit(":", 2)[-2], set()).add(symbol.strip())
    return members


def redirect_calls(args, work: Path, renamed: dict[str, str]):
    """Members calling a routine named by --calls get that call renamed CALL_PREFIX + name."""
    targets = {f"{args.prefix}{name}": f"{args.call_prefix}{name}" for name in args.calls if name in renamed}
    members = sorted(m for m, used in undefined_by_member(args.nm, work).items() if used & targets.keys())
    if not members:
        return
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([args.ar, "x", str(work.resolve()), *members], cwd=folder, check=True)
        map_file = Path(folder) / "calls.map"
        map_file.write_text("".join(f"{old} {new}\n" for old, new in targets.items()))
        for m in members:
            subprocess.run([args.objcopy, f"--redefine-syms={map_file}", m], cwd=folder, check=True)
        subprocess.run([args.ar, "r", str(work.resolve()), *members], cwd=folder, check=True)


def main():
    ap = argparse.ArgumentParser(description=__doc__)
    ap.add_argument("--nm", required=True)
    ap.add_argument("--objcopy", required=True)
    ap.add_argument("--ar", required=True)
    ap.add_argument("--prefix", required=True)
    ap.add_argument("--drop", action="append", default=[])
    ap.add_argument("--own", action="append", default=[])
    ap.add_argument("--redirect", action="append", default=[], metavar="OLD=NEW")
    ap.add_argument("--calls", action="append", default=[], metavar="NAME")
    ap.add_argument("--call-prefix", default="")
    ap.add_argument("archive", type=Path)
    ap.add_argument("output", type=Path)
    args = ap.parse_args()

    listing = subprocess.run([args.nm, "--defined-only", "-g", str(args.archive)], capture_output=True,
                             text=True, check=True).stdout
    symbols = sorted({line.split()[2] for line in listing.splitlines() if len(line.split()) == 3})
    work = args.output.with_suffix(".tmp.a")
    map_file = args.output.with_suffix(".map")
    renamed = {s: f"{args.prefix}{s}" for s in symbols}
    redirected = dict(r.split("=", 1) for r in args.redirect)
    map_file.write_text("".join(f"{old} {new}\n" for old, new in {**renamed, **redirected}.items()))
    shutil.copyfile(args.archive, work)
    subprocess.run([args.objcopy, f"--redefine-syms={map_file}", str(work)], check=True)
    redirect_calls(args, work, renamed)
    if args.drop:
        subprocess.run([args.ar, "d", str(work), *args.drop], check=True)
    if args.own:
        own_definitions(args, work)
    work.replace(args.output)


if __name__ == "__main__":
    main()
